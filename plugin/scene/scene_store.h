#pragma once

#include <list>
#include <unordered_map>

#include "plugin/host/suite_handler.h"
#include "plugin/scene/scene.h"

namespace plugin {

/// What an instance's sequence-data handle holds. The host saves and copies these bytes as they
/// stand, so the pointer in them is dereferenced only if the registry knows it.
struct SceneStore {
  A_long instanceNumber;
  Scene* scene;  ///< null until a handler first uses the scene
};

/// The live scenes of the process, each with the handle whose store made it.
///
/// Bytes from a saved project or a duplicated instance may name scenes that no longer exist or that
/// another instance owns: a pointer is dereferenced only in the handle that owns its scene, and a
/// scene is released through the handle that owns it, never through the bytes in one. What is
/// released leaves the registry first: the host calls of a release may bring other commands.
class SceneRegistry {
 public:
  /// The scene of the store in `sequenceData`, made and entered now if the store has none yet. Null
  /// if there is no handle or no store in it, or if the store names a scene that is not this
  /// handle's. Throws std::bad_alloc; the store is then as it was.
  Scene* Reach(PF_Handle sequenceData);

  /// Releases the scenes that `owner` made: their taken worlds are disposed of (errors are dropped)
  /// and their textures deleted. What cannot be released now, for want of the suite, because the
  /// framework's context is not current or because the scene is in use, is kept for ReleaseAll.
  void Release(PF_Handle owner, SuiteHandler& suites, PF_ProgPtr effectRef);

  /// Releases every scene that no command is using; call it before the context is
  /// deleted. Without suites (null) their worlds are lost.
  void ReleaseAll(SuiteHandler* suites, PF_ProgPtr effectRef);

 private:
  using Scenes = std::list<Scene>;

  /// By owner. There are several where a store was found empty that had a scene before: bytes that
  /// the host restored, or a handle whose address came again.
  std::unordered_map<PF_Handle, Scenes> scenes_;
  Scenes leftOver_;  ///< of owners that are gone
};

/// The one registry of the process.
extern SceneRegistry gScenes;

}  // namespace plugin
