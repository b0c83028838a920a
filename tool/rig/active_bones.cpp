#include "tool/rig/active_bones.h"

#include <algorithm>

namespace tarvo {

std::vector<std::size_t> ActiveBones(const Scene& scene) {
  std::vector<std::size_t> bones;
  for (const StackEntry& entry : scene.stack) {
    if (entry.kind == StackEntry::Kind::kBone && scene.bones[entry.index].active) {
      bones.push_back(entry.index);
    }
  }
  return bones;
}

int StartSliderOf(std::size_t bone) {
  return static_cast<int>(2 * std::min<std::size_t>(bone, kBonesWithSliders - 1) + 1);
}

}  // namespace tarvo
