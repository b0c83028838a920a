#include <array>
#include <vector>

#include "plugin/gl/render_target.h"
#include "tests/gl/framework_fixture.h"

namespace AESDK_OpenGL {
namespace {

using RenderTarget = StartedFramework;

void ExpectSize(GLint width, GLint height) {
  EXPECT_EQ(gState.targetWidth, width);
  EXPECT_EQ(gState.targetHeight, height);
  std::array<GLint, 2> size = {};
  glBindTexture(GL_TEXTURE_RECTANGLE_ARB, gState.colorTexture);
  glGetTexLevelParameteriv(GL_TEXTURE_RECTANGLE_ARB, 0, GL_TEXTURE_WIDTH, &size[0]);
  glGetTexLevelParameteriv(GL_TEXTURE_RECTANGLE_ARB, 0, GL_TEXTURE_HEIGHT, &size[1]);
  EXPECT_EQ(size, (std::array<GLint, 2>{width, height}));
  EXPECT_EQ(AESDK_OpenGL_BindRenderTarget(gState), AESDK_OpenGL_Err_None);
  EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
}

// A rebuild shows in the clear colour.
bool IsRebuiltFor(std::uint16_t width, std::uint16_t height) {
  glClearColor(1.0F, 1.0F, 1.0F, 1.0F);
  EXPECT_EQ(AESDK_OpenGL_PrepareRenderTarget(gState, width, height), AESDK_OpenGL_Err_None);
  std::array<GLfloat, 4> color = {};
  glGetFloatv(GL_COLOR_CLEAR_VALUE, color.data());
  return color[0] == 0.0F;
}

GLint LargestRenderbuffer() {
  GLint largest = 0;
  glGetIntegerv(GL_MAX_RENDERBUFFER_SIZE_EXT, &largest);
  return largest;
}

TEST(DefaultTargetSide, IsAQuarterOfTheLargestRenderBufferUpTo4096) {
  EXPECT_EQ(DefaultTargetSide(16'384), 4096);
  EXPECT_EQ(DefaultTargetSide(32'768), 4096);
  EXPECT_EQ(DefaultTargetSide(10'000), 2500);
  EXPECT_EQ(DefaultTargetSide(8191), 2047);
}

TEST_F(RenderTarget, HasTheDefaultSizeWhateverWasStored) {
  const GLint side = DefaultTargetSide(LargestRenderbuffer());
  gState.targetWidth = gState.targetHeight = 65'535;
  AESDK_OpenGL_PrepareRenderTarget(gState, 0, 0);
  ExpectSize(side, side);

  const AESDK_OpenGL_State built = gState;
  EXPECT_FALSE(IsRebuiltFor(0, 0));
  EXPECT_EQ(gState.framebuffer, built.framebuffer);
  EXPECT_EQ(gState.colorTexture, built.colorTexture);
  ExpectSize(side, side);

  AESDK_OpenGL_DeleteRenderTarget(gState);
  EXPECT_EQ(gState.framebuffer + gState.depthRenderbuffer + gState.colorTexture, 0U);
  EXPECT_EQ(gState.targetWidth, side) << "the size stays";
  gState.targetWidth = 17;
  AESDK_OpenGL_PrepareRenderTarget(gState, 0, 5);  // The height is not looked at.
  ExpectSize(side, side);
}

TEST_F(RenderTarget, IsClampedToWhatTheImplementationAllows) {
  gState.targetWidth = 65'535;  // As global set-up leaves it.
  AESDK_OpenGL_PrepareRenderTarget(gState, 1, 1);
  const GLint side = gState.targetWidth;
  EXPECT_LE(side, LargestRenderbuffer());
  EXPECT_GE(side, 4096);
  ExpectSize(side, 1);
  EXPECT_FALSE(IsRebuiltFor(65'535, 1)) << "there is no larger one";

  AESDK_OpenGL_DeleteRenderTarget(gState);
  gState.targetWidth = 1;
  gState.targetHeight = 65'535;
  AESDK_OpenGL_PrepareRenderTarget(gState, 1, 1);
  ExpectSize(1, side);
}

// Images are uploaded between two frames.
TEST_F(RenderTarget, IsKnownWhateverTextureIsBound) {
  AESDK_OpenGL_PrepareRenderTarget(gState, 4, 4);
  GLuint image = 0;
  glGenTextures(1, &image);
  glBindTexture(GL_TEXTURE_RECTANGLE_ARB, image);
  EXPECT_FALSE(IsRebuiltFor(4, 4));
  glDeleteTextures(1, &image);
}

TEST_F(RenderTarget, IsRefusedWhileIncomplete) {
  AESDK_OpenGL_PrepareRenderTarget(gState, 4, 4);
  // As if there had been no memory for the image.
  glBindTexture(GL_TEXTURE_RECTANGLE_ARB, gState.colorTexture);
  glTexImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, 4, 0, 0, 0, GL_ABGR_EXT, GL_UNSIGNED_BYTE, nullptr);
  gEntryPoints.glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, 0);  // The window's, which is complete.
  EXPECT_EQ(AESDK_OpenGL_BindRenderTarget(gState), AESDK_OpenGL_Err_ResourceLoad);
  AESDK_OpenGL_PrepareRenderTarget(gState, 4, 4);
  ExpectSize(4, 4);
}

std::vector<GLenum> gPassed;

// Caught on their way to the driver, to which the translated value is no factor.
TEST_F(RenderTarget, IsBlendedIntoWithAddTranslated) {
  gEntryPoints.glBlendEquationSeparateEXT = [](GLenum a, GLenum b) { gPassed = {a, b}; };
  AESDK_OpenGL_SetBlendEquation(GL_MAX, GL_ADD);
  EXPECT_EQ(gPassed, (std::vector<GLenum>{GL_MAX, GL_FUNC_ADD}));
  AESDK_OpenGL_SetBlendEquation(GL_ADD, GL_MAX);
  EXPECT_EQ(gPassed, (std::vector<GLenum>{GL_FUNC_ADD, GL_MAX}));

  gEntryPoints.glBlendFuncSeparateEXT = [](GLenum a, GLenum b, GLenum c, GLenum d) {
    gPassed = {a, b, c, d};
  };
  AESDK_OpenGL_SetBlendFunction(GL_ADD, GL_ONE, GL_SRC_ALPHA, GL_ADD);
  EXPECT_EQ(gPassed, (std::vector<GLenum>{GL_FUNC_ADD, GL_ONE, GL_SRC_ALPHA, GL_FUNC_ADD}));
}

}  // namespace
}  // namespace AESDK_OpenGL
