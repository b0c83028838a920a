#include "plugin/render/map_textures.h"

#include <algorithm>

#include "plugin/gl/framework.h"
#include "plugin/render/rectangle_texture.h"

namespace plugin {

std::array<GLuint, 2> MapTextures::Get(std::size_t index, A_long width, A_long height) {
  entries_.resize(std::max(entries_.size(), index + 1));
  Entry& entry = entries_[index];
  if (entry.names[0] == 0) {
    glGenTextures(2, entry.names.data());
  }
  if (entry.width < width || entry.height < height) {
    entry.width = std::max(entry.width, width);
    entry.height = std::max(entry.height, height);
    for (const GLuint name : entry.names) {
      DefineRectangleTexture(name, entry.width, entry.height, nullptr, GL_NEAREST);
    }
  }
  return entry.names;
}

void MapTextures::Release() {
  if (AESDK_OpenGL::AESDK_OpenGL_IsCurrent(AESDK_OpenGL::gState)) {
    for (const Entry& entry : entries_) {
      glDeleteTextures(2, entry.names.data());
    }
  }
  entries_.clear();
}

}  // namespace plugin
