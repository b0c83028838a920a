// What the window systems of users' machines refuse and this one does not.

#include "check/support/host_test.h"
#include "check/support/pieces.h"
#include "platform/linux/window_system_faults.h"
#include "plugin/gl/framework.h"

namespace {

class FaultsTest : public check::HostTest {
 protected:
  void TearDown() override {
    gWindowSystemFaults = {};
    HostTest::TearDown();
  }
};

/// The host gets a message, nothing leaks (TearDown checks), and the next start succeeds.
TEST_F(FaultsTest, AStartThatTheSystemRefusesIsToldAndTheNextOneWorks) {
  using Faults = WindowSystemFaults;
  for (const auto fault :
       {&Faults::classRefused, &Faults::windowRefused, &Faults::deviceContextRefused,
        &Faults::pixelFormatNotFound, &Faults::pixelFormatRefused, &Faults::contextRefused}) {
    standin::Host& host = MakeHost();  // has a window of its own by now
    gWindowSystemFaults.*fault = true;
    const standin::CommandResult result = host.GlobalSetup();
    gWindowSystemFaults = {};
    EXPECT_EQ(result.code, PF_Err_INTERNAL_STRUCT_DAMAGED);
    EXPECT_EQ(result.message, "OS specific calls failed!");
    EndHost();
    StartHost();
    EndHost();
  }
}

/// Without a render target the binding is framebuffer 0, the hidden window's, which always counts
/// as complete.
TEST_F(FaultsTest, AMissingRenderTargetIsReportedAndTheNextSetUpMakesIt) {
  standin::Host& host = StartHost();
  gWindowSystemFaults.makeCurrentRefused = [](HGLRC context) {
    return context == AESDK_OpenGL::gState.renderContext;
  };
  standin::RendererInstance& renderer = host.AddRenderer(TheLayer());
  gWindowSystemFaults = {};
  EXPECT_TRUE(renderer.setup.Ok());
  standin::Companion& bone = host.AddCompanion(TheLayer(), "Arm");
  bone.pieces = {check::Piece({10, 10, 40, 40}, {1, 1, 6, 6}, 0.5)};
  bone.imageA.Set(check::Pattern(8, 8, 1));
  EXPECT_TRUE(host.Send(bone, renderer).tookA);
  const standin::RenderResult failed = host.Render(renderer);
  EXPECT_EQ(failed.command.code, PF_Err_INTERNAL_STRUCT_DAMAGED);
  EXPECT_EQ(failed.command.message, "OpenGL resources failed to load!");
  EXPECT_TRUE(failed.command.displayMessage);
  EXPECT_EQ(failed.picture.pixels, tarvo::Picture(44, 44).pixels);

  EXPECT_TRUE(host.AddRenderer(TheLayer()).setup.Ok());
  const standin::RenderResult recovered = host.Render(renderer);
  EXPECT_TRUE(recovered.command.Ok());
  EXPECT_EQ(recovered.picture.At(22, 22).alpha, 255);
}

}  // namespace
