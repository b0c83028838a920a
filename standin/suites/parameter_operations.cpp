#include <algorithm>
#include <cstddef>
#include <cstring>

#include "sdk/effect_suites.h"
#include "standin/core/operation.h"
#include "standin/core/snapshot.h"
#include "standin/suites/families.h"

namespace standin {
namespace {

// Of the user-interface flags that PF_UpdateParamUI is given, the separator and the disabled state;
// whether a parameter is shown is up to its stream's flag.
constexpr PF_ParamUIFlags kFlagsTakenOver = PF_PUI_ECW_SEPARATOR | PF_PUI_DISABLED;

bool IsKnownType(PF_ParamType type) {
  return type == PF_Param_CHECKBOX || type == PF_Param_POPUP || type == PF_Param_FLOAT_SLIDER;
}

bool IsTerminated(const PF_ParamDef& definition) {
  return std::find(std::begin(definition.name), std::end(definition.name), '\0') !=
         std::end(definition.name);
}

bool IsInRange(const PF_FloatSliderDef& slider) {
  return slider.valid_min <= slider.slider_min && slider.slider_min < slider.slider_max &&
         slider.slider_max <= slider.valid_max && slider.value >= slider.valid_min &&
         slider.value <= slider.valid_max;
}

bool IsInRange(const PF_PopupDef& popup) {
  if (popup.u.namesptr == nullptr) {
    return false;
  }
  const std::string_view choices(popup.u.namesptr);
  return std::count(choices.begin(), choices.end(), '|') + 1 == popup.num_choices &&
         popup.value >= 1 && popup.value <= popup.num_choices && popup.dephault == popup.value;
}

/// What is wrong with a declared parameter; null when nothing is.
const char* FaultOf(const PF_ParamDef& definition) {
  if (!IsKnownType(definition.param_type)) {
    return "a type that this host does not have";
  }
  if (!IsTerminated(definition)) {
    return "a name without a terminating zero";
  }
  if (definition.param_type == PF_Param_FLOAT_SLIDER && !IsInRange(definition.u.fs_d)) {
    return "a slider whose ranges or value do not fit each other";
  }
  if (definition.param_type == PF_Param_POPUP && !IsInRange(definition.u.pd)) {
    return "a popup whose choices, number of choices and value do not fit each other";
  }
  if (definition.param_type == PF_Param_CHECKBOX && definition.u.bd.u.nameptr == nullptr) {
    return "a checkbox without a text";
  }
  return nullptr;
}

PF_Err AddParameter(Core& core, PF_ProgPtr effect, PF_ParamIndex index, PF_ParamDef* definition) {
  if (!core.addingParameters) {
    return core.Refuse("add_param", "a parameter outside parameter setup");
  }
  if (effect != core.pluginRef || index != -1 || definition == nullptr) {
    return core.Refuse("add_param", "index " + std::to_string(index) +
                                        "; this effect_ref, -1 and a definition were expected");
  }
  if (const char* fault = FaultOf(*definition)) {
    core.Refuse("add_param", fault);
    return PF_Err_UNRECOGNIZED_PARAM_TYPE;
  }
  Parameter parameter = Parameter::Declared(*definition);
  if (definition->param_type == PF_Param_POPUP) {
    parameter.definition.u.pd.u.namesptr =
        core.declaredTexts.emplace_back(definition->u.pd.u.namesptr).c_str();
  } else if (definition->param_type == PF_Param_CHECKBOX) {
    parameter.definition.u.bd.u.nameptr =
        core.declaredTexts.emplace_back(definition->u.bd.u.nameptr).c_str();
  }
  core.declared.push_back(parameter);
  return PF_Err_NONE;
}

PF_Err UpdateParamUi(Core& core, PF_ProgPtr effect, PF_ParamIndex index,
                     const PF_ParamDef* definition) {
  Effect* instance = core.Instance(effect, "PF_UpdateParamUI");
  if (instance == nullptr) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  if (index < 1 || static_cast<std::size_t>(index) >= instance->parameters.size()) {
    core.Refuse("PF_UpdateParamUI", "parameter " + std::to_string(index));
    return PF_Err_INVALID_INDEX;
  }
  if (definition == nullptr || !IsTerminated(*definition)) {
    return core.Refuse("PF_UpdateParamUI", "no definition, or a name without a terminating zero");
  }
  Parameter& parameter = instance->parameters[static_cast<std::size_t>(index)];
  PF_ParamDef& own = parameter.definition;
  const auto other =
      Snapshot(&own, sizeof own)
          .FirstChange(definition, {{offsetof(PF_ParamDef, name), sizeof own.name},
                                    {offsetof(PF_ParamDef, ui_flags), sizeof own.ui_flags}});
  if (other) {
    return core.Refuse("PF_UpdateParamUI", "a definition that is not parameter " +
                                               std::to_string(index) + "'s at byte " +
                                               std::to_string(*other) +
                                               "; its name and ui_flags alone may differ");
  }
  std::memcpy(own.name, definition->name, sizeof own.name);
  own.ui_flags = (own.ui_flags & ~kFlagsTakenOver) | (definition->ui_flags & kFlagsTakenOver);
  parameter.sentUiFlags = definition->ui_flags;
  return PF_Err_NONE;
}

}  // namespace

void AddParameterOperations(Core& core) {
  core.suites.FillUnused(core.interact, DescribeInteractionSlots());
  core.interact.add_param = Operation<"add_param", AddParameter>::Call;
  auto& suite = core.suites.Add<PF_ParamUtilsSuite3>("PF Param Utils Suite", 3);
  suite.PF_UpdateParamUI = Operation<"PF_UpdateParamUI", UpdateParamUi>::Call;
}

}  // namespace standin
