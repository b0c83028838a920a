#include "standin/host/send_command.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <functional>
#include <initializer_list>
#include <string>
#include <utility>

#include "standin/core/crash_record.h"
#include "standin/core/snapshot.h"

namespace standin {
namespace {

constexpr A_long kFramesPerSecond = 25;
constexpr A_long kLongestSleep = 60;

ByteRange RangeOfHandle(std::size_t offset) { return {offset, sizeof(PF_Handle)}; }

/// The host's side of one call: its context is current before and, if all went well, after.
class CommandScope {
 public:
  CommandScope(Core& core, std::string name)
      : core_(core), name_(std::move(name)), note_(name_), since_(core.tracker.NextNumber()) {
    SetActiveCore(&core_);
    core_.currentCommand = name_;
    core_.injector.SetCommand(name_);
    core_.injector.Note("> " + name_);
    if (const GlContext* context = core_.ContextHere()) {
      context->MakeCurrent();
    } else {
      MakeNoContextCurrent();
    }
  }
  CommandScope(const CommandScope&) = delete;
  CommandScope& operator=(const CommandScope&) = delete;
  ~CommandScope() {
    SetActiveCore(previous_);
    core_.currentCommand.clear();
    core_.injector.SetCommand("");
  }

  /// Calls the plug-in; an exception that leaves it is a violation and gives 512.
  PF_Err Ask(const std::function<PF_Err()>& call, bool& escaped) {
    std::string what;
    try {
      return call();
    } catch (int code) {
      what = "the int " + std::to_string(code);
    } catch (const std::exception& exception) {
      what = std::string("an exception (") + exception.what() + ")";
    } catch (...) {
      what = "an exception";
    }
    escaped = true;
    core_.tracker.ReportViolation(name_ + ": " + what + " left the plug-in; nothing may");
    return PF_Err_INTERNAL_STRUCT_DAMAGED;
  }

  void Finish(PF_Err code) {
    core_.injector.Note("< " + name_ + " = " + std::to_string(code));
    CheckContext();
    core_.WriteOff(name_, since_);
    core_.worlds.CheckGuards(name_);
  }

  void CheckUnchanged(const Snapshot& before, const void* now, const std::string& record,
                      std::initializer_list<ByteRange> mayChange = {}) {
    if (const std::optional<std::size_t> offset = before.FirstChange(now, mayChange)) {
      core_.tracker.ReportViolation(name_ + ": " + record + " was changed at byte " +
                                    std::to_string(*offset) + "; it is the host's");
    }
  }

 private:
  void CheckContext() {
    const GlContext* context = core_.ContextHere();
    if (context == nullptr) {
      if (!NoContextIsCurrent()) {
        core_.tracker.ReportViolation(name_ +
                                      ": an OpenGL context is current; none was before the call");
      }
    } else if (!context->IsCurrent()) {
      core_.tracker.ReportViolation(name_ + ": the host's OpenGL context is no longer current");
    } else if (!GlContext::IsUntouched()) {
      core_.tracker.ReportViolation(name_ + ": the host's OpenGL context was drawn in");
    }
  }

  Core& core_;
  Core* const previous_ = ActiveCore();  ///< several hosts may exist; callbacks are for one of them
  std::string name_;
  CommandNote note_;
  std::uint64_t since_;  ///< what is entered in the tracker from here on is the call's own
};

std::string MessageOf(Core& core, const PF_OutData& out) {
  const A_char* end = std::find(std::begin(out.return_msg), std::end(out.return_msg), '\0');
  if (end == std::end(out.return_msg)) {
    core.tracker.ReportViolation(core.currentCommand + ": return_msg has no terminating zero");
  }
  return {std::begin(out.return_msg), end};
}

A_long AtResolution(A_long pixels, A_u_long denominator) {
  const auto divisor = static_cast<A_long>(std::max<A_u_long>(denominator, 1));
  return (pixels + divisor - 1) / divisor;
}

}  // namespace

ParameterArray::ParameterArray(const std::vector<Parameter>& parameters) {
  for (const Parameter& parameter : parameters) {
    definitions.push_back(parameter.definition);
  }
  for (PF_ParamDef& definition : definitions) {
    pointers.push_back(&definition);
  }
}

PF_InData MakeInput(Core& core, const RendererInstance* renderer) {
  PF_InData in{};
  in.inter = core.interact;
  in.utils = &core.utilities;
  in.pica_basicP = &core.basicSuite;
  in.effect_ref = renderer != nullptr ? renderer->programRef : core.pluginRef;
  in.quality = 1;
  in.version.major = core.options.versionMajor;
  in.version.minor = core.options.versionMinor;
  in.num_params = static_cast<A_long>(core.declared.size());
  in.time_step = 1;
  in.local_time_step = 1;
  in.total_time = 10 * kFramesPerSecond;
  in.time_scale = kFramesPerSecond;
  in.downsample_x = in.downsample_y = in.pixel_aspect_ratio = {.num = 1, .den = 1};
  in.global_data = core.globalData;
  if (renderer != nullptr) {
    in.width = renderer->OnLayer().width;
    in.height = renderer->OnLayer().height;
    in.extent_hint = {.left = 0, .top = 0, .right = in.width, .bottom = in.height};
    in.sequence_data = renderer->sequenceData;
  }
  return in;
}

Records MakeRecords(Core& core, const RendererInstance* renderer) {
  Records records;
  records.in = MakeInput(core, renderer);
  records.out.global_data = records.in.global_data;
  records.out.sequence_data = records.in.sequence_data;
  records.parameters = ParameterArray(renderer != nullptr ? renderer->parameters : core.declared);
  return records;
}

void ApplyRequest(const FrameRequest& request, PF_InData& in) {
  in.downsample_x = {.num = request.downsampleNumerator, .den = request.downsampleX};
  in.downsample_y = {.num = request.downsampleNumerator, .den = request.downsampleY};
  in.extent_hint.right = AtResolution(in.width, request.downsampleX);
  in.extent_hint.bottom = AtResolution(in.height, request.downsampleY);
  in.pre_effect_source_origin_x = request.preEffectOriginX;
  in.pre_effect_source_origin_y = request.preEffectOriginY;
  in.current_time = request.time;
}

CommandResult SendCommand(Core& core, A_long command, PF_InData& in, PF_OutData& out,
                          PF_ParamDef** params, PF_LayerDef* output, void* extra) {
  CommandScope scope(core, CommandName(command));
  const Snapshot inBefore(&in, sizeof in);
  const Snapshot outputBefore(output, sizeof *output);
  PF_Handle globalData = in.global_data;
  PF_Handle sequenceData = in.sequence_data;
  core.memory.HostLock(globalData);
  core.memory.HostLock(sequenceData);
  core.currentOut = &out;

  CommandResult result;
  result.code = scope.Ask(
      [&] {
        return core.entryPoint(static_cast<PF_Cmd>(command), &in, &out, params, output, extra);
      },
      result.escaped);

  core.currentOut = nullptr;
  core.memory.HostUnlock(globalData);
  core.memory.HostUnlock(sequenceData);
  result.message = MessageOf(core, out);
  result.displayMessage = (out.out_flags & PF_OutFlag_DISPLAY_ERROR_MESSAGE) != 0;
  scope.CheckUnchanged(inBefore, &in, "the input record",
                       {RangeOfHandle(offsetof(PF_InData, global_data)),
                        RangeOfHandle(offsetof(PF_InData, sequence_data))});
  scope.CheckUnchanged(outputBefore, output, "the output image's record");
  scope.Finish(result.code);
  return result;
}

CommandResult SendCommand(Core& core, A_long command, Records& records) {
  std::vector<PF_ParamDef>& definitions = records.parameters.definitions;
  const std::size_t bytes = definitions.size() * sizeof(PF_ParamDef);
  const Snapshot before(definitions.data(), bytes);
  CommandResult result =
      SendCommand(core, command, records.in, records.out, records.parameters.pointers.data(),
                  records.output, records.extra);
  if (const std::optional<std::size_t> offset = before.FirstChange(definitions.data())) {
    core.tracker.ReportViolation(
        CommandName(command) + ": parameter " + std::to_string(*offset / sizeof(PF_ParamDef)) +
        " was changed in the array; this host takes changes through its suites only");
  }
  return result;
}

A_Err CallIdleHook(Core& core, const IdleHookEntry& hook) {
  CommandScope scope(core, std::string(kIdleCommand));
  A_long sleep = kLongestSleep;
  bool escaped = false;
  const A_Err code =
      scope.Ask([&] { return hook.hook(core.globalRefcon, hook.refcon, &sleep); }, escaped);
  if (sleep != kLongestSleep) {
    core.tracker.ReportViolation("idle: the longest sleep of " + std::to_string(kLongestSleep) +
                                 " was made " + std::to_string(sleep) +
                                 "; it is for others to shorten");
  }
  scope.Finish(code);
  return code;
}

}  // namespace standin
