#include "tool/rig/animation.h"

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tool/rig/file/scene_file.h"

namespace {

using tarvo::Ease;
using tarvo::EasedFraction;
using tarvo::Point;
using tarvo::Scene;

/// Shares worked out by hand: the curve's point at a parameter s, its x given and its y expected.
TEST(Animation, EasesAlongTheHandles) {
  struct Case {
    Ease ease;
    double time;
    double way;
  };
  using Kind = Ease::Kind;
  const std::vector<Case> cases = {
      {{Kind::kLinear}, 0.3, 0.3},
      {{Kind::kHeld}, 0.99, 0.0},
      {{Kind::kCurve, 1.0 / 3, 0, 2.0 / 3, 1}, 0.25, 0.15625},   // x = s, y = 3s² - 2s³
      {{Kind::kCurve, 1.0 / 3, 0, 2.0 / 3, 2}, 0.75, 1.265625},  // beyond the way
      {{Kind::kCurve, 1.0 / 3, -1, 2.0 / 3, 1}, 0.25, -0.265625},
      {{Kind::kCurve, 1, 0, 0, 1}, 0.4375, 0.15625},  // s = 1/4; slope 0 half way
      {{Kind::kCurve, 0, 1, 1, 0}, 0.15625, 0.4375},  // s = 1/4; rushing at both ends
      {{Kind::kCurve, 0.42, 0, 0.58, 1}, 0.5, 0.5},
      {{Kind::kCurve, 0, 0, 0, 0}, 1e-9, 1e-9},  // s = 0.001; no slope at the start
  };
  for (const Case& test : cases) {
    EXPECT_NEAR(EasedFraction(test.ease, test.time), test.way, 1e-12)
        << test.ease.x1 << " " << test.ease.y1 << " at " << test.time;
  }
}

constexpr const char* kMoving = R"({
  "size": [100, 100], "images": {"tile": "tile.png", "other": "tile.png"},
  "set": {"Still end Z": 4, "Strip start Z": 1},
  "bones": [
    {"name": "Strip", "image": "tile", "z": [7, 8],
     "strip": {"rest": [[2, 16], [30, 16]], "width": 10, "pose": [[0, 5], [80, 5]], "pieces": 2}},
    {"name": "Card", "image": "tile", "opacity": 0.75,
     "pieces": [{"corners": [[1, 1], [9, 1], [9, 9], [1, 9]], "uv": [[1, 1], [31, 1], [31, 31], [1, 31]], "t": 0}]},
    {"name": "Still", "image": "tile", "pieces": []}],
  "frames": {"count": 21, "bones": {
    "Strip": {"pose": [{"frame": 0, "value": [[0, 5], [80, 5]]},
                       {"frame": 8, "value": [[0, 45], [80, 45]]},
                       {"frame": 10, "value": [[80, 45], [0, 45]]}],
              "poseWidth": [{"frame": 0, "value": 10}, {"frame": 10, "value": [20, 40]}],
              "z": [{"frame": 4, "value": 0, "ease": "hold"}, {"frame": 8, "value": [1, 2]},
                    {"frame": 12, "value": [3, -2]}]},
    "Card": {"corners": [{"frame": 10, "value": [[[1, 1], [9, 1], [9, 9], [1, 9]]]},
                         {"frame": 20, "value": [[[11, 1], [19, 1], [19, 29], [11, 29]]]}],
             "opacity": [{"frame": 0, "value": 1, "ease": [0.333, 4, 0.667, -3]}, {"frame": 10, "value": 0}],
             "image": [{"frame": 0, "value": "tile"}, {"frame": 9.5, "value": "other"}],
             "active": [{"frame": 3, "value": true}, {"frame": 5, "value": false}]}},
    "set": {"Strip start Z": [{"frame": 0, "value": -1}, {"frame": 20, "value": 1}]},
    "fast": [{"frame": 0, "value": true}, {"frame": 7, "value": false}]}})";

TEST(Animation, MovesWhatHasKeysAndNothingElse) {
  const tarvo::Animation animation = tarvo::ReadAnimation(
      kMoving, std::filesystem::path(TARVO_EXAMPLES) / "broken", "moving.json");
  EXPECT_EQ(animation.rate, 25.0);
  Scene scene = animation.scene;

  MoveTo(scene, animation, 2);
  EXPECT_EQ(scene.bones[0].z->start, 0.0);                          // of the first key
  EXPECT_EQ(scene.bones[0].pieces[1].corners[2], (Point{80, 23}));  // at y = 15, 16 wide
  EXPECT_EQ(scene.bones[1].opacity, 0.0);                           // would swing below
  EXPECT_TRUE(scene.bones[1].active);
  EXPECT_EQ(scene.settings[1].value, -0.8);
  EXPECT_EQ(scene.settings[1].place, R"(moving.json: frames.set["Strip start Z"] at frame 2)");

  MoveTo(scene, animation, 8);
  EXPECT_EQ(scene.bones[1].opacity, 1.0);  // would swing above

  MoveTo(scene, animation, 9);  // half way through its own mirror image: no length
  for (const tarvo::Piece& piece : scene.bones[0].pieces) {
    EXPECT_EQ(piece.corners[0], (Point{40, 45}));
    EXPECT_EQ(piece.corners[2], (Point{40, 45}));
  }
  EXPECT_EQ(scene.bones[0].z->end, 1.0);
  EXPECT_EQ(scene.bones[1].image, 0U);
  EXPECT_FALSE(scene.bones[1].active);
  EXPECT_FALSE(*scene.fast);

  MoveTo(scene, animation, 15);
  EXPECT_EQ(scene.bones[0].z->end, -2.0);  // of the last key
  EXPECT_EQ(scene.bones[1].pieces[0].corners[2], (Point{14, 19}));
  EXPECT_EQ(scene.bones[1].image, 1U);
  EXPECT_EQ(scene.settings[0].value, 4.0);

  MoveTo(scene, animation, 2);
  EXPECT_EQ(scene.bones[0].pieces[1].corners[2], (Point{80, 23}));
  EXPECT_EQ(scene.bones[1].pieces[0].corners[2], (Point{9, 9}));
  EXPECT_EQ(scene.bones[1].image, 0U);
  EXPECT_TRUE(*scene.fast);
}

}  // namespace
