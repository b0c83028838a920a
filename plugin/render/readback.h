#pragma once

#include "plugin/render/area.h"
#include "plugin/render/frame.h"

namespace plugin {

/// Reads one tile back into its place in the scratch world. False if the host has no buffer, or no
/// address for a row: the tile is then not, or not wholly, there. What the host throws passes.
bool ReadBack(Frame& frame, const Tile& tile);

}  // namespace plugin
