#pragma once

#include <gtest/gtest.h>

#include "plugin/gl/framework.h"

namespace AESDK_OpenGL {

/// Leaves the process as it was found: nothing started, no entry points, no GL error.
class CleanProcess : public testing::Test {
 protected:
  void TearDown() override {
    // Without a context there is no error to read: some systems make one of that.
    if (wglGetCurrentContext() != nullptr) {
      EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
    }
    AESDK_OpenGL_DeleteRenderTarget(gState);
    AESDK_OpenGL_ShutDown(gState);
    gState = {};
    gEntryPoints = {};
  }
};

/// The framework is started and its program built.
class StartedFramework : public CleanProcess {
 protected:
  void SetUp() override {
    ASSERT_EQ(AESDK_OpenGL_StartUp(gState), AESDK_OpenGL_Err_None);
    ASSERT_EQ(AESDK_OpenGL_InitShaders(gState, "", ""), AESDK_OpenGL_Err_None);
  }
};

}  // namespace AESDK_OpenGL
