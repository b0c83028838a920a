#pragma once

#include <optional>
#include <vector>

#include "tool/rig/file/scene_node.h"
#include "tool/rig/scene.h"
#include "tool/rig/strip.h"

namespace tarvo {

/// What a bone carries: pieces, and the strip that they were cut from if there is one.
struct BonePieces {
  std::vector<Piece> pieces;
  std::optional<Strip> strip;
};

/// The pieces of a bone in either form: its "pieces" as written, or its "strip" cut and bent.
/// Pieces that sample a second image are faults where the bone has none.
BonePieces ReadPieces(const SceneNode& bone);

/// The pose of a strip: two points are a segment, four a cubic Bézier curve. It must lead
/// somewhere.
Curve ReadPose(const SceneNode& node);

}  // namespace tarvo
