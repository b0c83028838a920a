// Renders that cannot succeed: what they report, what they leave in the output and what they give
// back.

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "check/support/failed_render_test.h"
#include "check/support/requirement.h"

namespace check::failed_renders {
namespace {

using standin::Failure;
using standin::RenderResult;
using tarvo::Picture;

constexpr PF_Err kOther = 7002;  // not the code that the stand-in injects by itself

using FailedRenders = FailedRenderTest;

/// A host operation that fails while a frame is rendered.
struct HostFailure {
  const char* operation;
  std::uint64_t occurrence;
  Failure failure;
  bool imagesPending;
  PF_Err expected;
  bool outputIsComplete = false;
};

std::ostream& operator<<(std::ostream& stream, const HostFailure& failing) {
  return stream << failing.operation << " " << failing.occurrence
                << (failing.failure.throws ? " throws" : " fails")
                << (failing.imagesPending ? ", images pending" : "");
}

constexpr PF_Err kCancel = PF_Interrupt_CANCEL;
constexpr Failure kReturned{.code = kOther};
constexpr Failure kThrown{.code = kOther, .throws = true};

const std::vector<HostFailure> kHostFailures{
    {"new_world", 1, kReturned, false, kOther},
    {"premultiply", 1, kReturned, false, kOther},
    {"copy", 1, kReturned, false, kOther},
    // A failed render must not upload what it would then lose.
    {"new_world", 1, kReturned, true, kCancel},
    // Buffers of the four uploads: the second image of a slot is discarded with the first.
    {"host_new_handle", 1, kReturned, true, kCancel},
    {"host_new_handle", 2, kReturned, true, kCancel},
    {"host_new_handle", 3, kReturned, true, kCancel},
    {"host_lock_handle", 4, kReturned, true, kCancel},
    {"get_pixel_data8", 1, kReturned, true, kCancel},
    {"get_pixel_data8", 10, kThrown, true, kOther},
    {"get_pixel_data8", 60, kThrown, true, kOther},
    // Disposal of an uploaded image fails: its code is the result unless another upload follows in
    // the frame, which turns it into 517.
    {"dispose_world", 1, kReturned, true, kCancel},
    {"dispose_world", 4, kReturned, true, kOther},
    // The readback fails: the output stays transparent, and the result is 0 unless the host throws.
    {"host_new_handle", 1, kReturned, false, 0},
    {"host_lock_handle", 1, kReturned, false, 0},
    {"get_pixel_data8", 1, kReturned, false, 0},
    {"get_pixel_data8", 20, kThrown, false, kOther},
    // What follows the readback throws.
    {"premultiply", 1, kThrown, false, kOther},
    {"copy", 1, kThrown, false, kOther},
    // Nothing is lost by it: an image is in its texture, a tile in the world.
    {"host_unlock_handle", 1, kThrown, true, 0, true},
    {"host_unlock_handle", 1, kThrown, false, 0, true},
    // The picture is in the output by then.
    {"dispose_world", 1, kReturned, false, kOther, true},
    {"dispose_world", 1, kThrown, false, kOther, true},
};

CHECK_F(FailedRenders, ReportWhatTheHostFailed,
        "A host operation that fails in a render gives the result that belongs to it and a "
        "transparent output; nothing leaks, and images sent again are drawn.") {
  for (const HostFailure& failing : kHostFailures) {
    SCOPED_TRACE(::testing::PrintToString(failing));
    if (failing.imagesPending) {
      SendImages();
    }
    const std::uint64_t injected = rig.host.injector.Injected();
    rig.host.injector.FailOperation(failing.operation, failing.occurrence, failing.failure);
    const RenderResult result = RenderWithFailure();
    EXPECT_EQ(rig.host.injector.Injected(), injected + 1);
    EXPECT_EQ(result.command.code, failing.expected);
    EXPECT_EQ(result.command.message, "");
    EXPECT_EQ(result.picture == good, failing.outputIsComplete);
    EXPECT_EQ(IsTransparent(result.picture), !failing.outputIsComplete);
    ExpectRecovery();
  }
}

/// The output's contents are undefined when the fill failed, so only the result is tested.
CHECK_F(FailedRenders, ReportAFailedFillUnlessAnImageIsPending,
        "A failed fill determines the result, which is 517 when an image is pending.") {
  for (const bool imagesPending : {false, true}) {
    if (imagesPending) {
      SendImages();
    }
    rig.host.injector.FailOperation("fill", 1, kReturned);
    EXPECT_EQ(rig.host.Render(rig.renderer).command.code, imagesPending ? kCancel : kOther);
    ExpectRecovery();
  }
}

/// The images are other ones than those drawn before; sent anew, they are drawn for comparison.
CHECK_F(FailedRenders, KeepImagesThatCannotBeDisposedOf,
        "When a render fails without the suite that disposes of images, pending ones are kept "
        "and show in the next frame.") {
  for (standin::Companion* bone : rig.ActiveCompanions()) {
    const Picture& image = bone->imageA.picture;
    bone->imageA.Set(Pattern(image.width, image.height, 70));
  }
  rig.Send();
  const std::size_t worlds = rig.host.tracker.Count(standin::Kind::kWorld);
  rig.host.injector.FailOperation("fill", 1, kReturned);
  rig.host.HideSuite("PF World Suite", 1);
  EXPECT_EQ(rig.host.Render(rig.renderer).command.code, PF_Err_BAD_CALLBACK_PARAM);
  EXPECT_EQ(rig.host.tracker.Count(standin::Kind::kWorld), worlds);
  rig.host.ShowAllSuites();
  const Picture kept = rig.Render().picture;
  EXPECT_NE(kept, good);
  SendImages();
  EXPECT_EQ(kept, rig.Render().picture);
}

/// Every upload's buffer in turn, of four new images. What the next frame must show of them is sent
/// anew and drawn, for comparison.
CHECK_F(FailedRenders, DiscardTheImagesOfOneBoneOnly,
        "When the host fails an upload, the pending images of its bone are discarded; images of "
        "other bones show in the next frame, and the discarded ones show as before.") {
  const auto bones = rig.ActiveCompanions();
  std::vector<standin::CompanionImage*> images;
  for (standin::Companion* bone : bones) {
    images.push_back(&bone->imageA);
    images.push_back(&bone->imageB);
  }
  const std::vector<std::vector<std::size_t>> givenUp{{0, 1}, {1}, {2, 3}, {3}};
  std::uint32_t seed = 100;
  for (std::size_t upload = 0; upload < images.size(); ++upload) {
    std::vector<Picture> before;
    for (standin::CompanionImage* image : images) {
      before.push_back(image->picture);
      image->Set(Pattern(image->picture.width, image->picture.height, ++seed));
    }
    rig.Send();
    rig.host.injector.FailOperation("host_new_handle", upload + 1, kReturned);
    EXPECT_EQ(RenderWithFailure().command.code, kCancel);
    const Picture next = rig.Render().picture;
    for (const std::size_t at : givenUp[upload]) {
      images[at]->picture = before[at];
    }
    SendImages();
    EXPECT_EQ(next, rig.Render().picture) << upload;
  }
}

CHECK_F(FailedRenders, Return516WithoutASuite,
        "A render without one of its suites returns 516 and a transparent output.") {
  struct Missing {
    const char* suite;
    std::int32_t version;
    bool imagesPending;
  };
  for (const Missing& missing :
       {Missing{"PF World Suite", 1, false}, Missing{"PF Handle Suite", 2, false},
        Missing{"PF Handle Suite", 2, true}, Missing{"PF Fill Matte Suite", 2, false}}) {
    SCOPED_TRACE(missing.suite);
    if (missing.imagesPending) {
      SendImages();
    }
    rig.host.HideSuite(missing.suite, missing.version);
    const RenderResult result = RenderWithFailure();
    EXPECT_EQ(result.command.code, PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(result.command.message, "");
    EXPECT_TRUE(IsTransparent(result.picture));
    ExpectRecovery();
  }
}

}  // namespace
}  // namespace check::failed_renders
