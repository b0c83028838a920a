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
/// other on both axes, and of which not both are known to be contested. About n log n for n pieces
/// that lie in a row or one over the other.
void MarkContestedPieces(Frame& frame);

}  // namespace plugin
