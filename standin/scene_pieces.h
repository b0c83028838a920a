#pragma once

#include <utility>
#include <vector>

#include "standin/scene.h"
#include "standin/scene_node.h"

namespace standin {

/// One number for both ends, or [start, end].
std::pair<double, double> ReadEnds(const SceneNode& node, Range range);

/// The pieces of a bone in either form: its "pieces" as they stand, or its "strip" cut and bent.
/// Pieces that sample a second image are faults where the bone has none.
std::vector<Piece> ReadPieces(const SceneNode& bone);

}  // namespace standin
