#include "tool/reference/overlap.h"

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "base/image/compare.h"
#include "check/support/pieces.h"
#include "tool/reference/overlap_picture.h"

// Tests the reference model against values computed by hand.

namespace {

using check::Piece;
using tarvo::Overlap;
using tarvo::OverlapBone;
using tarvo::OverlapPicture;
using tarvo::OverlapView;
using tarvo::Picture;
using tarvo::Rgba;

constexpr check::Box kWholeCut{.left = 1, .top = 1, .width = 6, .height = 6};

OverlapPicture Draw(const std::vector<OverlapBone>& bones, const OverlapView& view) {
  return DrawOverlap(Overlap(bones, view));
}

OverlapBone Bone(Rgba colour, const check::Box& place, double opacity = 1) {
  return {.pieces = {Piece(place, kWholeCut, 0.5)},
          .imageA = Picture(8, 8, colour),
          .imageB = {},
          .opacityA = opacity};
}

Rgba CentreOf(const std::vector<OverlapBone>& bones, bool exact = false) {
  return Draw(bones, {.width = 10, .height = 10, .exact = exact}).picture.At(5, 5);
}

constexpr check::Box kSquare{.left = 2, .top = 2, .width = 6, .height = 6};

TEST(Overlap, OpaquePieceCoversItsPixelsAndNoOthers) {
  const Rgba red{.red = 200, .green = 10, .blue = 20, .alpha = 255};
  const Picture picture = Draw({Bone(red, kSquare)}, {.width = 10, .height = 10}).picture;
  for (int y = 0; y < 10; ++y) {
    for (int x = 0; x < 10; ++x) {
      const bool inside = x >= 2 && x < 8 && y >= 2 && y < 8;
      EXPECT_EQ(picture.At(x, y), inside ? red : Rgba{}) << x << ", " << y;
    }
  }
}

TEST(Overlap, CornersWithoutNumbersCoverNothing) {
  const Rgba red{.red = 200, .green = 10, .blue = 20, .alpha = 255};
  for (const double wrong : {std::nan(""), HUGE_VAL, 1e300}) {
    EXPECT_EQ(CentreOf({Bone(red, {.left = wrong, .top = 2, .width = 6, .height = 6})}), Rgba{});
  }
}

TEST(Overlap, OpacityIsStrengthenedByTheTwoPasses) {
  // Alpha 127.5 is kept as 128; 128 + 128 * 127/255 = 191.7. Colour 100 + 100 * 127/255 = 149.8,
  // and 150 * 255/192 = 199.2.
  const Rgba seen =
      CentreOf({Bone({.red = 200, .green = 0, .blue = 0, .alpha = 255}, kSquare, 0.5)});
  EXPECT_EQ(seen, (Rgba{.red = 199, .green = 0, .blue = 0, .alpha = 192}));
}

TEST(Overlap, LowerDepthIsOnTopAndHigherBonesWinTies) {
  OverlapBone red = Bone({.red = 255, .green = 0, .blue = 0, .alpha = 255}, kSquare);
  OverlapBone blue = Bone({.red = 0, .green = 0, .blue = 255, .alpha = 255}, kSquare);
  EXPECT_EQ(CentreOf({red, blue}).blue, 255);
  red.startZ = red.endZ = -1;
  EXPECT_EQ(CentreOf({red, blue}).red, 255);
  // At 0.5 along the bone, from 4 to -7 lies -1.5: in front of -1.
  blue.startZ = 4;
  blue.endZ = -7;
  EXPECT_EQ(CentreOf({red, blue}).blue, 255);
}

TEST(Overlap, PiecesOfOneImageShowThroughOnlyInFastMode) {
  // One image, its left half green and its right half red, both of alpha 153 (0.6): 200 is kept as
  // 120. Either way the first pass leaves (120, 120, 0, 153).
  OverlapBone bone = Bone({.red = 200, .green = 0, .blue = 0, .alpha = 153}, kSquare);
  for (int y = 0; y < 8; ++y) {
    for (int x = 0; x < 4; ++x) {
      bone.imageA.At(x, y) = {.red = 0, .green = 200, .blue = 0, .alpha = 153};
    }
  }
  bone.pieces = {Piece(kSquare, {.left = 5, .top = 1, .width = 2, .height = 6}, 0.75),
                 Piece(kSquare, {.left = 1, .top = 1, .width = 2, .height = 6}, 0.25)};
  // The red one is in front. Exact: red 120 + 120 * 0.4 = 168, green 120 * 0.4 = 48, alpha
  // 153 + 153 * 0.4 = 214.2; straight: 168 * 255/214 = 200.2, 48 * 255/214 = 57.2.
  EXPECT_EQ(CentreOf({bone}, true), (Rgba{.red = 200, .green = 57, .blue = 0, .alpha = 214}));
  // Fast, green first: red 48, green 168, alpha 214; then red: 120 + 48 * 0.4 = 139.2,
  // 168 * 0.4 = 67.2, 153 + 214 * 0.4 = 238.6.
  EXPECT_EQ(CentreOf({bone}, false), (Rgba{.red = 148, .green = 71, .blue = 0, .alpha = 239}));
  // Below half alpha no piece owns the pixel, and both are drawn again.
  for (Rgba& pixel : bone.imageA.pixels) {
    pixel.alpha = 120;
  }
  EXPECT_EQ(CentreOf({bone}, true), CentreOf({bone}, false));
}

TEST(Overlap, PlacesByScaleAndOriginAndMarksOnlyEdgesAsNotComparable) {
  const Rgba green{.red = 0, .green = 90, .blue = 0, .alpha = 255};
  const OverlapView frame{
      .width = 20, .height = 20, .scaleX = 0.5, .scaleY = 0.5, .originX = 3, .originY = -2};
  const auto drawn = Draw({Bone(green, {.left = 8, .top = 12, .width = 16, .height = 20})}, frame);
  // Columns 4 + 3 = 7 to 15, rows 6 - 2 = 4 to 14.
  EXPECT_EQ(drawn.picture.At(7, 4), green);
  EXPECT_EQ(drawn.picture.At(14, 13), green);
  EXPECT_EQ(drawn.picture.At(6, 4), Rgba{});
  EXPECT_EQ(drawn.picture.At(15, 13), Rgba{});
  // Within one pixel of an edge lie the pixels on either side of it; the rest is comparable.
  EXPECT_FALSE(drawn.comparable.at(4 * 20 + 9));
  EXPECT_FALSE(drawn.comparable.at(3 * 20 + 9));
  EXPECT_TRUE(drawn.comparable.at(5 * 20 + 9));
  EXPECT_TRUE(drawn.comparable.at(2 * 20 + 9));
}

TEST(Comparison, CountsAndFindsTheLargestDifferenceWhereItLooks) {
  Picture one(3, 1, {.red = 100, .green = 0, .blue = 0, .alpha = 255});
  Picture other = one;
  other.At(1, 0).red = 110;
  other.At(2, 0).alpha = 0;
  const auto all = tarvo::Compare(one, other, 10);
  EXPECT_EQ(all.compared, 3U);
  EXPECT_EQ(all.largest, 255);
  EXPECT_EQ(all.beyond, 1U);
  EXPECT_EQ(all.x, 2);
  EXPECT_EQ(tarvo::Compare(one, other, 10, {true, true, false}).largest, 10);
  // A colour that is hardly seen hardly counts: 100 * 5/255 against 50 * 5/255.
  one = Picture(1, 1, {.red = 100, .green = 0, .blue = 0, .alpha = 5});
  other = Picture(1, 1, {.red = 50, .green = 0, .blue = 0, .alpha = 5});
  EXPECT_EQ(tarvo::Compare(one, other, 0).largest, 1);
}

}  // namespace
