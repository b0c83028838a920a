#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "cli/options/scene_options.h"

namespace tarvo {

/// What a command on a scene reads: the files of the scene, and the plug-in.
std::vector<std::filesystem::path> FilesRead(const SceneOptions& options,
                                             std::vector<std::filesystem::path> sceneFiles);

/// Throws InputError if one of the files to be made, under whatever name, is one of those read,
/// this program, the other one of its folder, or where its standard streams go, or if two of them
/// are links to one file. `option` names the files to be made in the error.
void ExpectOutputsAreNotInputs(const std::string& option, const std::vector<std::string>& made,
                               const std::vector<std::filesystem::path>& read);

}  // namespace tarvo
