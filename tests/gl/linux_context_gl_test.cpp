#include <array>
#include <utility>
#include <vector>

#include <EGL/egl.h>
#include <EGL/eglext.h>

#include "platform/linux/window_system_faults.h"
#include "tests/gl/framework_fixture.h"

namespace AESDK_OpenGL {
namespace {

class RefusedContext : public CleanProcess {
 protected:
  void TearDown() override {
    gWindowSystemFaults = {};
    CleanProcess::TearDown();
  }

  static void ExpectRefusal(const WindowSystemFaults& faults) {
    gWindowSystemFaults = faults;
    EXPECT_EQ(AESDK_OpenGL_StartUp(gState), AESDK_OpenGL_Err_OSCalls);
    EXPECT_FALSE(gState.started);
    const AESDK_OpenGL_State failed = gState;
    EXPECT_EQ(AESDK_OpenGL_ShutDown(gState), AESDK_OpenGL_Err_None);
    EXPECT_EQ(gState.deviceContext, nullptr);
    EXPECT_FALSE(UnregisterClassA(failed.className.data(), nullptr)) << "was left registered";

    gWindowSystemFaults = {};
    EXPECT_EQ(AESDK_OpenGL_StartUp(gState), AESDK_OpenGL_Err_None);
    EXPECT_EQ(AESDK_OpenGL_ShutDown(gState), AESDK_OpenGL_Err_None);
  }
};

TEST_F(RefusedContext, GivesCodeOneAndTheNextStartUpWorks) {
  using Faults = WindowSystemFaults;
  for (const auto fault :
       {&Faults::classRefused, &Faults::windowRefused, &Faults::deviceContextRefused,
        &Faults::pixelFormatNotFound, &Faults::pixelFormatRefused, &Faults::contextRefused}) {
    WindowSystemFaults faults;
    faults.*fault = true;
    ExpectRefusal(faults);
  }
  ExpectRefusal({.makeCurrentRefused = [](HGLRC) { return true; }});
}

/// Without a shut-down between them, the second start-up releases what the first one left.
TEST_F(RefusedContext, LeavesNoClassToTheNextStartUp) {
  gWindowSystemFaults.windowRefused = true;
  EXPECT_EQ(AESDK_OpenGL_StartUp(gState), AESDK_OpenGL_Err_OSCalls);
  const AESDK_OpenGL_State failed = gState;
  gWindowSystemFaults = {};
  EXPECT_EQ(AESDK_OpenGL_StartUp(gState), AESDK_OpenGL_Err_None);
  EXPECT_FALSE(UnregisterClassA(failed.className.data(), nullptr)) << "was left registered";
  EXPECT_EQ(AESDK_OpenGL_ShutDown(gState), AESDK_OpenGL_Err_None);
}

// A host that uses EGL itself and another API than OpenGL.
class ForeignContext : public RefusedContext {
 protected:
  void SetUp() override {
    display_ = eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, nullptr, nullptr);
    ASSERT_TRUE(eglInitialize(display_, nullptr, nullptr));
    const std::array<EGLint, 5> attributes = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT,
                                              EGL_RENDERABLE_TYPE, EGL_OPENGL_ES2_BIT, EGL_NONE};
    EGLint count = 0;
    ASSERT_TRUE(eglChooseConfig(display_, attributes.data(), &config_, 1, &count));
    ASSERT_EQ(count, 1);
    eglBindAPI(EGL_OPENGL_ES_API);
    context_ = eglCreateContext(display_, config_, EGL_NO_CONTEXT, nullptr);
  }

  void TearDown() override {
    RefusedContext::TearDown();
    eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    for (EGLSurface surface : surfaces_) {
      eglDestroySurface(display_, surface);
    }
    eglDestroyContext(display_, context_);
  }

  EGLSurface NewSurface() {
    surfaces_.push_back(eglCreatePbufferSurface(display_, config_, nullptr));
    EXPECT_NE(surfaces_.back(), EGL_NO_SURFACE);
    return surfaces_.back();
  }

  HDC CurrentFor(EGLSurface draw, EGLSurface read) {
    EXPECT_TRUE(eglMakeCurrent(display_, draw, read, context_));
    return wglGetCurrentDC();
  }

  // One bracketed command of the host's, in which the framework starts if it has not.
  static void RunCommand() {
    AESDK_OpenGL_SaveCurrentContext(gState);
    AESDK_OpenGL_MakeCurrent(gState.deviceContext, gState.renderContext);
    EXPECT_EQ(AESDK_OpenGL_StartUp(gState), AESDK_OpenGL_Err_None);
    EXPECT_EQ(wglGetCurrentContext(), gState.renderContext);
    EXPECT_EQ(wglGetCurrentDC(), gState.deviceContext);
    AESDK_OpenGL_MakeCurrent(gState.savedDeviceContext, gState.savedRenderContext);
  }

  EGLDisplay display_ = EGL_NO_DISPLAY;
  EGLConfig config_ = nullptr;
  EGLContext context_ = EGL_NO_CONTEXT;
  std::vector<EGLSurface> surfaces_;
};

TEST_F(ForeignContext, ComesBackAsItWas) {
  RunCommand();
  EXPECT_EQ(eglGetCurrentContext(), EGL_NO_CONTEXT) << "there was none";

  EGLSurface one = NewSurface();
  EGLSurface other = NewSurface();
  const std::vector<std::pair<EGLSurface, EGLSurface>> pairs = {
      {one, other}, {other, one}, {one, one}, {EGL_NO_SURFACE, EGL_NO_SURFACE}};
  for (const auto& [draw, read] : pairs) {
    ASSERT_TRUE(eglMakeCurrent(display_, draw, read, context_));
    RunCommand();
    RunCommand();
    EXPECT_EQ(eglGetCurrentDisplay(), display_);
    EXPECT_EQ(eglGetCurrentSurface(EGL_DRAW), draw);
    EXPECT_EQ(eglGetCurrentSurface(EGL_READ), read);
    EXPECT_EQ(eglGetCurrentContext(), context_);
  }
  EXPECT_EQ(eglQueryAPI(), EGLenum{EGL_OPENGL_ES_API});
}

TEST_F(ForeignContext, ComesBackAfterAStartUpThatLeftAWindowWithoutAFormat) {
  gWindowSystemFaults.pixelFormatRefused = true;
  EXPECT_EQ(AESDK_OpenGL_StartUp(gState), AESDK_OpenGL_Err_OSCalls);
  CurrentFor(EGL_NO_SURFACE, EGL_NO_SURFACE);
  AESDK_OpenGL_SaveCurrentContext(gState);
  AESDK_OpenGL_MakeCurrent(gState.deviceContext, gState.renderContext);
  EXPECT_EQ(eglGetCurrentContext(), EGL_NO_CONTEXT);
  AESDK_OpenGL_MakeCurrent(gState.savedDeviceContext, gState.savedRenderContext);
  EXPECT_EQ(eglGetCurrentContext(), context_);
}

}  // namespace
}  // namespace AESDK_OpenGL
