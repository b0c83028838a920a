#include "plugin/gl/render_target.h"

#include <algorithm>
#include <limits>
#include <string_view>

#include "plugin/gl/fault_guard.h"

namespace AESDK_OpenGL {

namespace {

constexpr GLint kFourComponents = 4;  // The internal format of OpenGL 1.0.

GLint Limit(GLenum name) {
  GLint limit = 0;
  glGetIntegerv(name, &limit);
  return limit;
}

// Both attachments must be able to have the size.
std::uint16_t LargestTargetSide() {
  const GLint largest =
      std::min(Limit(GL_MAX_RENDERBUFFER_SIZE_EXT), Limit(GL_MAX_RECTANGLE_TEXTURE_SIZE_ARB));
  constexpr GLint kMost = std::numeric_limits<std::uint16_t>::max();
  return static_cast<std::uint16_t>(std::min(largest, kMost));
}

bool HoldsTarget(const AESDK_OpenGL_State& state, std::uint16_t width, std::uint16_t height) {
  if (state.targetWidth < width || state.targetHeight < height) {
    return false;
  }
  return state.framebuffer != 0 && state.colorTexture != 0;
}

// Leaves the texture bound.
bool ColorTextureHolds(GLuint texture, std::uint16_t width, std::uint16_t height) {
  GLint textureWidth = 0;
  GLint textureHeight = 0;
  glBindTexture(GL_TEXTURE_RECTANGLE_ARB, texture);
  glGetTexLevelParameteriv(GL_TEXTURE_RECTANGLE_ARB, 0, GL_TEXTURE_WIDTH, &textureWidth);
  glGetTexLevelParameteriv(GL_TEXTURE_RECTANGLE_ARB, 0, GL_TEXTURE_HEIGHT, &textureHeight);
  return textureWidth >= width && textureHeight >= height;
}

void BuildFramebuffer(AESDK_OpenGL_State& state) {
  if (state.framebuffer == 0) {
    gEntryPoints.glGenFramebuffersEXT(1, &state.framebuffer);
  }
  gEntryPoints.glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, state.framebuffer);
}

void BuildDepth(AESDK_OpenGL_State& state) {
  if (state.depthRenderbuffer == 0) {
    gEntryPoints.glGenRenderbuffersEXT(1, &state.depthRenderbuffer);
  }
  gEntryPoints.glBindRenderbufferEXT(GL_RENDERBUFFER_EXT, state.depthRenderbuffer);
  gEntryPoints.glRenderbufferStorageEXT(GL_RENDERBUFFER_EXT, GL_DEPTH_COMPONENT, state.targetWidth,
                                        state.targetHeight);
  gEntryPoints.glFramebufferRenderbufferEXT(GL_FRAMEBUFFER_EXT, GL_DEPTH_ATTACHMENT_EXT,
                                            GL_RENDERBUFFER_EXT, state.depthRenderbuffer);
}

void BuildColor(AESDK_OpenGL_State& state) {
  if (state.colorTexture == 0) {
    glGenTextures(1, &state.colorTexture);
  }
  glBindTexture(GL_TEXTURE_RECTANGLE_ARB, state.colorTexture);
  glTexImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, kFourComponents, state.targetWidth, state.targetHeight,
               0, GL_ABGR_EXT, GL_UNSIGNED_BYTE, nullptr);
  glTexParameteri(GL_TEXTURE_RECTANGLE_ARB, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
  glTexParameteri(GL_TEXTURE_RECTANGLE_ARB, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
  gEntryPoints.glFramebufferTexture2DEXT(GL_FRAMEBUFFER_EXT, GL_COLOR_ATTACHMENT0_EXT,
                                         GL_TEXTURE_RECTANGLE_ARB, state.colorTexture, 0);
}

void SettleSize(AESDK_OpenGL_State& state, std::uint16_t requestedWidth) {
  if (requestedWidth == 0) {
    state.targetWidth = DefaultTargetSide(Limit(GL_MAX_RENDERBUFFER_SIZE_EXT));
    state.targetHeight = state.targetWidth;
    return;
  }
  state.targetWidth = std::min(state.targetWidth, LargestTargetSide());
  state.targetHeight = std::min(state.targetHeight, LargestTargetSide());
}

void Prepare(AESDK_OpenGL_State& state, std::uint16_t width, std::uint16_t height) {
  bool rebuild = !HoldsTarget(state, width, height);
  if (state.colorTexture != 0 && !ColorTextureHolds(state.colorTexture, width, height)) {
    rebuild = true;
  }
  state.targetWidth = std::max(state.targetWidth, width);
  state.targetHeight = std::max(state.targetHeight, height);
  if (!rebuild) {
    return;
  }

  glEnable(GL_TEXTURE_RECTANGLE_ARB);
  SettleSize(state, width);
  glClearColor(0.0F, 0.0F, 0.0F, 0.0F);
  glEnable(GL_DEPTH_TEST);
  BuildFramebuffer(state);
  BuildDepth(state);
  BuildColor(state);
}

// Older code asks for additive blending by the name of the accumulation operation.
GLenum Translated(GLenum mode) { return mode == GL_ADD ? GL_FUNC_ADD : mode; }

}  // namespace

std::uint16_t DefaultTargetSide(GLint largestRenderbuffer) {
  return static_cast<std::uint16_t>(std::min(0.25 * largestRenderbuffer, 4096.0));
}

AESDK_OpenGL_Err AESDK_OpenGL_PrepareRenderTarget(AESDK_OpenGL_State& state, std::uint16_t width,
                                                  std::uint16_t height) {
  return ResultOf([&] {
    if (!AESDK_OpenGL_IsCurrent(state)) {
      return;
    }
    if (width == 0) {
      return Prepare(state, width, height);
    }
    // A request beyond the limit, kept as it is, would find every target too small.
    Prepare(state, std::min(width, LargestTargetSide()), std::min(height, LargestTargetSide()));
  });
}

AESDK_OpenGL_Err AESDK_OpenGL_DeleteRenderTarget(AESDK_OpenGL_State& state) {
  return ResultOf([&] {
    if (AESDK_OpenGL_IsCurrent(state)) {
      gEntryPoints.glDeleteFramebuffersEXT(1, &state.framebuffer);
      gEntryPoints.glDeleteRenderbuffersEXT(1, &state.depthRenderbuffer);
      gEntryPoints.glDeleteRenderbuffersEXT(1, &state.spareRenderbuffer);
      glDeleteTextures(1, &state.colorTexture);
    }
    state.framebuffer = 0;
    state.depthRenderbuffer = 0;
    state.spareRenderbuffer = 0;
    state.colorTexture = 0;
  });
}

AESDK_OpenGL_Err AESDK_OpenGL_BindRenderTarget(const AESDK_OpenGL_State& state) {
  return ResultOf([&] {
    Require(AESDK_OpenGL_IsCurrent(state), AESDK_OpenGL_Err_ResourceLoad);
    // Framebuffer 0 is the hidden window's: complete, and no place for a frame.
    Require(state.framebuffer != 0, AESDK_OpenGL_Err_ResourceLoad);
    gEntryPoints.glBindFramebufferEXT(GL_FRAMEBUFFER_EXT, state.framebuffer);
    glDrawBuffer(GL_COLOR_ATTACHMENT0_EXT);
    Require(AESDK_OpenGL_FramebufferStatusText() == std::string_view("OK"),
            AESDK_OpenGL_Err_ResourceLoad);
  });
}

AESDK_OpenGL_Err AESDK_OpenGL_SetBlendEquation(GLenum rgb, GLenum alpha) {
  gEntryPoints.glBlendEquationSeparateEXT(Translated(rgb), Translated(alpha));
  return AESDK_OpenGL_Err_None;
}

AESDK_OpenGL_Err AESDK_OpenGL_SetBlendFunction(GLenum sourceRgb, GLenum destinationRgb,
                                               GLenum sourceAlpha, GLenum destinationAlpha) {
  gEntryPoints.glBlendFuncSeparateEXT(Translated(sourceRgb), Translated(destinationRgb),
                                      Translated(sourceAlpha), Translated(destinationAlpha));
  return AESDK_OpenGL_Err_None;
}

}  // namespace AESDK_OpenGL
