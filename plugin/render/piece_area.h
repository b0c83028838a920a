#pragma once

#include <vector>

#include "plugin/render/frame.h"

namespace plugin {

/// The part of a tile's area outside which none of the pieces has a pixel; without width or height
/// if they all lie elsewhere. The whole of it where a corner, or an origin that moves it, is so far
/// away (or no number) that single precision could draw a piece beside its place.
Area AreaOf(const Frame& frame, const Tile& tile, const std::vector<const DrawPiece*>& pieces);

}  // namespace plugin
