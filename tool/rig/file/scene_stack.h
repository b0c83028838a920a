#pragma once

#include <vector>

#include "tool/rig/file/scene_node.h"
#include "tool/rig/scene.h"

namespace tarvo {

/// The finished effect stack: other effects and the renderer at the places that "effects" and
/// "renderer" name (the renderer last where nothing is said), the bones in their order at the
/// places left free. Places outside the stack and places named twice are faults; the stack is then
/// not to be used. REQUIRES: `scene` holds its bones and other effects.
std::vector<StackEntry> ReadStack(const SceneNode& root, const Scene& scene);

}  // namespace tarvo
