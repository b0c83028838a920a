#pragma once

#include "plugin/render/frame.h"

namespace plugin {

/// Marks the pieces of the draw list that need an ownership test (DrawPiece::isContested): those
/// that may share a pixel with another piece of their image (MayShareAPixel) or cover one twice,
/// and those whose texture coordinates may come to the image's border, where packed coordinates
/// wrap around: at a corner within a texel of it, or changing so fast that rounding carries them
/// there. All others own every pixel that they cover. What is not proved to is contested.
///
/// A sweep over the pieces of each image finds the pairs to look at: those that lie beside each
/// other in its direction and across it, of which not both are known to be contested. About n log n
/// for n pieces that follow one another or lie in a pile.
///
/// `subpixelBits` is OpenGL's GL_SUBPIXEL_BITS; below 8 nothing is proved.
void MarkContestedPieces(Frame& frame, int subpixelBits);

}  // namespace plugin
