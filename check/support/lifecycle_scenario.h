#pragma once

#include <deque>
#include <string>
#include <vector>

#include "base/image/picture.h"
#include "standin/host/host.h"

namespace check {

/// What the plug-in answered to one step of a scenario, and the host operations that failed in it.
struct Step {
  std::string name;
  standin::CommandResult result;
  std::vector<standin::CallRecord> injected;
};

/// What a layer shows in either mode.
struct Views {
  tarvo::Picture fast;
  tarvo::Picture exact;
};

/// Everything that happens to the plug-in between loading and unloading, on a host of its own:
/// three instances, one of them duplicated, a project saved and reopened, companions that send both
/// images, changed parameters, idle time, renders in both modes and in tiles.
///
///   (Begin | Start) DrawAgain? End
class LifecycleScenario {
 public:
  LifecycleScenario();

  /// From the set-up to the last picture.
  void Begin();
  /// The set-up alone; false if it failed.
  bool Start();
  /// What the first layer shows now that all a picture depends on is set and sent anew: the same in
  /// every scenario. The instance is the one that was there, unless its set-up met a failure: that
  /// one is replaced first, as a user would. REQUIRES: the plug-in is ready, nothing fails any
  /// more.
  Views DrawAgain();
  /// From the first removal to the set-down.
  void End();

  standin::Host host;
  std::vector<Step> steps;

 private:
  /// One step: runs `action` and keeps its result.
  template <typename Action>
  void Do(const std::string& name, Action action);

  void BuildStacks();
  void Send(standin::RendererInstance& renderer);
  void SendAll();
  void SetFast(bool fast);
  tarvo::Picture Draw(const std::string& name);
  /// A new instance in the first one's stead.
  void ReplaceFirst();

  standin::Layer* puppet_ = nullptr;
  standin::Layer* other_ = nullptr;
  std::deque<standin::RendererInstance*> renderers_;
};

}  // namespace check
