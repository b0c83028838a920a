#include <gtest/gtest.h>

#include "check/support/plugin_under_check.h"
#include "check/support/settings.h"
#include "plugin/entry/entry_point.h"
#include "plugin/gl/framework.h"
#include "tests/support/render_target.h"

namespace {

using AESDK_OpenGL::AESDK_OpenGL_MakeCurrent;
using AESDK_OpenGL::gState;

/// Textures of the plug-in's context. OpenGL gives names in their order, freed ones not again.
double CountTextures() {
  AESDK_OpenGL::AESDK_OpenGL_SaveCurrentContext(gState);
  AESDK_OpenGL_MakeCurrent(gState.deviceContext, gState.renderContext);
  GLuint next = 0;
  glGenTextures(1, &next);
  glDeleteTextures(1, &next);
  double count = 0;
  for (GLuint name = 1; name < next; ++name) {
    count += glIsTexture(name) == GL_TRUE ? 1 : 0;
  }
  AESDK_OpenGL_MakeCurrent(gState.savedDeviceContext, gState.savedRenderContext);
  return count;
}

}  // namespace

int main(int argc, char** argv) {
  constexpr std::uint16_t kSide = 64;
  testing::InitGoogleTest(&argc, argv);
  check::UseEntryPoint(EntryPointFunc);
  check::TheSettings().failsEveryCall = true;
  check::TheSettings().tiledWidth = 2 * kSide - 10;
  check::TheSettings().glTextures = CountTextures;
  check::TheSettings().afterGlobalSetup = [] { check::ResizeRenderTarget(kSide, kSide); };
  return RUN_ALL_TESTS();
}
