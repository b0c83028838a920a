#include "tests/standin/probe.h"

#include <cstdint>
#include <cstring>
#include <utility>

namespace probe {
namespace {

std::map<PF_Cmd, Answer> gAnswers;
AEGP_PluginID gPluginId = 0;

PF_Err Register(const Command& command) {
  const auto* utility = command.Acquire<AEGP_UtilitySuite5>("AEGP Utility Suite", 11);
  if (utility == nullptr) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  const A_Err result = utility->AEGP_RegisterWithAEGP(nullptr, "probe", &gPluginId);
  command.Release("AEGP Utility Suite", 11);
  return result;
}

PF_Err Declare(const Command& command) {
  PF_ParamDef slider{};
  slider.param_type = PF_Param_FLOAT_SLIDER;
  slider.flags = PF_ParamFlag_SUPERVISE;
  slider.uu.id = 1;
  std::strcpy(slider.name, "Slider");
  slider.u.fs_d.valid_min = slider.u.fs_d.slider_min = -10;
  slider.u.fs_d.valid_max = slider.u.fs_d.slider_max = 10;

  PF_ParamDef checkbox{};
  checkbox.param_type = PF_Param_CHECKBOX;
  checkbox.uu.id = 2;
  std::strcpy(checkbox.name, "Checkbox");
  checkbox.u.bd.u.nameptr = "";

  PF_ParamDef popup{};
  popup.param_type = PF_Param_POPUP;
  popup.flags = PF_ParamFlag_SUPERVISE;
  popup.uu.id = 3;
  std::strcpy(popup.name, "Popup");
  popup.u.pd.num_choices = 2;
  popup.u.pd.value = popup.u.pd.dephault = 1;
  popup.u.pd.u.namesptr = "One|Two";

  for (PF_ParamDef* definition : {&slider, &checkbox, &popup}) {
    const PF_Err result = command.in.inter.add_param(command.in.effect_ref, -1, definition);
    if (result != PF_Err_NONE) {
      return result;
    }
  }
  command.out.num_params = 4;
  return PF_Err_NONE;
}

/// A handle that says in its first byte how often an instance was set up.
PF_Err SetUp(const Command& command) {
  const auto* handles = command.Acquire<PF_HandleSuite1>("PF Handle Suite", 2);
  if (handles == nullptr) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  PF_Handle handle = handles->host_new_handle(kSequenceBytes);
  if (handle != nullptr) {
    auto* bytes = static_cast<std::uint8_t*>(handles->host_lock_handle(handle));
    if (bytes != nullptr) {
      std::memset(bytes, 0, kSequenceBytes);
      handles->host_unlock_handle(handle);
    }
    command.out.sequence_data = handle;
  }
  command.Release("PF Handle Suite", 2);
  return handle == nullptr ? PF_Err_OUT_OF_MEMORY : PF_Err_NONE;
}

PF_Err SetUpAgain(const Command& command) {
  if (command.in.sequence_data != nullptr) {
    ++*static_cast<std::uint8_t*>(*command.in.sequence_data);
  }
  return PF_Err_NONE;
}

PF_Err SetDown(const Command& command) {
  const auto* handles = command.Acquire<PF_HandleSuite1>("PF Handle Suite", 2);
  if (command.in.sequence_data != nullptr) {
    handles->host_dispose_handle(command.in.sequence_data);
  }
  command.in.sequence_data = nullptr;
  command.out.sequence_data = nullptr;
  command.Release("PF Handle Suite", 2);
  return PF_Err_NONE;
}

PF_Err Work(PF_Cmd command, const Command& records) {
  switch (command) {
    case PF_Cmd_GLOBAL_SETUP:
      return Register(records);
    case PF_Cmd_PARAMS_SETUP:
      return Declare(records);
    case PF_Cmd_SEQUENCE_SETUP:
      return SetUp(records);
    case PF_Cmd_SEQUENCE_RESETUP:
      return SetUpAgain(records);
    case PF_Cmd_SEQUENCE_SETDOWN:
      return SetDown(records);
    default:
      return PF_Err_NONE;
  }
}

}  // namespace

void ClearAnswers() { gAnswers.clear(); }

void On(PF_Cmd command, Answer answer) { gAnswers[command] = std::move(answer); }

AEGP_PluginID PluginId() { return gPluginId; }

PF_Err EntryPoint(PF_Cmd command, PF_InData* in, PF_OutData* out, PF_ParamDef* /*params*/[],
                  PF_LayerDef* output, void* extra) {
  const Command records{*in, *out, output, extra};
  const PF_Err result = Work(command, records);
  const auto answer = gAnswers.find(command);
  return result != PF_Err_NONE || answer == gAnswers.end() ? result : answer->second(records);
}

}  // namespace probe
