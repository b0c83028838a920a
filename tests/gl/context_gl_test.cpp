#include "tests/gl/framework_fixture.h"

namespace AESDK_OpenGL {
namespace {

using Context = CleanProcess;

TEST_F(Context, ASecondStartUpLooksUpNothingAndKeepsTheWindow) {
  ASSERT_EQ(AESDK_OpenGL_StartUp(gState), AESDK_OpenGL_Err_None);
  const AESDK_OpenGL_State before = gState;
  EXPECT_EQ(AESDK_OpenGL_StartUp(gState, {nullptr, nullptr}), AESDK_OpenGL_Err_None);
  EXPECT_EQ(gState.className, before.className);
  EXPECT_EQ(gState.window, before.window);
}

TEST_F(Context, ShutdownReleasesEverything) {
  ASSERT_EQ(AESDK_OpenGL_StartUp(gState), AESDK_OpenGL_Err_None);
  const AESDK_OpenGL_State before = gState;
  for (int time = 0; time < 2; ++time) {
    EXPECT_EQ(AESDK_OpenGL_ShutDown(gState), AESDK_OpenGL_Err_None);
    EXPECT_EQ(wglGetCurrentContext(), nullptr);
    EXPECT_FALSE(wglDeleteContext(before.renderContext)) << "the context was not deleted";
    EXPECT_FALSE(DestroyWindow(before.window)) << "the window was not destroyed";
    EXPECT_FALSE(UnregisterClassA(before.className.data(), nullptr)) << "the class is still there";
    EXPECT_TRUE(gState.started);
  }
}

TEST_F(Context, AStartUpAfterAShutdownBuildsEverythingAnew) {
  for (int round = 0; round < 3; ++round) {
    ASSERT_EQ(AESDK_OpenGL_StartUp(gState), AESDK_OpenGL_Err_None);
    EXPECT_EQ(gState.program + gState.framebuffer + gState.colorTexture, 0U);
    EXPECT_EQ(AESDK_OpenGL_InitShaders(gState, "", ""), AESDK_OpenGL_Err_None);
    EXPECT_NE(gState.program, 0U);
    EXPECT_EQ(AESDK_OpenGL_PrepareRenderTarget(gState, 8, 8), AESDK_OpenGL_Err_None);
    EXPECT_EQ(AESDK_OpenGL_BindRenderTarget(gState), AESDK_OpenGL_Err_None);
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
    // The render target is not deleted first: it is deleted with its context.
    EXPECT_EQ(AESDK_OpenGL_ShutDown(gState), AESDK_OpenGL_Err_None);
  }
}

}  // namespace
}  // namespace AESDK_OpenGL
