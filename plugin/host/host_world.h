#pragma once

#include <utility>

#include "plugin/host/host_calls.h"
#include "sdk/effect_suites.h"

namespace plugin {

/// An 8-bit world that the host makes for us: Make? (Release | Dispose)?. What is neither released
/// nor disposed of is disposed of when the scope ends, on every path.
class HostWorld {
 public:
  HostWorld(HostCalls& host, PF_ProgPtr effectRef) : host_(host), effectRef_(effectRef) {}
  ~HostWorld() { Dispose(); }
  HostWorld(const HostWorld&) = delete;
  HostWorld& operator=(const HostWorld&) = delete;

  /// Asks for a world of that size in pixels, its pixels not cleared; chained.
  void Make(A_long width, A_long height) {
    if (!host_.Ok()) {
      return;
    }
    host_.Run(&PF_WorldSuite1::new_world, effectRef_, width, height, PF_NewWorldFlag_NONE, &world_);
    made_ = host_.Ok();
    if (!made_) {
      world_ = {};
    }
  }

  /// Disposes of the world, if there is one; its error counts only if the code was still 0.
  void Dispose() {
    if (std::exchange(made_, false)) {
      host_.RunCleanup(&PF_WorldSuite1::dispose_world, effectRef_, &world_);
    }
  }

  /// Hands the world over to the caller. REQUIRES: Made.
  PF_EffectWorld Release() {
    made_ = false;
    return world_;
  }

  [[nodiscard]] bool Made() const { return made_; }
  /// All fields are zero unless it was made.
  PF_EffectWorld& Get() { return world_; }

 private:
  HostCalls& host_;
  PF_ProgPtr effectRef_;
  PF_EffectWorld world_{};
  bool made_ = false;
};

}  // namespace plugin
