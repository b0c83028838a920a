// Work on an image's maps is limited to the box of its pieces, which must not be visible.

#include "plugin/render/piece_area.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "check/support/pieces.h"
#include "check/support/rig.h"
#include "tests/support/render_target.h"
#include "tests/support/still_frame.h"

namespace {

using check::Box;
using plugin::Area;
using plugin::Tile;
using standin::FrameExtent;
using standin::FrameRequest;

constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();
constexpr Tile kTile{.x = 0, .y = 0, .width = 100, .height = 90};

class PieceAreaTest : public check::RigTest {
 protected:
  /// The area of rectangles on a layer at half resolution that begins at (7, -5).
  [[nodiscard]] Area AreaAt(const Tile& tile, const std::vector<Box>& boxes, A_long farX = 0) {
    check::StillFrame still(rig.host.InputRecord(nullptr));
    still.in.downsample_x.den = still.in.downsample_y.den = 2;
    still.in.output_origin_x = 3 - farX;
    still.in.pre_effect_source_origin_x = 4 + farX;
    still.in.output_origin_y = -5;
    still.in.pre_effect_source_origin_y = 0;
    std::deque<PieceQuad> quads;
    std::deque<plugin::DrawPiece> pieces;
    std::vector<const plugin::DrawPiece*> pointers(boxes.size());
    std::ranges::transform(boxes, pointers.begin(), [&](const Box& box) {
      quads.push_back(check::Piece(box, {}, 0));
      pieces.push_back({&quads.back(), 0, 0, {}});
      return &pieces.back();
    });
    return plugin::AreaOf(still.Make(), tile, pointers);
  }
};

TEST_F(PieceAreaTest, IsTheBoxWithTwoPixelsASideWithinTheTile) {
  const Box box{.left = 10, .top = 20, .width = 30, .height = 40};  // drawn at 12 to 27, 5 to 25
  EXPECT_EQ(AreaAt(kTile, {box}), (Area{.x = 10, .y = 3, .width = 19, .height = 24}));
  EXPECT_EQ(AreaAt({20, 10, 100, 90}, {box}), (Area{.x = 0, .y = 0, .width = 9, .height = 17}));
  EXPECT_EQ(AreaAt({29, 0, 100, 90}, {box}), Area{});
  EXPECT_EQ(AreaAt(kTile, {}), Area{});
  EXPECT_EQ(AreaAt(kTile, {box, {.left = 150, .top = 0}}),  // a point at 82, -5
            (Area{.x = 10, .y = 0, .width = 74, .height = 27}));

  const Area whole = WholeOf(kTile);
  for (const double wrong : {kNoNumber, HUGE_VAL, 2e8}) {
    EXPECT_EQ(AreaAt(kTile, {box, {.left = wrong}}), whole) << wrong;
    EXPECT_EQ(AreaAt(kTile, {{.top = wrong}, box}), whole) << wrong;
  }
  EXPECT_EQ(AreaAt(kTile, {box}, 100'000'000), whole);
}

/// A layout of pieces and the frame it is rendered into.
struct FrameCase {
  std::string name;
  Box area;
  FrameExtent extent{};
  FrameRequest request{};
  /// Replaces the x of one corner of each bone's first piece.
  std::optional<double> oddX{};
  /// From the frame's edge to what is added, in pixels: places that single precision can hold.
  double inset = 1;
};

class Boxes : public PieceAreaTest, public ::testing::WithParamInterface<FrameCase> {
 protected:
  static constexpr int kWidth = 160;
  static constexpr int kHeight = 112;

  /// Pieces that each lie there twice, so that a pixel without an owner shows, and one without an
  /// area. Widened, each image also has a line all through the frame, which draws nothing.
  tarvo::Picture Draw(std::uint32_t seed, bool isWidened) {
    for (std::uint32_t bone = 0; bone < bones_.size(); ++bone) {
      std::vector<PieceQuad> pieces =
          check::WarpedPieces(seed * 10 + bone, 4, GetParam().area, 32, 32);
      if (GetParam().oddX) {
        pieces.front().corners[2][0] = *GetParam().oddX;
      }
      for (const int axis : {0, 1}) {
        for (const int c : {0, 1}) {
          pieces[1].corners[3 - c][axis] = pieces[1].corners[c][axis];
        }
      }
      for (PieceQuad copy : std::vector(pieces)) {
        copy.boneT += 0.01;
        for (const int c : {0, 1, 2, 3}) {
          copy.texCoords[c][0] = 32 - copy.texCoords[c][0];
        }
        pieces.push_back(copy);
      }
      if (isWidened) {
        pieces.push_back(Line());
      }
      bones_[bone]->pieces = pieces;
    }
    rig.Send();
    return rig.host.RenderInto(rig.renderer, Extent(), GetParam().request).picture;
  }

  /// Three images, so transparent that a piece shows what lies behind it.
  void SetUp() override {
    PieceAreaTest::SetUp();
    rig.SetFast(false);
    for (int bone = 1; bone <= 3; ++bone) {
      bones_.push_back(&rig.AddBone(check::Pattern(32, 32, 5, 150), {}));
      rig.SetDepth(bone, 1 + 0.1 * bone, -1);
    }
  }

 private:
  [[nodiscard]] static FrameExtent Extent() {
    FrameExtent extent = GetParam().extent;
    extent.width = kWidth;
    extent.height = kHeight;
    return extent;
  }

  /// From one corner of the frame to the other and back, behind all other pieces.
  [[nodiscard]] static PieceQuad Line() {
    const auto& [name, area, extent, request, oddX, inset] = GetParam();
    const double originX = extent.originX + request.preEffectOriginX;
    const double originY = extent.originY + request.preEffectOriginY;
    PieceQuad line = check::Piece({}, {}, -1000);
    for (const int corner : {0, 1, 2, 3}) {
      const bool isEnd = corner == 1 || corner == 2;
      line.corners[corner][0] = ((isEnd ? kWidth - inset : inset) - originX) * request.downsampleX;
      line.corners[corner][1] = ((isEnd ? kHeight - inset : inset) - originY) * request.downsampleY;
    }
    return line;
  }

  std::vector<standin::Companion*> bones_;
};

TEST_P(Boxes, LeaveTheBytesThatTheWholeTileGives) {
  for (const int side : {4096, 64}) {
    check::ResizeRenderTarget(static_cast<std::uint16_t>(side), static_cast<std::uint16_t>(side));
    for (std::uint32_t seed = 0; seed < 3; ++seed) {
      EXPECT_EQ(Draw(seed, false), Draw(seed, true)) << "seed " << seed << ", target " << side;
    }
  }
}

constexpr Box kInside{.left = 20, .top = 20, .width = 110, .height = 76};
constexpr Box kAcross{.left = -40, .top = -30, .width = 240, .height = 170};

FrameCase Far(const std::string& name, double x, A_long originX) {
  Box area = kInside;
  area.left += x;
  return {.name = name, .area = area, .extent = {.originX = originX}, .inset = 8};
}

INSTANTIATE_TEST_SUITE_P(
    Seen, Boxes,
    ::testing::Values(FrameCase{"AcrossTheEdges", kAcross},
                      FrameCase{"Elsewhere", {.left = 500, .top = -90, .width = 80, .height = 70}},
                      FrameCase{"AtAnOrigin", kInside, {.originX = 40, .originY = -9}},
                      FrameCase{"AtHalfResolution",
                                {.left = 20, .top = 30, .width = 200, .height = 260},
                                {.originX = 9},
                                {.downsampleX = 2, .downsampleY = 3, .preEffectOriginX = -7}},
                      FrameCase{"WithACornerThatIsNoNumber", kAcross, {}, {}, kNoNumber},
                      FrameCase{"WithACornerBeyondSinglePrecision", kAcross, {}, {}, -1e39},
                      FrameCase{"WithAFarCorner", kAcross, {}, {}, 2e7},
                      Far("FarToTheRight", 1e8 + 3, -100'000'000),
                      Far("FarToTheLeft", -7e7 - 5, 70'000'000)),
    [](const auto& table) { return table.param.name; });

}  // namespace
