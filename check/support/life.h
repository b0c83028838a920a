#pragma once

#include <deque>
#include <string>
#include <vector>

#include "standin/host.h"

namespace check {

/// What the plug-in answered to one step of a life, and the host operations that failed in it.
struct Step {
  std::string name;
  standin::CommandResult result;
  std::vector<standin::CallRecord> injected;
};

/// Everything that happens to the plug-in between loading and unloading, on a host of its own:
/// three instances, one of them duplicated, a project saved and reopened, companions that send both
/// images, changed parameters, idle time, renders in both modes and in tiles.
///
///   Begin End
class Life {
 public:
  Life();

  /// From the set-up to the last picture.
  void Begin();
  /// From the first removal to the set-down.
  void End();

  standin::Host host;
  std::vector<Step> steps;

 private:
  /// One step: runs `action` and keeps its result.
  template <typename Action>
  void Do(const std::string& name, Action action);

  void BuildStacks();
  void SendAll();
  void Picture(const std::string& name);

  standin::Layer* puppet_ = nullptr;
  standin::Layer* other_ = nullptr;
  std::deque<standin::RendererInstance*> renderers_;
};

}  // namespace check
