// The plug-in's pictures against the reference model, and against values worked out by hand.

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

#include "base/image/compare.h"
#include "check/support/parameters.h"
#include "check/support/pieces.h"
#include "check/support/requirement.h"
#include "check/support/rig.h"

namespace check::pictures {
namespace {

using standin::Companion;
using standin::FrameExtent;
using standin::FrameRequest;
using standin::RenderResult;
using tarvo::Picture;
using tarvo::Rgba;

constexpr Box kLayerArea{.left = 0, .top = 0, .width = 200, .height = 160};
constexpr Box kCut{.left = 2, .top = 2, .width = 60, .height = 44};
constexpr Rgba kOrange{.red = 240, .green = 120, .blue = 40, .alpha = 255};

/// Largest difference that rounding can cause, in 8-bit steps: one where the texture is read, which
/// the second pass all but doubles, one in each blend and one in the conversion to straight colour.
constexpr int kTolerance = 4;
/// The packed coordinates of the ownership maps misplace at most one pixel in this many.
constexpr std::size_t kPixelsPerOutlier = 20'000;

struct Case {
  const char* name;
  void (*build)(TestRig& rig);
  FrameRequest request{};
};

void OpaquePiece(TestRig& rig) {
  rig.AddBone(Pattern(64, 48, 1),
              {Piece({.left = 10, .top = 20, .width = 100, .height = 50}, kCut, 0.5)});
}

void HalfOpacity(TestRig& rig) {
  OpaquePiece(rig);
  rig.ActiveCompanions().front()->imageA.opacity = 0.5;
}

void OverlappingImages(TestRig& rig) {
  rig.AddBone(Pattern(64, 48, 2),
              {Piece({.left = 10, .top = 10, .width = 90, .height = 80}, kCut, 0.5)});
  rig.AddBone(Pattern(64, 48, 3, 170),
              {Piece({.left = 50, .top = 40, .width = 90, .height = 80}, kCut, 0.5)});
  rig.AddBone(SoftPattern(64, 48, 4),
              {Piece({.left = 30, .top = 20, .width = 120, .height = 120}, kCut, 0.5)});
  rig.SetDepth(1, -1.5, -1.5);  // between bone 2 and bone 3
}

void OverlapWithinOneImage(TestRig& rig) {
  rig.AddBone(Pattern(64, 48, 5, 160),
              {Piece({.left = 10, .top = 10, .width = 100, .height = 80},
                     {.left = 2, .top = 2, .width = 30, .height = 40}, 0.25),
               Piece({.left = 60, .top = 50, .width = 100, .height = 80},
                     {.left = 30, .top = 4, .width = 30, .height = 40}, 0.75),
               Piece({.left = 90, .top = 20, .width = 40, .height = 100},
                     {.left = 10, .top = 6, .width = 30, .height = 40}, 0.5)});
}

/// One piece twice, so many texels apart in its image.
void AddTwice(TestRig& rig, double right, double down) {
  constexpr Box kWhere{.left = 10, .top = 10, .width = 100, .height = 80};
  const Box first{.left = 2, .top = 2, .width = 30, .height = 40};
  Box second = first;
  second.left += right;
  second.top += down;
  rig.AddBone(Pattern(64, 48, 5, 160), {Piece(kWhere, first, 0), Piece(kWhere, second, 0.02)});
}

// Apart by a fiftieth of a texel: only one of the two owns a pixel.
void AlmostTheSamePiece(TestRig& rig) { AddTwice(rig, 0.02, 0.02); }
void AlmostTheSameColumns(TestRig& rig) { AddTwice(rig, 0.02, 0); }
void AlmostTheSameRows(TestRig& rig) { AddTwice(rig, 0, 0.02); }

void BothImagesOfOneBone(TestRig& rig) {
  Companion& bone = rig.AddBone(Pattern(64, 48, 6, 200), WarpedPieces(61, 5, kLayerArea, 64, 48));
  bone.imageB.Set(Pattern(90, 30, 7, 220));
  bone.imageB.opacity = 0.7;
  const auto fromB = WarpedPieces(62, 5, kLayerArea, 90, 30, TARVO_IMAGE_B);
  bone.pieces.insert(bone.pieces.end(), fromB.begin(), fromB.end());
}

void ManyWarpedPieces(TestRig& rig, std::uint32_t seed) {
  for (std::uint32_t bone = 0; bone < 4; ++bone) {
    const Picture image =
        bone % 2 == 0 ? SoftPattern(64, 48, seed + bone) : Pattern(64, 48, seed + bone, 210);
    rig.AddBone(image, WarpedPieces(seed * 10 + bone, 12, kLayerArea, 64, 48));
    rig.SetDepth(static_cast<int>(bone) + 1, 1.0 - bone, bone - 2.0);
  }
}

/// Pieces of one bone with the same t, so of exactly equal depth: their order is the one that the
/// quicksort's exchanges produce.
void EqualDepths(TestRig& rig) {
  for (std::uint32_t bone = 0; bone < 2; ++bone) {
    auto pieces = WarpedPieces(41 + bone, 9, kLayerArea, 64, 48);
    for (PieceQuad& piece : pieces) {
      piece.boneT = 0.5;
    }
    rig.AddBone(Pattern(64, 48, 51 + bone, 150), pieces);
  }
}

void WarpedPiecesSeed11(TestRig& rig) { ManyWarpedPieces(rig, 11); }
void WarpedPiecesSeed12(TestRig& rig) { ManyWarpedPieces(rig, 12); }
void WarpedPiecesSeed13(TestRig& rig) { ManyWarpedPieces(rig, 13); }

/// Bars side by side and across, each passing through all the others in depth.
void EightBonesCrossingInDepth(TestRig& rig) {
  for (int bone = 1; bone <= 8; ++bone) {
    std::vector<PieceQuad> bar;
    for (int i = 0; i < 8; ++i) {
      const double along = 4 + 22.0 * i;
      const double across = 4 + 17.0 * (bone - 1);
      const Box place = bone % 2 == 0
                            ? Box{.left = along, .top = across, .width = 26, .height = 22}
                            : Box{.left = across, .top = along, .width = 22, .height = 26};
      bar.push_back(
          Piece(place, {.left = 2 + 6.0 * i, .top = 2, .width = 12, .height = 44}, (i + 0.5) / 8));
    }
    rig.AddBone(Pattern(64, 48, 20 + static_cast<std::uint32_t>(bone), 235), bar);
    rig.SetDepth(bone, bone - 4.5, 4.25 - bone);
  }
}

/// Bones whose image never came, or whose pieces name no image; one that can be drawn.
void PiecesWithoutAPicture(TestRig& rig) {
  OpaquePiece(rig);
  rig.AddBone(Picture{}, WarpedPieces(31, 4, kLayerArea, 64, 48));
  rig.AddBone(Pattern(64, 48, 8), WarpedPieces(32, 4, kLayerArea, 64, 48, 1));
  rig.AddBone(Pattern(64, 48, 9), WarpedPieces(33, 4, kLayerArea, 64, 48, TARVO_IMAGE_B));
}

void TwentySevenBones(TestRig& rig) {
  for (std::uint32_t bone = 0; bone < 27; ++bone) {
    rig.AddBone(Pattern(32, 24, 40 + bone, 225), WarpedPieces(70 + bone, 2, kLayerArea, 32, 24));
  }
  rig.SetDepth(25, -30, -30);  // the pair that bones 25, 26 and 27 share, by their number
}

const std::vector<Case> kCases{
    {"OpaquePiece", OpaquePiece},
    {"HalfOpacity", HalfOpacity},
    {"OverlappingImages", OverlappingImages},
    {"OverlapWithinOneImage", OverlapWithinOneImage},
    {"BothImagesOfOneBone", BothImagesOfOneBone},
    {"EqualDepths", EqualDepths},
    {"WarpedPiecesSeed11", WarpedPiecesSeed11},
    {"WarpedPiecesSeed12", WarpedPiecesSeed12},
    {"WarpedPiecesSeed13", WarpedPiecesSeed13},
    {"HalfResolution", WarpedPiecesSeed11, {.downsampleX = 2, .downsampleY = 2}},
    {"QuarterHeight", WarpedPiecesSeed12, {.downsampleX = 1, .downsampleY = 4}},
    {"PreEffectOrigin", WarpedPiecesSeed13, {.preEffectOriginX = 30, .preEffectOriginY = -17}},
    {"AlmostTheSamePiece", AlmostTheSamePiece},
    {"AlmostTheSameColumns", AlmostTheSameColumns},
    {"AlmostTheSameRows", AlmostTheSameRows},
    {"EightBonesCrossingInDepth", EightBonesCrossingInDepth},
    {"PiecesWithoutAPicture", PiecesWithoutAPicture},
    {"TwentySevenBones", TwentySevenBones},
};

class Pictures : public RigTest, public ::testing::WithParamInterface<std::tuple<Case, bool>> {};

CHECK_P(Pictures, MatchTheModel,
        "A frame is what an independent model of the two passes draws, in both modes.") {
  const auto& [scene, exact] = GetParam();
  scene.build(rig);
  rig.SetFast(!exact);
  rig.Send();
  const RenderResult result = rig.Render(scene.request);
  const auto expected = rig.Expected(result.picture, scene.request);
  const auto comparison =
      tarvo::Compare(result.picture, expected.picture, kTolerance, expected.comparable);
  RecordProperty("pixels compared", std::to_string(comparison.compared));
  RecordProperty("largest difference", comparison.largest);
  // The rig is no test unless much of its picture is comparable.
  EXPECT_GT(comparison.compared, result.picture.pixels.size() / 4);
  EXPECT_LE(comparison.beyond, exact ? comparison.compared / kPixelsPerOutlier : 0);
}

std::string NameOf(const ::testing::TestParamInfo<std::tuple<Case, bool>>& table) {
  const auto& [scene, exact] = table.param;
  return std::string(scene.name) + (exact ? "Exact" : "Fast");
}

INSTANTIATE_TEST_SUITE_P(, Pictures,
                         ::testing::Combine(::testing::ValuesIn(kCases), ::testing::Bool()),
                         NameOf);

class Rendering : public RigTest {
 protected:
  /// Expects the picture to be the model's.
  void ExpectExpected(const Picture& picture, const FrameRequest& request = {}) {
    const auto expected = rig.Expected(picture, request);
    const auto comparison =
        tarvo::Compare(picture, expected.picture, kTolerance, expected.comparable);
    EXPECT_EQ(comparison.beyond, 0U) << comparison.Text();
  }
};

CHECK_F(Rendering, OpaquePieceLandsOnItsPixels,
        "An opaque piece along the axes colours exactly its own pixels, and the output is 5 % "
        "wider on each side.") {
  rig.AddBone(Picture(64, 48, kOrange),
              {Piece({.left = 10, .top = 20, .width = 100, .height = 50}, kCut, 0.5)});
  rig.Send();
  const Picture picture = rig.Render().picture;
  // 5 % of 100 and of 50 on each side; the layer's corner lies at (-5, -17).
  ASSERT_EQ(picture.width, 110);
  ASSERT_EQ(picture.height, 56);
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      const bool covered = x >= 5 && x < 105 && y >= 3 && y < 53;
      ASSERT_EQ(picture.At(x, y), covered ? kOrange : Rgba{}) << x << ", " << y;
    }
  }
}

CHECK_F(Rendering, OpacityIsStrengthenedByTheTwoPasses,
        "Half opacity shows as three quarters: the two passes add up.") {
  Companion& bone =
      rig.AddBone(Picture(64, 48, kOrange),
                  {Piece({.left = 10, .top = 20, .width = 100, .height = 50}, kCut, 0.5)});
  bone.imageA.opacity = 0.5;
  rig.Send();
  // 1 - 0.5 * 0.5 = 0.75, or 191.25, of the full colour.
  const Rgba pixel = rig.Render().picture.At(50, 30);
  EXPECT_NEAR(pixel.alpha, 191, 1);
  EXPECT_NEAR(pixel.red, kOrange.red, 1);
  EXPECT_NEAR(pixel.green, kOrange.green, 1);
  EXPECT_NEAR(pixel.blue, kOrange.blue, 1);
}

/// Sliders show hundredths, but animation and expressions pass through every number.
CHECK_F(Rendering, OfBonesWithEqualDepthsTheLaterOneIsInFront,
        "Of two bones with the same Z values the one further down the stack is in front, at each "
        "place along them; where the Z values differ by half a billionth, they decide.") {
  constexpr Rgba kBlue{.red = 20, .green = 40, .blue = 220, .alpha = 255};
  for (const Rgba colour : {kBlue, kOrange}) {
    rig.AddBone(Picture(64, 48, colour),
                {Piece({0, 0, 60, 40}, kCut, 0.25), Piece({60, 0, 60, 40}, kCut, 1.0)});
  }
  rig.Send();
  struct Values {
    double start;
    double end;
    double laterBy;  ///< what bone 2 has more
    Rgba front;
  };
  for (const Values z : {Values{-3, -3, 0, kOrange}, Values{2, -2, 0, kOrange},
                         Values{0, 0, 0, kOrange}, Values{0, 0, 5e-10, kBlue}}) {
    rig.SetDepth(1, z.start, z.end);
    rig.SetDepth(2, z.start + z.laterBy, z.end + z.laterBy);
    const Picture picture = rig.Render().picture;
    EXPECT_EQ(picture.At(36, 22), z.front) << z.start;
    EXPECT_EQ(picture.At(96, 22), z.front) << z.start;
  }
}

CHECK_F(Rendering, CheckboxAboveOneIsOn, "A fast transparency above 1 counts as 1.") {
  OverlapWithinOneImage(rig);
  rig.Send();
  const Picture fast = rig.Render().picture;
  rig.SetFast(false);
  const Picture exact = rig.Render().picture;
  EXPECT_TRUE(rig.host.SetParameter(rig.renderer, kFastTransparency, 3).Ok());
  EXPECT_EQ(rig.Render().picture, fast);
  EXPECT_NE(exact, fast);
}

/// Two pieces that almost share a long edge: their ends lie on one line, up to a small gap, and at
/// different places of it, so that rounding can lay one over the other. Folded, they share it, and
/// the second lies back over the first.
std::vector<PieceQuad> AlmostNeighbours(double x, double y, double angle, double gap,
                                        bool isFolded) {
  const double cos = std::cos(angle);
  const double sin = std::sin(angle);
  const auto quad = [&](double from, double to, double inner, double outer, double u) {
    PieceQuad piece = Piece({}, {.left = u, .top = 3, .width = 20, .height = 30}, u);
    const std::array<std::array<double, 2>, 4> corners{
        {{from, inner}, {to, inner}, {to, outer}, {from, outer}}};
    for (std::size_t corner = 0; corner < 4; ++corner) {
      const auto [along, across] = corners[corner];
      piece.corners[corner][0] = x + along * cos - across * sin;
      piece.corners[corner][1] = y + along * sin + across * cos;
    }
    return piece;
  };
  return {quad(-11.3, 11.7, gap, 6, 3.1),
          isFolded ? quad(-11.3, 11.7, gap, 5, 35.7) : quad(-12.1, 10.9, 0, -6, 35.7)};
}

/// 88 pairs of pieces, each apart from the others, turned and apart by different amounts.
std::vector<PieceQuad> PairsThatAlmostTouch(int frame) {
  std::vector<PieceQuad> pieces;
  for (int pair = 0; pair < 88; ++pair) {
    const int index = 88 * frame + pair;
    const int column = pair % 11;
    const int row = pair / 11;
    const double gap = (index % 5 - 1) / 2048.0;  // some overlap in truth
    for (const PieceQuad& piece : AlmostNeighbours(20.13 + 30 * column, 20.71 + 30 * row,
                                                   0.137 * index, gap, index % 8 == 7)) {
      pieces.push_back(piece);
    }
  }
  return pieces;
}

/// All texels are alike and half transparent: a second piece over the first would show as an alpha
/// of its own.
CHECK_F(Rendering, AnExactPixelShowsOnePieceOfAnImage,
        "In an exact frame no pixel shows two pieces of one image, also where they almost touch, "
        "share an edge, fold over one another or cross.") {
  Companion& bone =
      rig.AddBone(Picture(64, 48, {.red = 240, .green = 120, .blue = 40, .alpha = 150}),
                  {Piece({0, 0, 60, 40}, kCut, 0.5)});
  rig.SetFast(false);
  rig.Send();
  const std::uint8_t once = rig.Render().picture.At(30, 20).alpha;
  ASSERT_GT(once, 150);
  for (int frame = 0; frame < 20; ++frame) {
    bone.pieces = frame < 8
                      ? PairsThatAlmostTouch(frame)
                      : WarpedPieces(static_cast<std::uint32_t>(frame), 25, kLayerArea, 64, 48);
    rig.Send();
    const Picture picture = rig.Render().picture;
    const auto isWrong = [&](const Rgba& pixel) { return pixel.alpha != 0 && pixel.alpha != once; };
    EXPECT_EQ(std::ranges::count_if(picture.pixels, isWrong), 0) << "frame " << frame;
  }
}

CHECK_F(Rendering, LaterMessagesReplaceEarlierOnes,
        "Moved pieces and new images show in the next frame, and nothing of the old ones does.") {
  WarpedPiecesSeed12(rig);
  rig.Send();
  const Picture first = rig.Render().picture;
  EXPECT_EQ(rig.Render().picture, first);  // from the textures alone

  Companion& bone = *rig.ActiveCompanions().front();
  bone.pieces = WarpedPieces(99, 6, kLayerArea, 64, 48);  // moved, the image as it was
  rig.Send();
  const Picture moved = rig.Render().picture;
  EXPECT_NE(moved, first);
  ExpectExpected(moved);

  bone.imageA.Set(Pattern(50, 80, 77, 230));  // an image of another shape, and an opacity
  bone.imageA.opacity = 0.6;
  bone.pieces = WarpedPieces(98, 6, kLayerArea, 50, 80);
  rig.SetFast(false);
  rig.Send();
  ExpectExpected(rig.Render().picture);
}

CHECK_F(Rendering, OpacityChangesWithAnImageOnly,
        "A new opacity shows once an image is sent with it.") {
  OpaquePiece(rig);
  rig.Send();
  const Picture opaque = rig.Render().picture;
  Companion& bone = *rig.ActiveCompanions().front();
  bone.imageA.opacity = 0.25;
  rig.Send();
  EXPECT_EQ(rig.Render().picture, opaque);
  bone.imageA.isNew = true;
  rig.Send();
  ExpectExpected(rig.Render().picture);
}

CHECK_F(Rendering, AnImageSentBeforeItsPiecesIsDrawn,
        "An image that was sent before its pieces is drawn.") {
  Companion& bone = rig.AddBone(Pattern(64, 48, 1), {});
  rig.AddBone(Pattern(64, 48, 2), WarpedPieces(5, 4, kLayerArea, 64, 48));
  rig.Send();
  rig.Render();
  bone.pieces = WarpedPieces(6, 4, kLayerArea, 64, 48);
  rig.Send();
  ExpectExpected(rig.Render().picture);
}

CHECK_F(Rendering, EmptySceneAndTinyOutputsStayTransparent,
        "Without pieces, and in outputs below four pixels a side, the frame is transparent.") {
  const Picture empty = rig.Render().picture;
  EXPECT_EQ(empty, Picture(200, 160));
  rig.AddBone(Picture(64, 48, kOrange), {Piece(kLayerArea, kCut, 0.5)});
  rig.Send();
  struct Size {
    int width;
    int height;
    bool drawn;
  };
  for (const Size size : {Size{3, 50, false}, Size{50, 3, false}, Size{4, 4, true}}) {
    const FrameExtent extent{.command = {}, .width = size.width, .height = size.height};
    const RenderResult result = rig.host.RenderInto(rig.renderer, extent);
    EXPECT_TRUE(result.command.Ok());
    const Picture expected(size.width, size.height, size.drawn ? kOrange : Rgba{});
    EXPECT_EQ(result.picture, expected) << size.width << "x" << size.height;
  }
}

}  // namespace
}  // namespace check::pictures
