#include "standin/scene_file.h"

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using standin::InputError;
using standin::Scene;
using EntryKind = standin::StackEntry::Kind;

const std::filesystem::path kImageFolder = std::filesystem::path(TARVO_EXAMPLES) / "broken";

// A scene that says everything there is to say; its image is one of the samples'.
constexpr const char* kFull = R"({
  "size": [640, 480.0],
  "images": {"tile": "tile.png", "other": "../broken/tile.png"},
  "fast": false,
  "set": {"B start Z": -3.5, "A end Z": 1e3},
  "effects": [{"name": "Glow", "matchName": "X Glow", "active": false, "at": 1},
              {"name": "Blur", "matchName": "X Blur", "at": 4}],
  "renderer": 2,
  "bones": [
    {"name": "A", "image": "other", "imageB": "tile", "opacity": 0.25, "opacityB": 0, "z": [2, -1],
     "pieces": [{"corners": [[1, 2], [3, 4], [5, 6], [7, 8]],
                 "uv": [[9, 10], [11, 12], [13, 14], [15, 16]], "t": -0.5, "from": "B"}]},
    {"name": "B", "active": false, "image": "tile", "z": 7,
     "strip": {"rest": [[2, 16], [30, 16]], "width": 10, "pose": [[0, 0], [0, 50]],
               "poseWidth": [12, 4], "pieces": 3}}]})";

Scene Read(const std::string& text) {
  return standin::ReadAnimation(text, kImageFolder, "scene.json").scene;
}

std::string Faults(const std::string& text) {
  std::string lines;
  try {
    Read(text);
  } catch (const InputError& error) {
    for (const std::string& line : error.Lines()) {
      lines += line + "\n";
    }
  }
  return lines;
}

TEST(SceneFile, ReadsEverythingThatASceneSays) {
  const Scene scene = Read(kFull);
  EXPECT_EQ(scene.width, 640);
  EXPECT_EQ(scene.height, 480);
  ASSERT_EQ(scene.images.size(), 2U);
  EXPECT_EQ(scene.images[0].picture.width, 32);
  EXPECT_EQ(scene.fast, false);
  ASSERT_EQ(scene.settings.size(), 2U);  // in the order of the file
  EXPECT_EQ(scene.settings[0].label, "B start Z");
  EXPECT_EQ(scene.settings[0].value, -3.5);
  EXPECT_EQ(scene.settings[0].place, R"(scene.json: set["B start Z"])");

  ASSERT_EQ(scene.bones.size(), 2U);
  const standin::Bone& first = scene.bones[0];
  EXPECT_EQ(first.image, 1U);
  EXPECT_EQ(first.imageB, 0U);
  EXPECT_EQ(first.opacity, 0.25);
  EXPECT_EQ(first.opacityB, 0.0);
  ASSERT_TRUE(first.z.has_value());
  EXPECT_EQ(first.z->start, 2.0);
  EXPECT_EQ(first.z->end, -1.0);
  ASSERT_EQ(first.pieces.size(), 1U);
  EXPECT_EQ(first.pieces[0].corners[3], (standin::Point{7, 8}));
  EXPECT_EQ(first.pieces[0].texCoords[0], (standin::Point{9, 10}));
  EXPECT_EQ(first.pieces[0].t, -0.5);
  EXPECT_EQ(first.pieces[0].from, standin::ImageChoice::kB);

  const standin::Bone& second = scene.bones[1];
  EXPECT_FALSE(second.active);
  EXPECT_EQ(second.z->start, 7.0);
  EXPECT_EQ(second.z->end, 7.0);
  ASSERT_EQ(second.pieces.size(), 3U);
  EXPECT_EQ(second.pieces[0].corners[0], (standin::Point{6, 0}));
  EXPECT_EQ(second.pieces[2].corners[2], (standin::Point{-2, 50}));
}

TEST(SceneFile, FillsTheStackWithBonesAroundWhatHasAPlace) {
  const Scene scene = Read(kFull);
  std::vector<std::pair<EntryKind, std::size_t>> stack;
  for (const auto& entry : scene.stack) {
    stack.emplace_back(entry.kind, entry.index);
  }
  EXPECT_EQ(stack, (std::vector<std::pair<EntryKind, std::size_t>>{{EntryKind::kBone, 0},
                                                                   {EntryKind::kOther, 0},
                                                                   {EntryKind::kRenderer, 0},
                                                                   {EntryKind::kBone, 1},
                                                                   {EntryKind::kOther, 1}}));
}

TEST(SceneFile, AStripIsAsWideAsItsRestAndHasEightPiecesUnlessSaid) {
  const Scene scene = Read(R"({"size": [9, 9], "images": {"tile": "tile.png"}, "bones": [
      {"name": "A", "image": "tile", "strip": {"rest": [[2, 16], [30, 16]], "width": 10,
       "pose": [[0, 0], [0, 10], [0, 20], [0, 80]]}}]})");
  const auto& pieces = scene.bones[0].pieces;
  ASSERT_EQ(pieces.size(), 8U);
  EXPECT_EQ(pieces[0].corners[0], (standin::Point{5, 0}));
  EXPECT_NEAR(pieces[3].corners[1].y, 40, 1e-6);  // half of the length, not of the parameter
  EXPECT_FALSE(scene.bones[0].z.has_value());
}

TEST(SceneFile, RefusesEveryShorterPartOfAScene) {
  const std::string full = kFull;
  for (std::size_t length = 0; length < full.size(); ++length) {
    EXPECT_THROW(Read(full.substr(0, length)), InputError) << length << " bytes";
  }
}

TEST(SceneFile, NamesTheNearestOfWhatThereIs) {
  EXPECT_EQ(Faults(R"({"sice": [9, 9], "size": [9, 9], "bones": []})"),
            "scene.json: sice: unknown key, the nearest is \"size\"\n");
  EXPECT_EQ(Faults(R"({"size": [9, 9], "bones": [{"name": "A", "image": "b", "pieces": []}]})"),
            "scene.json: bones[0].image: no image is called \"b\"\n");
}

TEST(SceneFile, RefusesDeepNestingWithoutRunningOutOfStack) {
  EXPECT_THROW(Read(std::string(200'000, '[')), InputError);
  EXPECT_THROW(Read(std::string(200'000, '[') + std::string(200'000, ']')), InputError);
}

}  // namespace
