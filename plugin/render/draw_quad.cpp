#include "plugin/render/draw_quad.h"

namespace plugin {

void DrawQuad(const Frame& frame, const DrawPiece& piece) {
  const SlotImage& image = frame.ImageOf(piece);
  const PieceQuad& quad = *piece.quad;
  glBegin(GL_QUADS);
  glNormal3f(static_cast<GLfloat>(image.width), static_cast<GLfloat>(image.height), 0.0F);
  for (std::size_t corner = 0; corner < 4; ++corner) {
    glTexCoord2f(static_cast<GLfloat>(quad.texCoords[corner][0]),
                 static_cast<GLfloat>(quad.texCoords[corner][1]));
    glVertex2f(static_cast<GLfloat>(quad.corners[corner][0] * frame.scaleX),
               static_cast<GLfloat>(quad.corners[corner][1] * frame.scaleY));
  }
  glEnd();
}

}  // namespace plugin
