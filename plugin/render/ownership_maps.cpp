#include "plugin/render/ownership_maps.h"

#include <algorithm>

#include "plugin/host/host_memory.h"
#include "plugin/render/draw_quad.h"
#include "plugin/render/piece_area.h"
#include "plugin/render/pixel_rows.h"
#include "plugin/render/rectangle_texture.h"

namespace plugin {

using AESDK_OpenGL::AESDK_OpenGL_BindSampler;
using AESDK_OpenGL::AESDK_OpenGL_SetBlendEquation;
using AESDK_OpenGL::AESDK_OpenGL_SetUniform4;
using AESDK_OpenGL::gState;

namespace {

/// What a map holds, as the shader reads it from the normal's third component.
struct Coordinate {
  GLfloat selector;
  GLuint OwnershipMaps::Pair::*map;
};
constexpr std::array<Coordinate, 2> kCoordinates{
    {{0.0F, &OwnershipMaps::Pair::w}, {1.0F, &OwnershipMaps::Pair::h}}};

/// The first fragment that reaches a pixel stays: the target starts at alpha 0, every fragment
/// brings alpha 1.
void SetCoordinatePass(Frame& frame) {
  RequireFramework(frame, AESDK_OpenGL_SetBlendEquation(GL_ADD, GL_ADD));
  glClearColor(0.0F, 0.0F, 0.0F, 0.0F);
  glBlendFunc(GL_ONE_MINUS_DST_ALPHA, GL_DST_ALPHA);
  RequireFramework(frame, AESDK_OpenGL_SetUniform4(gState, 0.0F, 0.0F, 0.0F, 0.0F, "dataFromAE"));
}

/// The pieces of one image, the nearest first, and the area outside which none of them has a pixel:
/// nothing there is drawn, and its map is never looked at there.
struct ImagePieces {
  std::vector<const DrawPiece*> pieces;
  Area area{};
};

/// The images of a family, slot by slot.
std::vector<ImagePieces> ImagesOf(const Frame& frame, const Tile& tile, ImageFamily family) {
  std::vector<ImagePieces> images(frame.scene.slots.size());
  std::for_each(frame.drawList.rbegin(), frame.drawList.rend(), [&](const DrawPiece& piece) {
    if (piece.family == family) {
      images[piece.slot].pieces.push_back(&piece);
    }
  });
  for (ImagePieces& image : images) {
    image.area = AreaOf(frame, tile, image.pieces);
  }
  return images;
}

void DrawCoordinates(Frame& frame, const ImagePieces& image, GLuint texture, GLfloat selector) {
  LimitDrawing(image.area);
  glClear(GL_COLOR_BUFFER_BIT);
  RequireFramework(frame, AESDK_OpenGL_BindSampler(gState, texture, "videoTexture", 0));
  for (const DrawPiece* const piece : image.pieces) {
    DrawQuad(frame, *piece, selector);
  }
}

/// Moves an area of the tile from the render target into a texture of its own, at the same place; 0
/// if the host has no buffer. Beyond the area the texture has no contents, or ends.
GLuint KeepAsMap(Frame& frame, const Tile& tile, const Area& area) {
  HostMemory buffer(frame.host.Suites(), PackedBytes(tile.width, tile.height));
  void* const pixels = buffer ? buffer.Lock() : nullptr;
  if (pixels == nullptr) {
    return 0;
  }
  GLuint map = 0;
  glGenTextures(1, &map);
  ReadRenderTarget(area, pixels);
  DefineRectangleTexture(map, area.x + area.width, area.y + area.height, nullptr, GL_NEAREST);
  FillBoundTexture(area, pixels);
  return map;
}

void RenderFamily(Frame& frame, const Tile& tile, ImageFamily family, OwnershipMaps& maps) {
  const std::vector<ImagePieces> images = ImagesOf(frame, tile, family);
  for (const Coordinate& coordinate : kCoordinates) {
    for (std::size_t slot = 0; slot < images.size(); ++slot) {
      const GLuint texture = frame.scene.slots[slot].images[family].texture;
      if (texture == 0) {
        continue;
      }
      DrawCoordinates(frame, images[slot], texture, coordinate.selector);
      maps.Of(slot, family).*coordinate.map = KeepAsMap(frame, tile, images[slot].area);
    }
  }
}

}  // namespace

OwnershipMaps::OwnershipMaps(std::size_t slotCount) {
  for (std::vector<Pair>& pairs : pairs_) {
    pairs.resize(slotCount);
  }
}

OwnershipMaps::~OwnershipMaps() {
  for (const std::vector<Pair>& pairs : pairs_) {
    for (const Pair& pair : pairs) {
      glDeleteTextures(1, &pair.w);  // 0 is ignored
      glDeleteTextures(1, &pair.h);
    }
  }
}

OwnershipMaps RenderOwnershipMaps(Frame& frame, const Tile& tile) {
  OwnershipMaps maps(frame.scene.slots.size());
  if (frame.fastTransparency) {
    return maps;
  }
  SetCoordinatePass(frame);
  for (const ImageFamily family : kImageFamilies) {
    RenderFamily(frame, tile, family, maps);
  }
  return maps;
}

}  // namespace plugin
