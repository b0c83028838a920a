#pragma once

#include "plugin/render/frame.h"
#include "plugin/render/ownership_maps.h"

namespace plugin {

/// Draws the pieces of one tile in two passes: the greatest of all pieces, channel by channel, and
/// over it the pieces from the deepest to the nearest, where only a pixel's owner of each image
/// shows unless transparency is fast. The target then holds premultiplied colour. Stops the render
/// like RequireFramework if the framework fails. [framework's context current, camera aimed]
void RenderColourPasses(Frame& frame, const Tile& tile, const OwnershipMaps& maps);

}  // namespace plugin
