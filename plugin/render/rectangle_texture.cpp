#include "plugin/render/rectangle_texture.h"

namespace plugin {
namespace {

constexpr GLint kFourComponents = 4;
/// Pixels of the bytes alpha, blue, green, red, as one integer of a little-endian machine. As
/// GL_ABGR_EXT and bytes they are the same, which drivers convert more slowly.
constexpr GLenum kFormat = GL_RGBA;
constexpr GLenum kType = GL_UNSIGNED_INT_8_8_8_8;

}  // namespace

void DefineRectangleTexture(GLuint texture, A_long width, A_long height, const void* pixels,
                            GLint filter) {
  glBindTexture(GL_TEXTURE_RECTANGLE_ARB, texture);
  glTexImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, kFourComponents, width, height, 0, kFormat, kType,
               pixels);
  glTexParameteri(GL_TEXTURE_RECTANGLE_ARB, GL_TEXTURE_MAG_FILTER, filter);
  glTexParameteri(GL_TEXTURE_RECTANGLE_ARB, GL_TEXTURE_MIN_FILTER, filter);
}

void ReadRenderTarget(const Area& area, void* pixels) {
  glReadBuffer(GL_COLOR_ATTACHMENT0_EXT);
  glReadPixels(area.x, area.y, area.width, area.height, kFormat, kType, pixels);
}

void CopyRenderTarget(const Area& area, GLuint texture) {
  glReadBuffer(GL_COLOR_ATTACHMENT0_EXT);
  glBindTexture(GL_TEXTURE_RECTANGLE_ARB, texture);
  glCopyTexSubImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, 0, 0, area.x, area.y, area.width, area.height);
}

}  // namespace plugin
