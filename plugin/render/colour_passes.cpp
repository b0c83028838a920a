#include "plugin/render/colour_passes.h"

#include "plugin/render/draw_quad.h"
#include "plugin/render/rectangle_texture.h"

namespace plugin {

using AESDK_OpenGL::AESDK_OpenGL_BindSampler;
using AESDK_OpenGL::AESDK_OpenGL_SetBlendEquation;
using AESDK_OpenGL::AESDK_OpenGL_SetUniform4;
using AESDK_OpenGL::gState;

namespace {

/// One colour pass: what it is called to the shader, and how it blends.
struct Pass {
  GLfloat number;
  GLenum equation;
  GLenum destinationFactor;
};
constexpr Pass kGreatest{0.0F, GL_MAX, GL_ONE};
constexpr Pass kOver{1.0F, GL_ADD, GL_ONE_MINUS_SRC_ALPHA};

void SetPass(Frame& frame, const Pass& pass) {
  const GLfloat fast = frame.fastTransparency ? 1.0F : 0.0F;
  RequireFramework(frame,
                   AESDK_OpenGL_SetUniform4(gState, 1.0F, pass.number, fast, 0.0F, "dataFromAE"));
  RequireFramework(frame, AESDK_OpenGL_SetBlendEquation(pass.equation, pass.equation));
  glBlendFunc(GL_ONE, pass.destinationFactor);
}

void Bind(Frame& frame, GLuint texture, const char* sampler, GLuint unit) {
  RequireFramework(frame, AESDK_OpenGL_BindSampler(gState, texture, sampler, unit));
}

void BindMaps(Frame& frame, const OwnershipMaps::Pair& pair) {
  Bind(frame, pair.w, "coordTextureW", 1);
  Bind(frame, pair.h, "coordTextureH", 2);
}

void BindImage(Frame& frame, OwnershipMaps* maps, const DrawPiece& piece) {
  if (maps != nullptr) {
    BindMaps(frame, maps->Of(piece.slot, piece.family));
  }
  Bind(frame, frame.ImageOf(piece).texture, "videoTexture", 0);
}

/// Draws all pieces, with the maps of their images if there are any to look at.
void DrawPieces(Frame& frame, OwnershipMaps* maps) {
  const SlotImage* bound = nullptr;
  for (const DrawPiece& piece : frame.drawList) {
    const SlotImage& image = frame.ImageOf(piece);
    if (&image != bound) {
      BindImage(frame, maps, piece);
    }
    bound = &image;
    glColor4f(1.0F, 1.0F, 1.0F, static_cast<GLfloat>(image.opacity));
    DrawQuad(frame, piece, 0.0F);
  }
  glFlush();
}

}  // namespace

void RenderColourPasses(Frame& frame, const Tile& tile, OwnershipMaps& maps) {
  LimitDrawing(WholeOf(tile));
  glClearColor(0.0F, 0.0F, 0.0F, 0.0F);
  glClear(GL_COLOR_BUFFER_BIT);
  // A software renderer filters what the samplers of the maps find, whether or not the pass looks:
  // no map costs least.
  BindMaps(frame, {});
  SetPass(frame, kGreatest);
  DrawPieces(frame, nullptr);
  SetPass(frame, kOver);
  DrawPieces(frame, frame.fastTransparency ? nullptr : &maps);
}

}  // namespace plugin
