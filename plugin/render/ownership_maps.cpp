#include "plugin/render/ownership_maps.h"

#include <algorithm>
#include <array>

#include "plugin/render/draw_quad.h"
#include "plugin/render/map_textures.h"
#include "plugin/render/piece_area.h"
#include "plugin/render/rectangle_texture.h"

namespace plugin {

using namespace AESDK_OpenGL;

namespace {

MapTextures gMapTextures;

/// The contested pieces of one image, the nearest first, the area outside which none of them has a
/// pixel, and the textures that their maps are kept in.
struct ContestedImage {
  std::vector<const DrawPiece*> pieces;
  Area area{};
  std::array<GLuint, 2> maps{};
};

/// The images that have contested pieces in the tile.
std::vector<ContestedImage> ContestedImages(const Frame& frame, const Tile& tile) {
  std::vector<ContestedImage> images(frame.ImageCount());
  std::for_each(frame.drawList.rbegin(), frame.drawList.rend(), [&](const DrawPiece& piece) {
    if (piece.isContested) {
      images[Frame::ImageIndex(piece)].pieces.push_back(&piece);
    }
  });
  std::erase_if(images, [](const ContestedImage& image) { return image.pieces.empty(); });
  for (ContestedImage& image : images) {
    image.area = AreaOf(frame, tile, image.pieces);
  }
  std::erase_if(images, [](const ContestedImage& image) { return image.area.width == 0; });
  return images;
}

/// The first fragment that reaches a pixel stays: the target starts at alpha 0, every fragment
/// brings alpha 1. (Drawn the other way round without blending, as a piece that keeps the last
/// fragment, software renderers were seen to drop what lay below fragments that are discarded.)
void SetCoordinatePass(Frame& frame) {
  RequireFramework(frame, AESDK_OpenGL_SetBlendEquation(GL_ADD, GL_ADD));
  glBlendFunc(GL_ONE_MINUS_DST_ALPHA, GL_DST_ALPHA);
  glClearColor(0.0F, 0.0F, 0.0F, 0.0F);
}

void DrawCoordinates(Frame& frame, const ContestedImage& image) {
  LimitDrawing(image.area);
  glClear(GL_COLOR_BUFFER_BIT);
  const GLuint texture = frame.ImageOf(*image.pieces.front()).texture;
  RequireFramework(frame, AESDK_OpenGL_BindSampler(gState, texture, "videoTexture", 0));
  for (const DrawPiece* const piece : image.pieces) {
    DrawQuad(frame, *piece);
  }
}

void RenderMaps(Frame& frame, const std::vector<ContestedImage>& images) {
  SetCoordinatePass(frame);
  constexpr std::array kJobs{AESDK_OpenGL_Job_CoordinateW, AESDK_OpenGL_Job_CoordinateH};
  for (std::size_t map = 0; map < kJobs.size(); ++map) {
    AESDK_OpenGL_UseJobProgram(gState, kJobs[map]);
    for (const ContestedImage& image : images) {
      DrawCoordinates(frame, image);
      CopyRenderTarget(image.area, image.maps[map]);
    }
  }
}

}  // namespace

OwnershipMaps RenderOwnershipMaps(Frame& frame, const Tile& tile) {
  OwnershipMaps maps(frame.ImageCount());
  if (frame.fastTransparency) {
    return maps;
  }
  std::vector<ContestedImage> images = ContestedImages(frame, tile);
  for (std::size_t index = 0; index < images.size(); ++index) {
    ContestedImage& image = images[index];
    image.maps = gMapTextures.Get(index, image.area.width, image.area.height);
    maps.Add(*image.pieces.front(),
             {.w = image.maps[0], .h = image.maps[1], .x = image.area.x, .y = image.area.y});
  }
  RenderMaps(frame, images);
  return maps;
}

void ReleaseMapTextures() { gMapTextures.Release(); }

}  // namespace plugin
