#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "base/files/name_index.h"
#include "tool/rig/file/scene_node.h"
#include "tool/rig/scene.h"

namespace tarvo {

/// Most pixels of all images of a scene together that are decoded: 4 GiB of them.
inline constexpr std::uintmax_t kMostImagePixels = std::uintmax_t{1} << 30;

/// The images of a scene, as they are kept and by their names.
struct SceneImages {
  std::vector<NamedImage> images;
  NameIndex names;
  std::vector<std::filesystem::path> files;  ///< that were read
  std::uint64_t fingerprint = 0;             ///< of their bytes
};

/// Reads the "images" of a scene. Every file is read and checked, but only what a bone shows, at
/// rest or by a key, is decoded, and a file that has several names is decoded once; all others have
/// no pixels. Throws OutOfMemory.
SceneImages ReadImages(const SceneNode& root, const std::filesystem::path& folder);

/// Where an image is that a scene file in `folder` names.
std::filesystem::path ImageFile(const std::filesystem::path& folder, const std::string& name);

}  // namespace tarvo
