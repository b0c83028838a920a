#include "tool/rig/file/scene_stack.h"

#include <cstddef>
#include <optional>
#include <string>

namespace tarvo {
namespace {

using EntryKind = StackEntry::Kind;

/// The stack while it fills.
class Places {
 public:
  explicit Places(std::size_t count) : places_(count) {}

  /// Takes the place that a field names.
  void Take(const SceneNode& field, StackEntry entry) {
    const auto place = field.Integer(0, static_cast<int>(places_.size()) - 1);
    if (!place) {
      return;
    }
    auto& taken = places_[static_cast<std::size_t>(*place)];
    if (taken) {
      field.Fault("free place in the stack expected, " + std::to_string(*place) + " (" +
                  Holder(*taken) + ") given");
      return;
    }
    taken = entry;
  }

  void TakeLast(StackEntry entry) { places_.back() = entry; }

  /// The finished stack: `count` bones at the places left free.
  [[nodiscard]] std::vector<StackEntry> FillWithBones(std::size_t count) const {
    std::vector<StackEntry> stack;
    std::size_t nextBone = 0;
    for (const auto& place : places_) {
      if (place) {
        stack.push_back(*place);
      } else if (nextBone < count) {
        stack.push_back({EntryKind::kBone, nextBone++});
      }
    }
    return stack;
  }

 private:
  static std::string Holder(const StackEntry& entry) {
    return entry.kind == EntryKind::kRenderer ? "the renderer" : PathTo("effects", entry.index);
  }

  std::vector<std::optional<StackEntry>> places_;
};

}  // namespace

std::vector<StackEntry> ReadStack(const SceneNode& root, const Scene& scene) {
  Places places(scene.bones.size() + scene.effects.size() + 1);
  if (const auto renderer = root.Find("renderer")) {
    places.Take(*renderer, {EntryKind::kRenderer, 0});
  } else {
    places.TakeLast({EntryKind::kRenderer, 0});
  }
  if (const auto effects = root.Find("effects"); effects && effects->IsList()) {
    std::size_t index = 0;
    for (const SceneNode& effect : effects->Items()) {
      if (const auto at = effect.Need("at", "place in the stack")) {
        places.Take(*at, {EntryKind::kOther, index});
      }
      ++index;
    }
  }
  return places.FillWithBones(scene.bones.size());
}

}  // namespace tarvo
