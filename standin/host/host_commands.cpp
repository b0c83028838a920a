#include <algorithm>
#include <stdexcept>
#include <string>

#include "standin/core/core.h"
#include "standin/core/pixels.h"
#include "standin/host/host.h"
#include "standin/host/plugin_state.h"
#include "standin/host/send_command.h"
#include "tarvo/companion.h"

namespace standin {
namespace {

// The longest side of an image that the host makes.
constexpr A_long kLongestSide = TARVO_LONGEST_SIDE;
constexpr PF_Pixel kInputColour{0xFF, 0x40, 0x60, 0x80};

bool IsInputColour(PF_Pixel pixel) {
  return pixel.alpha == kInputColour.alpha && pixel.red == kInputColour.red &&
         pixel.green == kInputColour.green && pixel.blue == kInputColour.blue;
}

/// The layer's own pixels at the frame's resolution, which an effect gets as parameter 0.
PF_EffectWorld& InputLayer(Core& core, A_long width, A_long height) {
  std::optional<PF_EffectWorld>& input = core.inputLayer;
  if (input && (input->width != width || input->height != height)) {
    core.worlds.Dispose(&*input, "the host");
    input.reset();
  }
  if (!input) {
    PF_EffectWorld made{};
    if (core.worlds.New(width, height, PF_NewWorldFlag_NONE, "input layer", &made) != PF_Err_NONE) {
      throw std::bad_alloc();
    }
    FillPixels(made, nullptr, kInputColour);
    input = made;
  }
  return *input;
}

void CheckInputPixels(Core& core, PF_EffectWorld& input) {
  for (A_long y = 0; y < input.height; ++y) {
    const PF_Pixel* row = RowOf(input, y);
    if (!std::all_of(row, row + input.width, IsInputColour)) {
      core.tracker.ReportViolation("PF_Cmd_RENDER: row " + std::to_string(y) +
                                   " of the input layer was written; it is the host's");
      FillPixels(input, nullptr, kInputColour);
      return;
    }
  }
}

Records FrameRecords(Core& core, const RendererInstance& renderer, const FrameRequest& request) {
  Records records = MakeRecords(core, &renderer);
  ApplyRequest(request, records.in);
  return records;
}

bool IsPossible(const FrameExtent& extent) {
  return extent.width >= 0 && extent.width <= kLongestSide && extent.height >= 0 &&
         extent.height <= kLongestSide;
}

}  // namespace

CommandResult Host::SetParameter(RendererInstance& renderer, int index, double value) {
  ExpectInstance(*core_, "SetParameter", renderer);
  if (index < 1 || static_cast<std::size_t>(index) >= renderer.parameters.size()) {
    throw std::out_of_range("SetParameter: parameter " + std::to_string(index) +
                            "; the instance has 1 to " +
                            std::to_string(renderer.parameters.size() - 1));
  }
  Parameter& parameter = renderer.parameters[static_cast<std::size_t>(index)];
  parameter.SetValue(value);
  if (!parameter.Supervised()) {
    return {};
  }
  PF_UserChangedParamExtra extra{index};
  Records records = MakeRecords(*core_, &renderer);
  records.extra = &extra;
  return SendCommand(*core_, PF_Cmd_USER_CHANGED_PARAM, records);
}

CommandResult Host::UpdateParamsUi(RendererInstance& renderer) {
  ExpectInstance(*core_, "UpdateParamsUi", renderer);
  Records records = MakeRecords(*core_, &renderer);
  return SendCommand(*core_, PF_Cmd_UPDATE_PARAMS_UI, records);
}

FrameExtent Host::FrameSetup(RendererInstance& renderer, const FrameRequest& request) {
  ExpectInstance(*core_, "FrameSetup", renderer);
  Records records = FrameRecords(*core_, renderer, request);
  records.out.width = records.in.extent_hint.right;
  records.out.height = records.in.extent_hint.bottom;
  FrameExtent extent;
  extent.command = SendCommand(*core_, PF_Cmd_FRAME_SETUP, records);
  extent.width = records.out.width;
  extent.height = records.out.height;
  extent.originX = records.out.origin.h;
  extent.originY = records.out.origin.v;
  return extent;
}

RenderResult Host::Render(RendererInstance& renderer, const FrameRequest& request) {
  const FrameExtent extent = FrameSetup(renderer, request);
  if (!extent.command.Ok()) {
    return {extent.command, {}, 0};
  }
  RenderResult result = RenderInto(renderer, extent, request);
  Records records = FrameRecords(*core_, renderer, request);
  SendCommand(*core_, PF_Cmd_FRAME_SETDOWN, records);
  return result;
}

RenderResult Host::RenderInto(RendererInstance& renderer, const FrameExtent& extent,
                              const FrameRequest& request) {
  ExpectInstance(*core_, "Render", renderer);
  if (!IsPossible(extent)) {
    tracker.ReportViolation("PF_Cmd_FRAME_SETUP: an output of " + std::to_string(extent.width) +
                            " x " + std::to_string(extent.height) +
                            " was asked for; the host makes none beyond " +
                            std::to_string(kLongestSide) + " a side");
    return {{PF_Err_OUT_OF_MEMORY, "", false, false}, {}, 0};
  }
  Records records = FrameRecords(*core_, renderer, request);
  records.in.output_origin_x = extent.originX;
  records.in.output_origin_y = extent.originY;
  const PF_Rect& layer = records.in.extent_hint;  // its corner is (0, 0)
  PF_EffectWorld& input = InputLayer(*core_, layer.right, layer.bottom);
  records.parameters.definitions[0].u.ld = input;
  PF_EffectWorld output{};
  const PF_Err made =
      worlds.New(extent.width, extent.height, PF_NewWorldFlag_NONE, "output", &output);
  if (made != PF_Err_NONE) {
    return {{made, "", false, false}, {}, 0};
  }
  PF_EffectWorld passed = output;
  records.output = &passed;

  RenderResult result;
  result.command = SendCommand(*core_, PF_Cmd_RENDER, records);
  result.picture = Worlds::ToPicture(output);
  result.picture.originX = extent.originX;
  result.picture.originY = extent.originY;
  if (core_->options.inspectPixels) {
    result.unwritten = Worlds::Unwritten(output);
    CheckInputPixels(*core_, input);
  }
  worlds.Dispose(&output, "the host");
  return result;
}

CommandResult Host::Call(A_long command, RendererInstance* renderer, void* extra) {
  Records records = MakeRecords(*core_, renderer);
  records.extra = extra;
  CommandResult result = SendCommand(*core_, command, records);
  core_->globalData = records.out.global_data;
  if (renderer != nullptr) {
    TakeOverData(*core_, *renderer, command, records.out);
  }
  return result;
}

CommandResult Host::CallWith(A_long command, PF_InData& in, PF_OutData& out, PF_ParamDef** params,
                             PF_LayerDef* output, void* extra) {
  return SendCommand(*core_, command, in, out, params, output, extra);
}

PF_InData Host::InputRecord(const RendererInstance* renderer) const {
  return MakeInput(*core_, renderer);
}

A_Err Host::Idle() {
  A_Err first = A_Err_NONE;
  const std::vector<IdleHookEntry> hooks = core_->idleHooks;
  for (const IdleHookEntry& hook : hooks) {
    const A_Err code = CallIdleHook(*core_, hook);
    first = first != A_Err_NONE ? first : code;
  }
  return first;
}

std::size_t Host::IdleHooks() const { return core_->idleHooks.size(); }

}  // namespace standin
