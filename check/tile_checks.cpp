// Outputs larger than the render target are drawn in tiles, which must not be visible.

#include <cstdint>
#include <vector>

#include "base/image/compare.h"
#include "check/support/pieces.h"
#include "check/support/requirement.h"
#include "check/support/rig.h"

namespace check::tiles {
namespace {

using tarvo::Picture;
using Tiles = RigTest;

/// Longer than any target that the plug-in makes for itself: 4096 pixels.
void ExpectDrawnAsOne(TestRig& rig, bool tall) {
  const auto laid = [&](double along, double across, double length, double breadth) {
    return tall ? Box{.left = across, .top = along, .width = breadth, .height = length}
                : Box{.left = along, .top = across, .width = length, .height = breadth};
  };
  for (std::uint32_t bone = 0; bone < 3; ++bone) {
    std::vector<PieceQuad> pieces;
    for (int i = 0; i < 24; ++i) {
      const std::uint32_t seed = 700 + bone * 100 + static_cast<std::uint32_t>(i);
      pieces.push_back(WarpedPieces(seed, 1, laid(180.0 * i, 0, 220, 60), 64, 48).front());
    }
    // One across the place where the first tile ends.
    pieces.push_back(Piece(laid(3700, 5.0 + 8 * bone, 500, 30),
                           {.left = 3, .top = 3, .width = 58, .height = 42}, 0.5));
    rig.AddBone(Pattern(64, 48, 31 + bone, 220), pieces);
  }
  rig.Send();
  for (const bool exact : {false, true}) {
    rig.SetFast(!exact);
    const Picture picture = rig.Render().picture;
    ASSERT_GT(tall ? picture.height : picture.width, 4096);
    const auto expected = rig.Expected(picture);
    const auto comparison = tarvo::Compare(picture, expected.picture, 2, expected.comparable);
    EXPECT_LE(comparison.beyond, exact ? comparison.compared / 20'000 : 0);
  }
}

CHECK_F(Tiles, OfAWideOutputMatchTheModel,
        "An output wider than any render target is drawn as if it were one.") {
  ExpectDrawnAsOne(rig, false);
}

CHECK_F(Tiles, OfATallOutputMatchTheModel,
        "An output taller than any render target is drawn as if it were one.") {
  ExpectDrawnAsOne(rig, true);
}

}  // namespace
}  // namespace check::tiles
