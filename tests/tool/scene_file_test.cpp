#include "tool/rig/file/scene_file.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using tarvo::InputError;
using tarvo::Scene;
using EntryKind = tarvo::StackEntry::Kind;

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
  return tarvo::ReadAnimation(text, kImageFolder, "scene.json").scene;
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
  const tarvo::Bone& first = scene.bones[0];
  EXPECT_EQ(first.image, 1U);
  EXPECT_EQ(first.imageB, 0U);
  EXPECT_EQ(first.opacity, 0.25);
  EXPECT_EQ(first.opacityB, 0.0);
  ASSERT_TRUE(first.z.has_value());
  EXPECT_EQ(first.z->start, 2.0);
  EXPECT_EQ(first.z->end, -1.0);
  ASSERT_EQ(first.pieces.size(), 1U);
  EXPECT_EQ(first.pieces[0].corners[3], (tarvo::Point{7, 8}));
  EXPECT_EQ(first.pieces[0].texCoords[0], (tarvo::Point{9, 10}));
  EXPECT_EQ(first.pieces[0].t, -0.5);
  EXPECT_EQ(first.pieces[0].from, tarvo::ImageChoice::kB);

  const tarvo::Bone& second = scene.bones[1];
  EXPECT_FALSE(second.active);
  EXPECT_EQ(second.z->start, 7.0);
  EXPECT_EQ(second.z->end, 7.0);
  ASSERT_EQ(second.pieces.size(), 3U);
  EXPECT_EQ(second.pieces[0].corners[0], (tarvo::Point{6, 0}));
  EXPECT_EQ(second.pieces[2].corners[2], (tarvo::Point{-2, 50}));
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
  EXPECT_EQ(pieces[0].corners[0], (tarvo::Point{5, 0}));
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

/// The fields of a scene with one bone for each name; all share an image.
std::string WithBones(std::size_t count, const std::string& more) {
  std::string text =
      R"({"size": [9, 9], "images": {"tile": "tile.png"}, )" + more + R"("bones": [)";
  for (std::size_t i = 0; i < count; ++i) {
    text += (i == 0 ? "" : ",") + std::string(R"({"name": "B)") + std::to_string(i) +
            R"(", "image": "tile", "pieces": []})";
  }
  return text + "]}";
}

/// `member(i)` so many times, between commas.
template <typename Member>
std::string Repeated(std::size_t count, Member member) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) {
    text += (i == 0 ? "" : ", ") + member(std::to_string(i));
  }
  return text;
}

TEST(SceneFile, SaysWhichLimitAFilePasses) {
  const std::string deep(50'000, '[');
  const std::string closed(50'000, ']');
  const std::string longText(4097, 'x');
  const struct {
    std::string text;
    std::string faults;
  } cases[] = {
      // The second key makes the library copy the first one's value, with a call for each level.
      {"{\"size\":\n " + deep + closed + ", \"a\": 1, \"b\": 2}",
       "scene.json: line 2, column 65: at most 64 lists and objects inside one another expected, "
       "another one given\n"},
      {R"({"size": [9, 9], "bones": [], "set": {"[[\"[": )" + std::string(62, '[') +
           std::string(62, ']') + "}}",
       "scene.json: set[\"[[\"[\"]: number expected, list of 1 given\n"},
      {std::string("{\"size\": [9, 9], \"bones\": []}\n") + '\0' + "{}",
       "scene.json: line 2, column 1: JSON text expected, a zero byte given\n"},
      {R"({"size": [9, 9], "bones": [{"name": ")" + longText +
           R"(", "image": "a", "pieces": []}], "images": {"a": "tile.png"}})",
       "scene.json: bones[0].name: text of at most 4096 bytes expected, 4097 given\n"
       "scene.json: bones[0].name: text of at most 31 bytes expected, 4097 given\n"},
      {WithBones(4097, ""),
       "scene.json: bones: at most 4096 bones and other effects together expected, 4097 given\n"},
  };
  for (const auto& [text, faults] : cases) {
    EXPECT_EQ(Faults(text), faults);
  }
}

TEST(SceneFile, SaysAHundredFaultsAndHowManyMoreThereAre) {
  const std::string faults = Faults(
      R"({"size": [9, 9], "bones": [], )" +
      Repeated(250, [](const std::string& i) { return "\"k\\u001b[31m" + i + "\": 1"; }) + "}");
  EXPECT_EQ(std::count(faults.begin(), faults.end(), '\n'), 101);
  EXPECT_TRUE(faults.ends_with("\nand 150 more\n")) << faults.substr(faults.size() - 100);
  EXPECT_EQ(faults.find('\x1b'), std::string::npos);
  EXPECT_NE(faults.find(R"(k\x1B[31m249)"), 0U);
}

// Each takes from ten seconds to hours where the time is not linear in the file.
TEST(SceneFile, AnswersForManyOfEverything) {
  constexpr std::size_t kMany = 100'000;
  const auto numbers = [](const std::string& i) { return "\"l" + i + "\": 1"; };
  EXPECT_EQ(Read(WithBones(1, "\"set\": {" + Repeated(kMany, numbers) + "}, ")).settings.size(),
            kMany);
  const std::string keyed = Repeated(
      kMany, [](const std::string& i) { return "\"l" + i + R"(": [{"frame": 0, "value": 1}])"; });
  const tarvo::Animation animation = tarvo::ReadAnimation(
      WithBones(1, R"("frames": {"count": 2, "set": {)" + keyed + "}}, "), kImageFolder, "s.json");
  EXPECT_EQ(tarvo::SceneAt(animation, 1).settings.size(), kMany);
  // No bone has this name, and the many that there are would all be compared with it.
  EXPECT_NE(Faults(WithBones(4096, R"("frames": {"count": 2, "bones": {)" +
                                       Repeated(kMany,
                                                [](const std::string& i) {
                                                  return "\"none of these " + i + "\": {}";
                                                }) +
                                       "}}, "))
                .find("\nand 99900 more\n"),
            std::string::npos);
}

// Which bones own sliders changes with the keys, not with every frame of a long animation.
TEST(SceneFile, FindsBonesWithoutSlidersInLongAnimations) {
  const auto track = [](const std::string& i) {
    return "\"B" + i + R"(": {"active": [{"frame": 0, "value": true}, {"frame": )" + i +
           R"(.5, "value": false}]})";
  };
  std::string text =
      WithBones(2000, R"("frames": {"count": 100000, "bones": {)" + Repeated(1990, track) + "}}, ");
  EXPECT_EQ(Faults(text), "");
  // Bones 0 to 1989 become inactive one by one; bone 1998 is the 25th from frame 1974 on.
  const std::size_t place = text.find(R"("B1998", )") + 9;
  text.insert(place, R"("active": false, "z": 1, )");
  EXPECT_EQ(Faults(text), "");
  text.replace(
      text.find("\"bones\": {") + 10, 0,
      R"("B1998": {"active": [{"frame": 0, "value": false}, {"frame": 1900, "value": true}]}, )");
  EXPECT_EQ(
      Faults(text),
      "scene.json: bones[1998].z: only the first 25 active bones have sliders (frame 1900)\n");
}

TEST(SceneFile, SuggestsNothingForLongWords) {
  const std::string one(4000, 'x');
  const std::string other(4000, 'y');
  EXPECT_EQ(Faults(R"({"size": [9, 9], "images": {")" + other + R"(": "tile.png"}, "bones": [)" +
                   R"({"name": "A", "image": ")" + one + R"(", "pieces": []}]})"),
            "scene.json: bones[0].image: no image is called \"" + one.substr(0, 256) + "…\"\n");
}

// What no bone shows is checked like all others, and takes no memory.
TEST(SceneFile, DecodesWhatBonesShow) {
  const Scene scene = Read(R"({"size": [9, 9], "images": {"used": "tile.png", "unused": "tile.png",
      "again": "../broken/tile.png", "keyed": "tile.png"},
      "frames": {"count": 2, "bones": {"A": {"image": [{"frame": 1, "value": "keyed"}]}}},
      "bones": [{"name": "A", "image": "used", "imageB": "again", "pieces": []}]})");
  EXPECT_EQ(scene.images[0].picture.width, 32);
  EXPECT_EQ(scene.images[1].picture.width, 0);
  EXPECT_EQ(scene.images[2].picture, scene.images[0].picture);
  EXPECT_EQ(scene.images[3].picture, scene.images[0].picture);
  EXPECT_EQ(Faults(R"({"size": [9, 9], "images": {"unused": "damaged.png"}, "bones": []})"),
            "scene.json: images.unused: damaged.png: damaged PNG file (a checksum is wrong)\n");
}

}  // namespace
