#pragma once

#include <cstddef>
#include <vector>

#include "tool/rig/scene.h"

namespace tarvo {

/// The active bones of a scene, as indices into Scene::bones: bone number o at
/// index o.
std::vector<std::size_t> ActiveBones(const Scene& scene);

/// Parameter index of the start slider of a bone (its number from 0); the end slider is the next.
/// Bones beyond the last pair use that one.
int StartSliderOf(std::size_t bone);

}  // namespace tarvo
