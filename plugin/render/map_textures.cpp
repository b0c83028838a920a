#include "plugin/render/map_textures.h"

#include <algorithm>

#include "plugin/gl/framework.h"
#include "plugin/render/rectangle_texture.h"

namespace plugin {
namespace {

void Grow(GLuint texture, A_long width, A_long height) {
  GLint ownWidth = 0;
  GLint ownHeight = 0;
  glBindTexture(GL_TEXTURE_RECTANGLE_ARB, texture);
  glGetTexLevelParameteriv(GL_TEXTURE_RECTANGLE_ARB, 0, GL_TEXTURE_WIDTH, &ownWidth);
  glGetTexLevelParameteriv(GL_TEXTURE_RECTANGLE_ARB, 0, GL_TEXTURE_HEIGHT, &ownHeight);
  if (ownWidth < width || ownHeight < height) {
    DefineRectangleTexture(texture, std::max<A_long>(ownWidth, width),
                           std::max<A_long>(ownHeight, height), nullptr, GL_NEAREST);
  }
}

}  // namespace

std::array<GLuint, 2> MapTextures::Get(std::size_t index, A_long width, A_long height) {
  entries_.resize(std::max(entries_.size(), index + 1));
  std::array<GLuint, 2>& names = entries_[index];
  if (names[0] == 0) {
    glGenTextures(2, names.data());
  }
  for (const GLuint name : names) {
    Grow(name, width, height);
  }
  return names;
}

void MapTextures::Release() {
  if (AESDK_OpenGL::AESDK_OpenGL_IsCurrent(AESDK_OpenGL::gState)) {
    for (const std::array<GLuint, 2>& names : entries_) {
      glDeleteTextures(2, names.data());
    }
  }
  entries_.clear();
}

}  // namespace plugin
