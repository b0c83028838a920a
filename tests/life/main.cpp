#include <gtest/gtest.h>

#include "check/support/plugin_under_check.h"
#include "check/support/settings.h"
#include "entry/entry_point.h"
#include "gl/framework.h"
#include "tests/support/render_target.h"

namespace {

using AESDK_OpenGL::AESDK_OpenGL_MakeCurrent;
using AESDK_OpenGL::gState;

/// The lowest name that is free in the plug-in's context: OpenGL gives that one first.
double GlNames() {
  AESDK_OpenGL::AESDK_OpenGL_SaveCurrentContext(gState);
  AESDK_OpenGL_MakeCurrent(gState.deviceContext, gState.renderContext);
  GLuint name = 0;
  glGenTextures(1, &name);
  glDeleteTextures(1, &name);
  AESDK_OpenGL_MakeCurrent(gState.savedDeviceContext, gState.savedRenderContext);
  return name;
}

}  // namespace

int main(int argc, char** argv) {
  constexpr std::uint16_t kSide = 64;
  testing::InitGoogleTest(&argc, argv);
  check::UseEntryPoint(EntryPointFunc);
  check::TheSettings().failsEveryCall = true;
  check::TheSettings().glNames = GlNames;
  check::TheSettings().afterGlobalSetup = [] { check::ResizeRenderTarget(kSide, kSide); };
  return RUN_ALL_TESTS();
}
