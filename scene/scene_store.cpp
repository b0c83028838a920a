#include "scene/scene_store.h"

#include <algorithm>
#include <utility>

#include "sdk/effect_suites.h"

namespace tarvo {
namespace {

void DisposeTakenWorld(SlotImage& image, const PF_WorldSuite1& worlds, PF_ProgPtr effectRef) {
  if (!image.taken) return;
  std::optional<PF_EffectWorld> world = std::exchange(image.taken, std::nullopt);
  try {
    worlds.dispose_world(effectRef, &*world);
  } catch (...) {  // a host that throws here keeps the world
  }
}

void DeleteTextures(Scene& scene) {
  for (Slot& slot : scene.slots) {
    for (SlotImage& image : slot.images) {
      glDeleteTextures(1, &image.texture);  // 0 is ignored
      image.texture = 0;
    }
  }
}

/// False if the host does not hand out the suite that takes worlds back; the scene then keeps them.
bool DisposeWorlds(Scene& scene, SuiteHandler& suites, PF_ProgPtr effectRef) {
  try {
    const auto& worlds = suites.Get<PF_WorldSuite1>();
    for (Slot& slot : scene.slots) {
      for (SlotImage& image : slot.images) DisposeTakenWorld(image, worlds, effectRef);
    }
    return true;
  } catch (const PF_Err) {
    return false;
  }
}

bool HoldsWorlds(const Scene& scene) {
  const auto holds = [](const Slot& slot) {
    return slot.images[kImageA].taken || slot.images[kImageB].taken;
  };
  return std::any_of(scene.slots.begin(), scene.slots.end(), holds);
}

/// False if worlds are left.
bool ReleaseContents(Scene& scene, SuiteHandler& suites, PF_ProgPtr effectRef) {
  DeleteTextures(scene);
  return !HoldsWorlds(scene) || DisposeWorlds(scene, suites, effectRef);
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
  const auto own = scenes_.find(sequenceData);
  const bool isOwn = own != scenes_.end() && own->second.get() == store.scene;
  return isOwn ? store.scene : nullptr;
}

void SceneRegistry::Release(PF_Handle owner, SuiteHandler& suites, PF_ProgPtr effectRef) {
  const auto entry = scenes_.find(owner);
  if (entry == scenes_.end()) return;
  std::unique_ptr<Scene> scene = std::move(entry->second);
  scenes_.erase(entry);
  if (!ReleaseContents(*scene, suites, effectRef)) leftOver_.push_back(std::move(scene));
}

void SceneRegistry::ReleaseAll(SuiteHandler& suites, PF_ProgPtr effectRef) {
  for (auto& [owner, scene] : scenes_) ReleaseContents(*scene, suites, effectRef);
  for (const std::unique_ptr<Scene>& scene : leftOver_) {
    ReleaseContents(*scene, suites, effectRef);
  }
  scenes_.clear();
  leftOver_.clear();
}

}  // namespace tarvo
