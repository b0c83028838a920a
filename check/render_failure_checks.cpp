// Renders that cannot succeed: what they report, what they leave in the output and what they give
// back.

#include <ostream>
#include <string>
#include <vector>

#include "check/support/failed_render_test.h"
#include "check/support/promise.h"

namespace check::failed_renders {
namespace {

using standin::Failure;
using standin::Picture;
using standin::RenderResult;

constexpr PF_Err kOther = 7002;  // not the code that the stand-in injects by itself

using FailedRenders = FailedRenderTest;

/// A host operation that fails while a frame is rendered.
struct HostFailure {
  const char* operation;
  std::uint64_t occurrence;
  Failure failure;
  bool imagesPending;
  PF_Err expected;
  bool outputIsWhole = false;
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
    // Buffers of the four uploads: the second image of a slot is given up with the first.
    {"host_new_handle", 1, kReturned, true, kCancel},
    {"host_new_handle", 2, kReturned, true, kCancel},
    {"host_new_handle", 3, kReturned, true, kCancel},
    {"host_lock_handle", 4, kReturned, true, kCancel},
    {"get_pixel_data8", 1, kReturned, true, kCancel},
    {"get_pixel_data8", 10, kThrown, true, kOther},
    {"get_pixel_data8", 60, kThrown, true, kOther},
    // A taken image that cannot be given back: the code is the host's until the next upload.
    {"dispose_world", 1, kReturned, true, kCancel},
    {"dispose_world", 4, kReturned, true, kOther},
    // The readback: of nothing, nothing is shown.
    {"host_new_handle", 1, kReturned, false, 0},
    {"host_lock_handle", 1, kReturned, false, 0},
    {"get_pixel_data8", 1, kReturned, false, 0},
    {"get_pixel_data8", 20, kThrown, false, kOther},
    {"premultiply", 1, kThrown, false, kOther},
    {"copy", 1, kThrown, false, kOther},
    // The picture is in the output by then.
    {"dispose_world", 1, kReturned, false, kOther, true},
    {"dispose_world", 1, kThrown, false, kOther, true},
};

CHECK_F(FailedRenders, ReportWhatTheHostFailed,
        "A host operation that fails in a render gives the specified result and a transparent "
        "output; nothing is lost, and images sent again show as ever.") {
  for (const HostFailure& failing : kHostFailures) {
    SCOPED_TRACE(::testing::PrintToString(failing));
    if (failing.imagesPending) SendImages();
    const std::uint64_t injected = rig.host.gate.Injected();
    rig.host.gate.FailOperation(failing.operation, failing.occurrence, failing.failure);
    const RenderResult result = RenderBadly();
    EXPECT_EQ(rig.host.gate.Injected(), injected + 1);
    EXPECT_EQ(result.command.code, failing.expected);
    EXPECT_EQ(result.command.message, "");
    EXPECT_EQ(result.picture == good, failing.outputIsWhole);
    EXPECT_EQ(IsTransparent(result.picture), !failing.outputIsWhole);
    ExpectRecovery();
  }
}

/// Nothing can be said of the output then.
CHECK_F(FailedRenders, ReportAFailedFillUnlessAnImageWaits,
        "A fill that fails is the result, or 517 when an image waits.") {
  for (const bool imagesPending : {false, true}) {
    if (imagesPending) SendImages();
    rig.host.gate.FailOperation("fill", 1, kReturned);
    EXPECT_EQ(rig.host.Render(rig.renderer).command.code, imagesPending ? kCancel : kOther);
    ExpectRecovery();
  }
}

CHECK_F(FailedRenders, LeaveOutAMapWithoutMemory,
        "An ownership map without memory is left out, and the rest is drawn.") {
  rig.SetFast(false);
  const Picture exact = rig.Render().picture;
  for (std::uint64_t map = 1; map <= 8; ++map) {  // two maps for each of the four images
    rig.host.gate.FailOperation("host_new_handle", map, kReturned);
    const RenderResult result = RenderBadly();
    EXPECT_EQ(result.command.code, PF_Err_NONE);
    EXPECT_FALSE(IsTransparent(result.picture)) << map;
  }
  EXPECT_EQ(rig.Render().picture, exact);
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
    if (missing.imagesPending) SendImages();
    rig.host.Withhold(missing.suite, missing.version);
    const RenderResult result = RenderBadly();
    EXPECT_EQ(result.command.code, PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(result.command.message, "");
    EXPECT_TRUE(IsTransparent(result.picture));
    ExpectRecovery();
  }
}

}  // namespace
}  // namespace check::failed_renders
