#pragma once

#include <vector>

#include "render/frame.h"

namespace tarvo {

/// The area of the render target that a tile fills.
constexpr Area WholeOf(const Tile& tile) {
  return {.x = 0, .y = 0, .width = tile.width, .height = tile.height};
}

/// The part of a tile's area outside which none of the pieces has a pixel; without width or height
/// if they all lie elsewhere. The whole of it where a corner, or an origin that moves it, is so far
/// away (or no number) that single precision could draw a piece beside its place.
Area AreaOf(const Frame& frame, const Tile& tile, const std::vector<const DrawPiece*>& pieces);

}  // namespace tarvo
