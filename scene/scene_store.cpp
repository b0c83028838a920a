#include "scene/scene_store.h"

#include <algorithm>

#include "sdk/effect_suites.h"

namespace tarvo {
namespace {

void DisposeTakenWorld(SlotImage& image, SuiteHandler& suites, PF_ProgPtr effectRef) {
  if (!image.taken) return;
  try {
    suites.Get<PF_WorldSuite1>().dispose_world(effectRef, &*image.taken);
  } catch (...) {  // no suite, or a host that threw: nothing more can be done for it
  }
  image.taken.reset();
}

void ReleaseContents(Scene& scene, SuiteHandler& suites, PF_ProgPtr effectRef) {
  for (Slot& slot : scene.slots) {
    for (SlotImage& image : slot.images) {
      DisposeTakenWorld(image, suites, effectRef);
      glDeleteTextures(1, &image.texture);  // 0 is ignored
    }
  }
}

}  // namespace

SceneRegistry gScenes;

Scene* SceneRegistry::Reach(PF_Handle sequenceData) {
  if (sequenceData == nullptr || *sequenceData == nullptr) return nullptr;
  auto& store = *static_cast<SceneStore*>(*sequenceData);
  if (store.scene == nullptr) {
    auto scene = std::make_unique<Scene>();
    store.scene = (scenes_[sequenceData] = std::move(scene)).get();
  }
  return Knows(store.scene) ? store.scene : nullptr;
}

bool SceneRegistry::Knows(const Scene* scene) const {
  return std::any_of(scenes_.begin(), scenes_.end(),
                     [&](const auto& entry) { return entry.second.get() == scene; });
}

void SceneRegistry::Release(PF_Handle owner, SuiteHandler& suites, PF_ProgPtr effectRef) {
  const auto entry = scenes_.find(owner);
  if (entry == scenes_.end()) return;
  ReleaseContents(*entry->second, suites, effectRef);
  scenes_.erase(entry);
}

void SceneRegistry::ReleaseAll(SuiteHandler& suites, PF_ProgPtr effectRef) {
  for (auto& [owner, scene] : scenes_) ReleaseContents(*scene, suites, effectRef);
  scenes_.clear();
}

}  // namespace tarvo
