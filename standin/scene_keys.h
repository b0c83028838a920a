#pragma once

#include <optional>
#include <string>
#include <vector>

#include "standin/animation.h"
#include "standin/name_index.h"
#include "standin/scene_node.h"
#include "standin/strip.h"

namespace standin {

/// Most frames that an animation has.
inline constexpr int kMostFrames = 100'000;

/// Reads the "frames" of a scene, if it has any, into an animation whose scene is read already.
/// `images` are the scene's; `strips` holds the strip of each bone that has one. `fileName` stands
/// in the places of settings.
void ReadFrames(const SceneNode& root, const NameIndex& images,
                const std::vector<std::optional<Strip>>& strips, const std::string& fileName,
                Animation& animation);

}  // namespace standin
