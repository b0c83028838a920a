#pragma once

#include <filesystem>
#include <string>

#include "standin/scene.h"
#include "standin/scene_faults.h"

namespace standin {

/// Most bones that can be switched on and still have sliders of their own.
inline constexpr int kBonesWithSliders = 25;

/// Reads a scene file (docs/scene-format.md) and everything it names. Throws InputError with all of
/// its faults, each beginning with the file's name as given here.
Scene ReadScene(const std::filesystem::path& file);

/// The same from text; images are looked for in `folder`, `fileName` stands in the faults.
Scene ReadScene(const std::string& text, const std::filesystem::path& folder,
                const std::string& fileName);

}  // namespace standin
