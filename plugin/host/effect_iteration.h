#pragma once

#include "plugin/host/host_calls.h"
#include "plugin/host/host_reference.h"
#include "plugin/host/match_name.h"
#include "plugin/host/process.h"

namespace plugin {

/// The effect stack of a layer, as the host describes it.
struct EffectStack {
  AEGP_LayerH layer = nullptr;
  A_long count = 0;  ///< effects on the layer; 0 without one, and after a failure
};

/// Asks for the layer that the calling instance is applied to and for its number of effects;
/// chained.
inline EffectStack GetEffectStack(HostCalls& host, PF_ProgPtr effectRef) {
  EffectStack stack;
  host.Run(&AEGP_PFInterfaceSuite1::AEGP_GetEffectLayer, effectRef, &stack.layer);
  if (stack.layer != nullptr) {
    host.Run(&AEGP_EffectSuite3::AEGP_GetLayerNumEffects, stack.layer, &stack.count);
  }
  if (!host.Ok()) {
    stack.count = 0;
  }
  return stack;
}

/// True iff the effect's match name is exactly `wanted`; chained, false after a failure.
inline bool HasMatchName(HostCalls& host, AEGP_EffectRefH effect, const char* wanted) {
  AEGP_InstalledEffectKey key = 0;
  MatchName name;
  host.Run(&AEGP_EffectSuite2::AEGP_GetInstalledKeyFromLayerEffect, effect, &key);
  host.Run(&AEGP_EffectSuite2::AEGP_GetEffectMatchName, key, name.Buffer());
  return host.Ok() && name.Is(wanted);
}

/// True iff the effect is an active companion; chained, false after a failure. The flags are
/// requested for every effect, also for those that are no companions.
inline bool IsActiveCompanion(HostCalls& host, AEGP_EffectRefH effect) {
  const bool isCompanion = HasMatchName(host, effect, kCompanionMatchName);
  AEGP_EffectFlags flags = AEGP_EffectFlags_NONE;
  host.Run(&AEGP_EffectSuite2::AEGP_GetEffectFlags, effect, &flags);
  return host.Ok() && isCompanion && (flags & AEGP_EffectFlags_ACTIVE) != 0;
}

/// The one iteration over a layer's effects: calls `visit(position, effect)` for every active
/// companion, top of the stack (position 0) first. The iteration owns the reference and disposes of
/// it when `visit` returns. After a failed host call nothing more is visited.
template <class Visitor>
void ForEachActiveCompanion(HostCalls& host, const EffectStack& stack, Visitor visit) {
  for (A_long position = 0; position < stack.count && host.Ok(); ++position) {
    EffectReference effect(host);
    effect.Obtain(&AEGP_EffectSuite2::AEGP_GetLayerEffectByIndex, gPluginId, stack.layer, position);
    if (effect && IsActiveCompanion(host, effect.Get())) {
      visit(position, effect.Get());
    }
  }
}

}  // namespace plugin
