#include "plugin/scene/scene_store.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "plugin/gl/framework.h"
#include "plugin/host/error_chain.h"
#include "sdk/effect_suites.h"

namespace plugin {
namespace {

using AESDK_OpenGL::AESDK_OpenGL_IsCurrent;
using AESDK_OpenGL::gState;

void DisposeTakenWorld(SlotImage& image, const PF_WorldSuite1& worlds, PF_ProgPtr effectRef) {
  if (!image.taken) {
    return;
  }
  std::optional<PF_EffectWorld> world = std::exchange(image.taken, std::nullopt);
  IgnoreErrors([&] { worlds.dispose_world(effectRef, &*world); });
}

/// True iff some image of the scene has the property.
template <class Property>
bool AnyImage(const Scene& scene, Property property) {
  return std::ranges::any_of(
      scene.slots, [&](const Slot& slot) { return std::ranges::any_of(slot.images, property); });
}

/// False if worlds are left because the host does not hand out the suite that disposes of them.
bool DisposeWorlds(Scene& scene, SuiteHandler& suites, PF_ProgPtr effectRef) {
  if (!AnyImage(scene, [](const SlotImage& image) { return image.taken.has_value(); })) {
    return true;
  }
  try {
    const auto& worlds = suites.Get<PF_WorldSuite1>();
    for (Slot& slot : scene.slots) {
      for (SlotImage& image : slot.images) {
        DisposeTakenWorld(image, worlds, effectRef);
      }
    }
    return true;
  } catch (...) {
    return false;
  }
}

/// False if textures are left because their context is not current: in another one their names are
/// another instance's.
bool DeleteTextures(Scene& scene) {
  if (!AnyImage(scene, [](const SlotImage& image) { return image.texture != 0; })) {
    return true;
  }
  if (!AESDK_OpenGL_IsCurrent(gState)) {
    return false;
  }
  for (Slot& slot : scene.slots) {
    for (SlotImage& image : slot.images) {
      glDeleteTextures(1, &image.texture);  // 0 is ignored
      image.texture = 0;
    }
  }
  return true;
}

/// False if something is left.
bool ReleaseContents(Scene& scene, SuiteHandler& suites, PF_ProgPtr effectRef) {
  const bool texturesDeleted = DeleteTextures(scene);
  return DisposeWorlds(scene, suites, effectRef) && texturesDeleted;
}

}  // namespace

SceneRegistry gScenes;

Scene* SceneRegistry::Reach(PF_Handle sequenceData) {
  if (sequenceData == nullptr || *sequenceData == nullptr) {
    return nullptr;
  }
  auto& store = *static_cast<SceneStore*>(*sequenceData);
  if (store.scene == nullptr) {
    return store.scene = &scenes_[sequenceData].emplace_back();
  }
  const auto own = scenes_.find(sequenceData);
  const auto isNamed = [&](const Scene& scene) { return &scene == store.scene; };
  const bool isOwn = own != scenes_.end() && std::ranges::any_of(own->second, isNamed);
  return isOwn ? store.scene : nullptr;
}

void SceneRegistry::Release(PF_Handle owner, SuiteHandler& suites, PF_ProgPtr effectRef) {
  auto entry = scenes_.extract(owner);
  if (entry.empty()) {
    return;
  }
  Scenes& scenes = entry.mapped();
  for (auto scene = scenes.begin(); scene != scenes.end();) {
    const bool isGone = !scene->isInUse && ReleaseContents(*scene, suites, effectRef);
    scene = isGone ? scenes.erase(scene) : std::next(scene);
  }
  leftOver_.splice(leftOver_.end(), scenes);
}

void SceneRegistry::ReleaseAll(SuiteHandler* suites, PF_ProgPtr effectRef) {
  Scenes all = std::exchange(leftOver_, {});
  for (auto& [owner, scenes] : std::exchange(scenes_, {})) {
    all.splice(all.end(), scenes);
  }
  for (auto scene = all.begin(); scene != all.end();) {
    if (scene->isInUse) {
      ++scene;
      continue;
    }
    DeleteTextures(*scene);
    if (suites != nullptr) {
      DisposeWorlds(*scene, *suites, effectRef);
    }
    scene = all.erase(scene);
  }
  leftOver_.splice(leftOver_.end(), all);
}

}  // namespace plugin
