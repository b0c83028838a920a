// Outputs larger than the render target are drawn in tiles, which must not be visible.

#include <algorithm>
#include <cstdint>
#include <iostream>
#include <string>
#include <tuple>

#include <gtest/gtest.h>

#include "base/image/compare.h"
#include "check/support/pieces.h"
#include "check/support/rig.h"
#include "plugin/gl/framework.h"
#include "tests/support/render_target.h"

namespace {

using check::Box;
using check::WarpedPieces;
using tarvo::Picture;

class TilesTest : public check::RigTest {
 protected:
  /// Overlapping warped pieces of three images all over an area.
  void Scatter(std::uint32_t seed, const Box& area, int pieces) {
    for (std::uint32_t bone = 0; bone < 3; ++bone) {
      rig.AddBone(check::Pattern(64, 48, seed + bone, bone == 1 ? 170 : 255),
                  WarpedPieces(seed * 10 + bone, pieces, area, 64, 48));
      rig.SetDepth(static_cast<int>(bone) + 1, 1.0 - bone, bone - 1.5);
    }
    rig.Send();
  }
};

struct Target {
  std::uint16_t width;
  std::uint16_t height;
};

class SmallTargets : public TilesTest,
                     public ::testing::WithParamInterface<std::tuple<Target, bool>> {};

TEST_P(SmallTargets, DrawWhatOneLargeTargetDoes) {
  const auto [target, exact] = GetParam();
  rig.SetFast(!exact);
  Scatter(21, {.left = 0, .top = 0, .width = 200, .height = 160}, 10);
  const Picture untiled = rig.Render().picture;
  check::ResizeRenderTarget(target.width, target.height);
  ASSERT_EQ(AESDK_OpenGL::gState.targetWidth, target.width);
  const Picture tiled = rig.Render().picture;

  const auto expected = rig.Expected(untiled);
  const auto inside = tarvo::Compare(tiled, untiled, 1, expected.comparable);
  const auto everywhere = tarvo::Compare(tiled, untiled, 1);
  std::cout << "off the edges " << inside.Text() << "; everywhere " << everywhere.Text() << "\n";
  EXPECT_LE(inside.largest, 1);
  // What coverage decides at an edge may flip, but only here and there.
  EXPECT_LE(everywhere.beyond, everywhere.compared / 1000);
}

std::string NameOf(const ::testing::TestParamInfo<std::tuple<Target, bool>>& table) {
  const auto& [target, exact] = table.param;
  return std::to_string(target.width) + "x" + std::to_string(target.height) +
         (exact ? "Exact" : "Fast");
}

INSTANTIATE_TEST_SUITE_P(Tiles, SmallTargets,
                         ::testing::Combine(::testing::Values(Target{64, 64}, Target{50, 170},
                                                              Target{500, 7}),
                                            ::testing::Bool()),
                         NameOf);

/// Only what is drawn on is cleared; whatever else the target holds must never show.
/// Half-transparent pieces, which each pass changes, lie across the output's edges and beyond them.
TEST_P(SmallTargets, ShowNothingOfWhatTheTargetHeldBefore) {
  const auto [target, exact] = GetParam();
  rig.SetFast(!exact);
  for (const double left : {-20.0, 30.0, 500.0}) {
    const Box area{.left = left, .top = -20, .width = 130, .height = 140};
    rig.AddBone(check::Pattern(32, 32, 5, 150), WarpedPieces(33, 8, area, 32, 32));
  }
  rig.Send();
  check::ResizeRenderTarget(target.width, target.height);
  const standin::FrameExtent extent{.width = 150, .height = 110, .originX = 3, .originY = -4};
  const Picture first = rig.host.RenderInto(rig.renderer, extent).picture;
  EXPECT_NE(first, Picture(150, 110));
  check::FillRenderTarget();
  EXPECT_EQ(rig.host.RenderInto(rig.renderer, extent).picture, first);
}

}  // namespace
