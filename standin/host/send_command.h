#pragma once

#include <vector>

#include "standin/core/core.h"

namespace standin {

/// The parameters of an instance as a command passes them: copies, and pointers to them.
struct ParameterArray {
  ParameterArray() = default;
  explicit ParameterArray(const std::vector<Parameter>& parameters);

  std::vector<PF_ParamDef> definitions;
  std::vector<PF_ParamDef*> pointers;
};

/// What passes with one command.
struct Records {
  PF_InData in{};
  PF_OutData out{};
  ParameterArray parameters;
  PF_LayerDef* output = nullptr;
  void* extra = nullptr;
};

/// An input record as the host fills it: for an instance, or (null) for the plug-in as a whole.
PF_InData MakeInput(Core& core, const RendererInstance* renderer);

/// The records of a command to an instance (null: the plug-in as a whole); the output record starts
/// with the handles of the input record.
Records MakeRecords(Core& core, const RendererInstance* renderer);

/// Puts the conditions of a frame into an input record made for an instance. Width and height stay
/// the layer's own; `extent_hint` becomes the layer at the frame's resolution.
void ApplyRequest(const FrameRequest& request, PF_InData& in);

/// Calls the plug-in with these records and checks what it left behind.
CommandResult SendCommand(Core& core, A_long command, PF_InData& in, PF_OutData& out,
                          PF_ParamDef** params, PF_LayerDef* output, void* extra);
CommandResult SendCommand(Core& core, A_long command, Records& records);

/// Calls one idle hook and checks what it left behind.
A_Err CallIdleHook(Core& core, const IdleHookEntry& hook);

}  // namespace standin
