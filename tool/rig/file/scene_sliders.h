#pragma once

#include "tool/rig/animation.h"
#include "tool/rig/file/scene_node.h"

namespace tarvo {

/// Leaves a fault for each bone that has a depth and, at some frame, is active without sliders of
/// its own: beyond the first kBonesWithSliders active bones. The fault names the first such frame.
/// The time depends on the keys and not on the number of frames.
void ExpectSliders(const SceneNode& root, const Animation& animation);

}  // namespace tarvo
