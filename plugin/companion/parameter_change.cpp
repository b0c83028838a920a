#include "plugin/companion/parameter_change.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "plugin/host/effect_iteration.h"
#include "plugin/host/parameters.h"

namespace plugin {
namespace {

/// The companion parameter that counts nudges. companion.h documents it for companions.
constexpr PF_ParamIndex kNudgeParameter = 89;
constexpr A_long kNudgeModulus = 1000;
constexpr double kFirstChoice = 1.0;

void NudgeCompanion(HostCalls& host, AEGP_EffectRefH companion) {
  StreamReference stream(host);
  stream.Obtain(&AEGP_StreamSuite4::AEGP_GetNewEffectStreamByIndex, gPluginId, companion,
                kNudgeParameter);
  StreamValue counter(host, stream.Get());
  counter.Read();
  counter.Set(Nudged(counter.Get()));
  counter.Write();
}

void ResetUpdater(HostCalls& host, PF_ProgPtr effectRef) {
  EffectReference self(host);
  self.Obtain(&AEGP_PFInterfaceSuite1::AEGP_GetNewEffectForEffect, gPluginId, effectRef);
  if (!self) {  // the host has none to give: the popup stays as the user left it
    return;
  }
  StreamReference stream(host);
  stream.Obtain(&AEGP_StreamSuite4::AEGP_GetNewEffectStreamByIndex, gPluginId, self.Get(),
                PARAM_UPDATER);
  StreamValue choice(host, stream.Get());
  choice.Set(kFirstChoice);
  choice.Write();
}

}  // namespace

double Nudged(double counter) {
  using Limits = std::numeric_limits<A_long>;
  const double next = counter + 1.0;
  if (std::isnan(next)) {
    return 0.0;
  }
  const auto whole = static_cast<A_long>(std::clamp<double>(next, Limits::min(), Limits::max()));
  return static_cast<double>(whole % kNudgeModulus);
}

PF_Err UserChangedParam(PF_InData& in, const PF_UserChangedParamExtra& change) {
  HostCalls host(in.pica_basicP);
  const EffectStack stack = GetEffectStack(host, in.effect_ref);
  ForEachActiveCompanion(
      host, stack, [&](A_long, AEGP_EffectRefH companion) { NudgeCompanion(host, companion); });
  if (change.param_index == PARAM_UPDATER) {
    ResetUpdater(host, in.effect_ref);
  }
  return host.Code();
}

}  // namespace plugin
