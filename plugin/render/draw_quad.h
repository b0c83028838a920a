#pragma once

#include "plugin/render/frame.h"

namespace plugin {

/// Draws one piece as one quadrilateral of the program in use. The normal carries to it the size of
/// the piece's image in pixels. [program in use, camera aimed]
void DrawQuad(const Frame& frame, const DrawPiece& piece);

}  // namespace plugin
