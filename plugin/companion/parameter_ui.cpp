#include "plugin/companion/parameter_ui.h"

#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "plugin/host/effect_iteration.h"
#include "plugin/host/parameters.h"
#include "plugin/host/text_field.h"

namespace plugin {
namespace {

constexpr std::size_t kLongestLabel = sizeof(PF_ParamDef::name) - 1;

/// The companion parameter whose group has the companion's name.
constexpr PF_ParamIndex kNamedParameter = 1;

/// The name of the group that holds the companion's parameters, as the user sees it.
std::string GroupName(HostCalls& host, AEGP_EffectRefH companion) {
  std::array<A_char, kStreamNameBytes> name{};
  StreamReference stream(host);
  stream.Obtain(&AEGP_StreamSuite4::AEGP_GetNewEffectStreamByIndex, gPluginId, companion,
                kNamedParameter);
  StreamReference group(host);
  group.Obtain(&AEGP_DynamicStreamSuite4::AEGP_GetNewParentStreamRef, gPluginId, stream.Get());
  host.Run(&AEGP_StreamSuite1::AEGP_GetStreamName, group.Get(), A_Boolean{0}, name.data());
  return std::string(TextIn(name.data(), kLongestStreamName));
}

/// Two labels for each active companion of the layer, in the order of the stack.
std::vector<std::string> CompanionLabels(HostCalls& host, PF_ProgPtr effectRef) {
  std::vector<std::string> labels;
  const EffectStack stack = GetEffectStack(host, effectRef);
  ForEachActiveCompanion(host, stack, [&](A_long, AEGP_EffectRefH companion) {
    const std::string name = GroupName(host, companion);
    labels.push_back((name + " start Z").substr(0, kLongestLabel));
    labels.push_back((name + " end Z").substr(0, kLongestLabel));
  });
  return labels;
}

void SetHidden(HostCalls& host, AEGP_EffectRefH self, PF_ParamIndex index, bool hidden) {
  StreamReference stream(host);
  stream.Obtain(&AEGP_StreamSuite4::AEGP_GetNewEffectStreamByIndex, gPluginId, self, index);
  AEGP_DynStreamFlags flags = 0;
  host.Run(&AEGP_DynamicStreamSuite4::AEGP_GetDynamicStreamFlags, stream.Get(), &flags);
  if (((flags & AEGP_DynStreamFlag_HIDDEN) != 0) == hidden) {
    return;
  }
  host.Run(&AEGP_DynamicStreamSuite4::AEGP_SetDynamicStreamFlag, stream.Get(),
           AEGP_DynStreamFlag_HIDDEN, A_Boolean{0}, static_cast<A_Boolean>(hidden ? 1 : 0));
}

/// Shows the parameters below `shownCount` and hides the rest, up to "Hidden". False if the host
/// has no reference to this effect.
bool ShowControls(HostCalls& host, PF_ProgPtr effectRef, PF_ParamIndex shownCount) {
  EffectReference self(host);
  self.Obtain(&AEGP_PFInterfaceSuite1::AEGP_GetNewEffectForEffect, gPluginId, effectRef);
  if (!self) {
    return false;
  }
  for (PF_ParamIndex index = 1; index <= PARAM_HIDDEN; ++index) {
    SetHidden(host, self.Get(), index, index >= shownCount);
  }
  return true;
}

/// Sends a parameter under a new label. Hosts of today ignore PF_PUI_INVISIBLE here, for they take
/// over only the separator and disabled flags: what is shown follows the streams' hidden flags.
void SendLabel(HostCalls& host, PF_ProgPtr effectRef, PF_ParamIndex index, PF_ParamDef parameter,
               const std::string& label) {
  std::memset(parameter.name, 0, sizeof parameter.name);
  label.copy(parameter.name, kLongestLabel);
  parameter.ui_flags |= PF_PUI_INVISIBLE;
  host.Run(&PF_ParamUtilsSuite3::PF_UpdateParamUI, effectRef, index, &parameter);
}

/// Sends the labels that differ from what the parameters are called now. Labels beyond "Hidden"
/// have no parameter.
void SendLabels(HostCalls& host, PF_ProgPtr effectRef, PF_ParamDef* const* params,
                const std::vector<std::string>& labels) {
  PF_ParamIndex index = 1;
  for (const std::string& label : labels) {
    if (index > PARAM_HIDDEN) {
      return;
    }
    const PF_ParamDef& parameter = *params[index];
    if (TextIn(parameter.name, sizeof parameter.name) != label) {
      SendLabel(host, effectRef, index, parameter, label);
    }
    ++index;
  }
}

}  // namespace

PF_Err UpdateParamsUI(PF_InData& in, PF_ParamDef* const* params) {
  HostCalls host(in.pica_basicP);
  const std::vector<std::string> labels = CompanionLabels(host, in.effect_ref);
  const auto shownCount = static_cast<PF_ParamIndex>(1 + labels.size());
  if (ShowControls(host, in.effect_ref, shownCount)) {
    SendLabels(host, in.effect_ref, params, labels);
  }
  return host.Code();
}

}  // namespace plugin
