#pragma once

#include "sdk/effect.h"

namespace plugin {

/// A part of the output that the render target can hold, in output pixels.
struct Tile {
  A_long x;
  A_long y;
  A_long width;
  A_long height;
};

/// A rectangle of the render target, in its pixels.
struct Area {
  bool operator==(const Area&) const = default;

  A_long x;
  A_long y;
  A_long width;
  A_long height;
};

/// The area of the render target that a tile fills.
constexpr Area WholeOf(const Tile& tile) {
  return {.x = 0, .y = 0, .width = tile.width, .height = tile.height};
}

/// Limits clears and drawing to an area, until the next limit. Every stage that draws sets its own.
/// [framework's context current]
void LimitDrawing(const Area& area);

}  // namespace plugin
