#pragma once

#include <vector>

#include "plugin/render/frame.h"

namespace plugin {

/// The output cut into tiles of at most the render target's size, row by row; one tile where the
/// output fits, none where it has no pixels.
std::vector<Tile> TilesOf(A_long outWidth, A_long outHeight, A_long targetWidth,
                          A_long targetHeight);

/// Aims the camera at one tile of the frame: one unit of the plane z = 0 is one pixel, and the
/// layer's corner lies at the output's origin. Pieces are drawn in that plane. [framework's context
/// current]
void AimCamera(const Frame& frame, const Tile& tile);

}  // namespace plugin
