#pragma once

#include <vector>

#include "plugin/render/frame.h"

namespace plugin {

/// Sorts by falling depth. The order of equal depths is what this partition gives, and pictures
/// depend on it: pieces that share a depth keep their places from frame to frame only as long as it
/// stays as it is.
void SortByFallingDepth(std::vector<DrawPiece>& pieces);

/// Every piece of the scene that can be drawn, deepest first. A piece's depth runs from its bone's
/// start Z to its end Z with its place along the bone, in millionths; bones past the last pair of
/// sliders use that pair. Pieces whose bone has no number, and pieces of which no image was ever
/// uploaded, are left out.
std::vector<DrawPiece> BuildDrawList(const Scene& scene, PF_ParamDef* const* params);

}  // namespace plugin
