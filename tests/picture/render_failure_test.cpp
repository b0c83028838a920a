// Renders that cannot succeed: what they report, what they leave in the output and what they give
// back.

#include <algorithm>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "entry/entry_point.h"
#include "gl/framework.h"
#include "tests/support/pieces.h"
#include "tests/support/rig.h"

namespace {

using standin::Companion;
using standin::Failure;
using standin::Kind;
using standin::Picture;
using standin::RenderResult;
using support::Box;
using support::WarpedPieces;

constexpr Box kArea{.left = 0, .top = 0, .width = 100, .height = 80};
constexpr PF_Err kOther = 7002;  // not the code that the stand-in injects by itself

class RenderFailureTest : public support::RigTest {
 protected:
  RenderFailureTest() : RigTest(EntryPointFunc) {
    for (std::uint32_t bone = 0; bone < 2; ++bone) {
      Companion& companion =
          rig.AddBone(support::Pattern(32, 24, bone), WarpedPieces(bone, 4, kArea, 32, 24));
      companion.imageB.Set(support::Pattern(16, 20, 9 + bone));
      const auto fromB = WarpedPieces(7 + bone, 3, kArea, 16, 20, TARVO_IMAGE_B);
      companion.pieces.insert(companion.pieces.end(), fromB.begin(), fromB.end());
    }
    SendImages();
    good = rig.Render().picture;
  }

  void SendImages() {
    for (Companion* companion : rig.ActiveCompanions()) companion->SendImagesAgain();
    rig.Send();
  }

  /// Renders as things are, and expects that nothing is left behind: worlds that this render was to
  /// upload may still wait for the next one, the host's context is its own again.
  RenderResult RenderBadly() {
    const std::size_t handles = rig.host.books.Count(Kind::kHandle);
    const std::size_t worlds = rig.host.books.Count(Kind::kWorld);
    RenderResult result = rig.host.Render(rig.renderer);
    EXPECT_TRUE(rig.host.ContextIsCurrent());
    EXPECT_EQ(rig.host.books.Count(Kind::kHandle), handles);
    EXPECT_LE(rig.host.books.Count(Kind::kWorld), worlds);
    EXPECT_EQ(result.unwritten, 0U);
    return result;
  }

  /// With nothing failing any more and the images sent again, all is well.
  void ExpectRecovery() {
    rig.host.gate.FailNothing();
    rig.host.OfferAllSuites();
    SendImages();
    EXPECT_EQ(rig.Render().picture, good);
  }

  [[nodiscard]] bool IsTransparent(const Picture& picture) const {
    return picture.pixels == Picture(good.width, good.height).pixels;
  }

  Picture good;
};

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

TEST_F(RenderFailureTest, HostOperationThatFails) {
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
TEST_F(RenderFailureTest, FillThatFailsReturnsItsCodeUnlessAnImageWaits) {
  for (const bool imagesPending : {false, true}) {
    if (imagesPending) SendImages();
    rig.host.gate.FailOperation("fill", 1, kReturned);
    EXPECT_EQ(rig.host.Render(rig.renderer).command.code, imagesPending ? kCancel : kOther);
    ExpectRecovery();
  }
}

TEST_F(RenderFailureTest, MapWithoutABufferIsLeftOutAndNothingElse) {
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

TEST_F(RenderFailureTest, SuiteThatIsMissing) {
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

/// For its length, the framebuffer is complete for some checks and then no more.
class FramebufferComesApart {
 public:
  FramebufferComesApart(int completeChecks, GLenum status)
      : real_(AESDK_OpenGL::gEntryPoints.glCheckFramebufferStatusEXT) {
    checksLeft = completeChecks;
    statusThen = status;
    AESDK_OpenGL::gEntryPoints.glCheckFramebufferStatusEXT = Answer;
  }
  ~FramebufferComesApart() { AESDK_OpenGL::gEntryPoints.glCheckFramebufferStatusEXT = real_; }
  FramebufferComesApart(const FramebufferComesApart&) = delete;
  FramebufferComesApart& operator=(const FramebufferComesApart&) = delete;

 private:
  static GLenum APIENTRY Answer(GLenum) {
    return checksLeft-- > 0 ? GL_FRAMEBUFFER_COMPLETE_EXT : statusThen;
  }

  static inline int checksLeft = 0;
  static inline GLenum statusThen = 0;
  PFNGLCHECKFRAMEBUFFERSTATUSEXTPROC real_;
};

TEST_F(RenderFailureTest, FramebufferThatIsNotComplete) {
  struct Incomplete {
    int completeChecks;
    GLenum status;
    const char* message;
  };
  for (const Incomplete& incomplete :
       {Incomplete{0, GL_FRAMEBUFFER_UNSUPPORTED_EXT, "OpenGL resources failed to load!"},
        Incomplete{1, GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT_EXT,
                   "Framebuffer incomplete, missing attachment!"},
        Incomplete{1, 0x8CD8, "Unknown error!"}}) {
    SCOPED_TRACE(incomplete.message);
    SendImages();
    {
      const FramebufferComesApart apart(incomplete.completeChecks, incomplete.status);
      const RenderResult result = RenderBadly();
      EXPECT_EQ(result.command.code, PF_Err_INTERNAL_STRUCT_DAMAGED);
      EXPECT_EQ(result.command.message, incomplete.message);
      EXPECT_TRUE(result.command.displayMessage);
      EXPECT_TRUE(IsTransparent(result.picture));
    }
    // Images that wait are not lost by it.
    EXPECT_EQ(rig.Render().picture, good);
  }
}

}  // namespace
