#pragma once

#include <cstddef>
#include <cstdint>

#include <gtest/gtest.h>

#include "check/support/pieces.h"
#include "check/support/rig.h"

namespace check {

/// Renders that cannot succeed: what they leave in the output and what they release. Two bones
/// with two images each have been drawn once.
class FailedRenderTest : public RigTest {
 protected:
  FailedRenderTest() {
    constexpr Box kScene{.left = 0, .top = 0, .width = 100, .height = 80};
    for (std::uint32_t bone = 0; bone < 2; ++bone) {
      standin::Companion& companion =
          rig.AddBone(Pattern(32, 24, bone), WarpedPieces(bone, 4, kScene, 32, 24));
      companion.imageB.Set(Pattern(16, 20, 9 + bone));
      const auto fromB = WarpedPieces(7 + bone, 3, kScene, 16, 20, TARVO_IMAGE_B);
      companion.pieces.insert(companion.pieces.end(), fromB.begin(), fromB.end());
    }
    SendImages();
    good = rig.Render().picture;
  }

  void SendImages() {
    for (standin::Companion* companion : rig.ActiveCompanions()) {
      companion->SendImagesAgain();
    }
    rig.Send();
  }

  /// Renders with the failure that was set up, and expects no leak and the host's context restored;
  /// worlds that this render was to upload may stay pending for the next one.
  standin::RenderResult RenderWithFailure() {
    const std::size_t handles = rig.host.tracker.Count(standin::Kind::kHandle);
    const std::size_t worlds = rig.host.tracker.Count(standin::Kind::kWorld);
    standin::RenderResult result = rig.host.Render(rig.renderer);
    EXPECT_TRUE(rig.host.ContextIsCurrent());
    EXPECT_EQ(rig.host.tracker.Count(standin::Kind::kHandle), handles);
    EXPECT_LE(rig.host.tracker.Count(standin::Kind::kWorld), worlds);
    EXPECT_EQ(result.unwritten, 0U);
    return result;
  }

  /// With nothing failing any more and the images sent again, rendering works again.
  void ExpectRecovery() {
    rig.host.injector.FailNothing();
    rig.host.ShowAllSuites();
    SendImages();
    EXPECT_EQ(rig.Render().picture, good);
  }

  [[nodiscard]] bool IsTransparent(const tarvo::Picture& picture) const {
    return picture.pixels == tarvo::Picture(good.width, good.height).pixels;
  }

  tarvo::Picture good;
};

}  // namespace check
