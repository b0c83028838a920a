#include "plugin/render/rectangle_texture.h"

namespace plugin {
namespace {

constexpr GLint kFourComponents = 4;

}  // namespace

void DefineRectangleTexture(GLuint texture, A_long width, A_long height, const void* pixels,
                            GLint filter) {
  glBindTexture(GL_TEXTURE_RECTANGLE_ARB, texture);
  glTexImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, kFourComponents, width, height, 0, GL_ABGR_EXT,
               GL_UNSIGNED_BYTE, pixels);
  glTexParameteri(GL_TEXTURE_RECTANGLE_ARB, GL_TEXTURE_MAG_FILTER, filter);
  glTexParameteri(GL_TEXTURE_RECTANGLE_ARB, GL_TEXTURE_MIN_FILTER, filter);
}

void ReadRenderTarget(const Area& area, void* pixels) {
  glReadBuffer(GL_COLOR_ATTACHMENT0_EXT);
  glReadPixels(area.x, area.y, area.width, area.height, GL_ABGR_EXT, GL_UNSIGNED_BYTE, pixels);
}

void FillBoundTexture(const Area& area, const void* pixels) {
  glTexSubImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, area.x, area.y, area.width, area.height, GL_ABGR_EXT,
                  GL_UNSIGNED_BYTE, pixels);
}

}  // namespace plugin
