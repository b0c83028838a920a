#include "plugin/render/colour_passes.h"

#include "plugin/render/draw_quad.h"
#include "plugin/render/rectangle_texture.h"

namespace plugin {

using namespace AESDK_OpenGL;

namespace {

void SetBlending(Frame& frame, GLenum equation, GLenum destinationFactor) {
  RequireFramework(frame, AESDK_OpenGL_SetBlendEquation(equation, equation));
  glBlendFunc(GL_ONE, destinationFactor);
}

void Bind(Frame& frame, GLuint texture, const char* sampler, GLuint unit) {
  RequireFramework(frame, AESDK_OpenGL_BindSampler(gState, texture, sampler, unit));
}

/// Selects the ownership test against these maps, or none.
void UseMaps(Frame& frame, const OwnershipMaps::Pair* maps) {
  if (maps == nullptr) {
    AESDK_OpenGL_UseJobProgram(gState, AESDK_OpenGL_Job_VisibleColor);
    return;
  }
  AESDK_OpenGL_UseJobProgram(gState, AESDK_OpenGL_Job_OwnedColor);
  Bind(frame, maps->w, "coordTextureW", 1);
  Bind(frame, maps->h, "coordTextureH", 2);
  RequireFramework(
      frame, AESDK_OpenGL_SetUniform4(gState, static_cast<GLfloat>(maps->x),
                                      static_cast<GLfloat>(maps->y), 0.0F, 0.0F, "mapOrigin"));
}

/// Draws all pieces; `prepare` is told of each one before. Nothing is flushed: a software renderer
/// then takes both passes tile by tile of its own, while the pixels are in its cache.
template <class Prepare>
void DrawPieces(Frame& frame, Prepare prepare) {
  const SlotImage* bound = nullptr;
  for (const DrawPiece& piece : frame.drawList) {
    prepare(piece);
    const SlotImage& image = frame.ImageOf(piece);
    if (&image != bound) {
      Bind(frame, image.texture, "videoTexture", 0);
    }
    bound = &image;
    glColor4f(1.0F, 1.0F, 1.0F, static_cast<GLfloat>(image.opacity));
    DrawQuad(frame, piece);
  }
}

/// The greatest of all pieces, channel by channel.
void DrawMaxPass(Frame& frame) {
  AESDK_OpenGL_UseJobProgram(gState, AESDK_OpenGL_Job_Color);
  SetBlending(frame, GL_MAX, GL_ONE);
  DrawPieces(frame, [](const DrawPiece&) {});
}

/// The pieces from the deepest to the nearest, each of them where it owns its pixels.
void DrawOverPass(Frame& frame, const OwnershipMaps& maps) {
  SetBlending(frame, GL_ADD, GL_ONE_MINUS_SRC_ALPHA);
  const OwnershipMaps::Pair* used = nullptr;
  UseMaps(frame, used);
  DrawPieces(frame, [&](const DrawPiece& piece) {
    const OwnershipMaps::Pair* const needed = maps.For(piece);
    if (needed != used) {
      UseMaps(frame, needed);
    }
    used = needed;
  });
}

}  // namespace

void RenderColourPasses(Frame& frame, const Tile& tile, const OwnershipMaps& maps) {
  LimitDrawing(WholeOf(tile));
  glClearColor(0.0F, 0.0F, 0.0F, 0.0F);
  glClear(GL_COLOR_BUFFER_BIT);
  DrawMaxPass(frame);
  DrawOverPass(frame, maps);
}

}  // namespace plugin
