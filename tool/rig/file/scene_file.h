#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "base/files/file_path.h"
#include "base/files/input_error.h"
#include "tool/rig/animation.h"

namespace tarvo {

/// Reads a scene file (docs/scene-format.md) and everything it names. Throws InputError with all of
/// its faults, each beginning with the file's name as given here.
Animation ReadAnimation(const FilePath& file);

/// The same from text; images are looked up in `folder`, faults start with `fileName`.
Animation ReadAnimation(const std::string& text, const std::filesystem::path& folder,
                        const std::string& fileName);

/// The scene at frame 0, which is all there is of a still one.
Scene ReadScene(const FilePath& file);

/// A scene file and the images that it names, whether they are there or not; the file alone while
/// it is no JSON.
std::vector<std::filesystem::path> FilesOf(const FilePath& file);

}  // namespace tarvo
