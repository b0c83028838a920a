#pragma once

#include <vector>

#include "plugin/render/frame.h"

namespace plugin {

/// Sorts by falling depth, with a quicksort whose pivot is the middle entry and whose partition
/// swaps equal entries too. It is not stable, but deterministic: the order of equal depths is the
/// one that these steps give, pictures depend on it, and std::sort or another pivot would change
/// them. About n log n comparisons, n² in the worst case; recursion is at most log n deep.
void SortByFallingDepth(std::vector<DrawPiece>& pieces);

/// Every piece of the scene that can be drawn, deepest first. A piece's depth runs from its bone's
/// start Z to its end Z with its place along the bone, in millionths; bones past the last pair of
/// sliders use that pair. Pieces whose bone has no number, and pieces of which no image was ever
/// uploaded, are left out.
std::vector<DrawPiece> BuildDrawList(const Scene& scene, PF_ParamDef* const* params);

}  // namespace plugin
