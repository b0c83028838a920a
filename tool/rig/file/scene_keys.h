#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/files/name_index.h"
#include "tool/rig/animation.h"
#include "tool/rig/file/scene_node.h"
#include "tool/rig/strip.h"

namespace tarvo {

/// Most frames that an animation has.
inline constexpr int kMostFrames = 100'000;

/// Reads the "frames" of a scene, if it has any, into an animation whose scene is read already.
/// `images` are the scene's; `strips` holds the strip of each bone that has one. `fileName` stands
/// in the places of settings.
void ReadFrames(const SceneNode& root, const NameIndex& images,
                const std::vector<std::optional<Strip>>& strips, const std::string& fileName,
                Animation& animation);

}  // namespace tarvo
