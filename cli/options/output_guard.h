#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "cli/options/scene_options.h"
#include "tool/rig/animation.h"

namespace standin {

/// What a command on a scene reads: the scene file, its images, the plug-in.
std::vector<std::filesystem::path> FilesRead(const SceneOptions& options,
                                             const Animation& animation);

/// Throws InputError if one of the files to be made, under whatever name, is one of those read,
/// this program or where its standard streams go, or if two of them are links to one file. `option`
/// names the files to be made in the error.
void ExpectApart(const std::string& option, const std::vector<std::string>& made,
                 const std::vector<std::filesystem::path>& read);

}  // namespace standin
