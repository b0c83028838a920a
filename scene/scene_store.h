#pragma once

#include <memory>
#include <unordered_map>
#include <vector>

#include "host/suite_handler.h"
#include "scene/scene.h"

namespace tarvo {

/// What an instance's sequence-data handle holds. The host saves and copies these bytes as they
/// stand, so the pointer in them is followed only after the registry has recognised it.
struct SceneStore {
  A_long instanceNumber;
  Scene* scene;  ///< null until a handler first uses the scene
};

/// The live scenes of the process, each with the handle whose store made it.
///
/// Bytes from a saved project or from a duplicated instance name scenes that are gone or somebody
/// else's: a pointer is followed only in the handle whose scene it is, and a scene is released
/// through the handle that owns it, never through the bytes in one.
class SceneRegistry {
 public:
  /// The scene of the store in `sequenceData`, made and entered now if the store has none yet. Null
  /// if there is no handle or no store in it, or if the store names a scene that is not this
  /// handle's.
  Scene* Reach(PF_Handle sequenceData);

  /// Releases the scene that `owner` made, if there is one: its taken worlds go back to the host
  /// (errors are dropped; without the suite for it they wait for ReleaseAll), its textures are
  /// deleted. [framework's context current]
  void Release(PF_Handle owner, SuiteHandler& suites, PF_ProgPtr effectRef);

  /// Releases every scene that is left. [framework's context current]
  void ReleaseAll(SuiteHandler& suites, PF_ProgPtr effectRef);

 private:
  std::unordered_map<PF_Handle, std::unique_ptr<Scene>> scenes_;
  std::vector<std::unique_ptr<Scene>> leftOver_;  ///< nobody's, but they still hold worlds
};

/// The one registry of the process.
extern SceneRegistry gScenes;

}  // namespace tarvo
