#include "tool/rig/file/scene_sliders.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace tarvo {
namespace {

/// The active bones: the first kBonesWithSliders of them, and all others. Either changes by at most
/// one bone with each bone that is switched, found in logarithmic time.
class SliderOwners {
 public:
  void Switch(std::size_t bone, bool active) {
    if (active) {
      if (others_.contains(bone)) {
        return;
      }
      owners_.insert(bone);
    } else if (owners_.erase(bone) + others_.erase(bone) == 0) {
      return;
    }
    if (!others_.empty() && !owners_.empty() && *owners_.rbegin() > *others_.begin()) {
      PassOn(owners_, *owners_.rbegin(), others_);
    }
    while (owners_.size() > kBonesWithSliders) {
      PassOn(owners_, *owners_.rbegin(), others_);
    }
    while (owners_.size() < kBonesWithSliders && !others_.empty()) {
      PassOn(others_, *others_.begin(), owners_);
    }
  }

  /// Bones that lost their sliders, or were added without any, since the last call.
  std::set<std::size_t> TakeNewOthers() {
    std::erase_if(newOthers_, [this](std::size_t bone) { return !others_.contains(bone); });
    return std::exchange(newOthers_, {});
  }

 private:
  void PassOn(std::set<std::size_t>& from, std::size_t bone, std::set<std::size_t>& to) {
    from.erase(bone);
    to.insert(bone);
    if (&to == &others_) {
      newOthers_.insert(bone);
    }
  }

  std::set<std::size_t> owners_;
  std::set<std::size_t> others_;
  std::set<std::size_t> newOthers_;
};

struct SwitchedBone {
  std::size_t bone = 0;
  bool active = false;
};

/// What is switched at each frame: at frame 0 all bones as they are then, at later ones those with
/// a key.
std::map<int, std::vector<SwitchedBone>> SwitchesOf(const Animation& animation) {
  std::map<int, std::vector<SwitchedBone>> switches;
  std::vector<const Track<bool>*> tracks(animation.scene.bones.size());
  for (const BoneKeys& keys : animation.bones) {
    tracks[keys.bone] = keys.active.empty() ? nullptr : &keys.active;
  }
  for (std::size_t bone = 0; bone < tracks.size(); ++bone) {
    const Track<bool>* track = tracks[bone];
    switches[0].push_back({bone, track == nullptr ? animation.scene.bones[bone].active
                                                  : SegmentAt(*track, 0).from->value});
    if (track == nullptr) {
      continue;
    }
    for (const Key<bool>& key : *track) {
      if (const double frame = std::ceil(key.frame); frame > 0 && frame < animation.count) {
        const int first = static_cast<int>(frame);
        switches[first].push_back({bone, SegmentAt(*track, first).from->value});
      }
    }
  }
  return switches;
}

std::vector<bool> HaveDepth(const Animation& animation) {
  std::vector<bool> haveDepth;
  for (const Bone& bone : animation.scene.bones) {
    haveDepth.push_back(bone.z.has_value());
  }
  for (const BoneKeys& keys : animation.bones) {
    haveDepth[keys.bone] = haveDepth[keys.bone] || !keys.z.empty();
  }
  return haveDepth;
}

}  // namespace

void ExpectSliders(const SceneNode& root, const Animation& animation) {
  if (animation.scene.bones.size() <= kBonesWithSliders) {
    return;
  }
  std::vector<bool> isToBeChecked = HaveDepth(animation);
  SliderOwners owners;
  for (const auto& [frame, switched] : SwitchesOf(animation)) {
    for (const auto& [bone, active] : switched) {
      owners.Switch(bone, active);
    }
    for (const std::size_t bone : owners.TakeNewOthers()) {
      if (isToBeChecked[bone]) {
        isToBeChecked[bone] = false;
        root.Fault(PathTo(PathTo("bones", bone), "z") + ": only the first " +
                   std::to_string(kBonesWithSliders) + " active bones have sliders" +
                   (frame == 0 ? "" : " (frame " + std::to_string(frame) + ")"));
      }
    }
  }
}

}  // namespace tarvo
