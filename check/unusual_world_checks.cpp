// Renders for which the host makes other images than it was asked for.

#include <cstddef>
#include <limits>

#include "check/support/requirement.h"
#include "check/support/settings.h"
#include "check/support/unusual_worlds_test.h"

namespace check::unusual_worlds {
namespace {

using tarvo::Picture;

class UnusualWorlds : public UnusualWorldsTest {};

/// So much narrower that the second tile of the frame lies beside it.
CHECK_F(UnusualWorlds, SmallerThanRequestedAreFilledToTheirEdges,
        "A frame for which the host makes a smaller world is drawn up to its edges.") {
  standin::Companion& bone = *rig.ActiveCompanions().front();
  bone.pieces.push_back(bone.pieces.front());
  PieceQuad& far = bone.pieces.back();
  // NOLINTNEXTLINE(modernize-loop-convert): corners are packed and must not be referred to.
  for (std::size_t corner = 0; corner < 4; ++corner) {
    far.corners[corner][0] += TheSettings().tiledWidth;
  }
  rig.Send();
  const Picture whole = rig.Render().picture;
  const Picture part = RenderWith(
      whole, [](const auto& host, PF_ProgPtr effect, A_long, A_long height, PF_EffectWorld* world) {
        return MakeWorld(host, effect, 90, height, world);
      });
  for (int y = 0; y < whole.height; ++y) {
    for (int x = 0; x < whole.width; ++x) {
      ASSERT_EQ(part.At(x, y), x < 90 ? whole.At(x, y) : tarvo::Rgba{}) << x << ", " << y;
    }
  }
}

CHECK_F(UnusualWorlds, WithAnUnlimitedExtentAreNotCopied,
        "A frame whose world has an unlimited extent stays transparent.") {
  const Picture picture = RenderWith(good, [](const auto& host, PF_ProgPtr effect, A_long width,
                                              A_long height, PF_EffectWorld* world) {
    const PF_Err result = MakeWorld(host, effect, width, height, world);
    constexpr A_long kLeast = std::numeric_limits<A_long>::min();
    constexpr A_long kMost = std::numeric_limits<A_long>::max();
    world->extent_hint = {kMost, kMost, kLeast + 99, kLeast + 99};
    return result;
  });
  EXPECT_TRUE(IsTransparent(picture));
}

/// No world has such a size, so that the host's part is played here.
CHECK_F(
    UnusualWorlds, OfTheLargestNumberAreNotDrawn,
    "A frame of 2,147,483,647 pixels a side, for which there is no world, ends at once with the "
    "host's code.") {
  PF_InData in = InputRecord(good);
  SubstituteWorlds worlds(in.pica_basicP, [](auto&&...) { return PF_Err_OUT_OF_MEMORY; });
  in.pica_basicP = worlds.Suites();
  PF_UtilCallbacks utilities = *in.utils;
  utilities.fill = [](PF_ProgPtr, const PF_Pixel*, const PF_Rect*, PF_EffectWorld*) {
    return PF_Err_NONE;
  };
  in.utils = &utilities;
  PF_OutData out{};
  PF_EffectWorld output{};
  output.width = output.height = std::numeric_limits<A_long>::max();
  EXPECT_EQ(rig.host.CallWith(PF_Cmd_RENDER, in, out, parameters.data(), &output, nullptr).code,
            PF_Err_OUT_OF_MEMORY);
}

}  // namespace
}  // namespace check::unusual_worlds
