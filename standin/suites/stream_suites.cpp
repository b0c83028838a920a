#include "sdk/aegp_suites.h"
#include "standin/core/operation.h"
#include "standin/suites/families.h"

namespace standin {
namespace {

// The interface's limit is 32, and it does not say whether the terminating zero counts. This host
// takes the longer reading, which writes past a buffer of 32 bytes.
constexpr std::size_t kLongestWrittenName = 32;

const StreamSubject* StreamOf(Core& core, AEGP_StreamRefH stream, std::string_view who) {
  return core.tracker.Find<StreamSubject>(Kind::kStream, stream, who);
}

/// The parameter behind a stream; null, with the violation noted, for a group or no stream at all.
Parameter* ParameterOf(Core& core, AEGP_StreamRefH stream, std::string_view who) {
  const StreamSubject* subject = StreamOf(core, stream, who);
  if (subject != nullptr && !subject->parameter) {
    core.Refuse(who, "the stream of a group; a parameter's was expected");
  }
  return subject == nullptr ? nullptr : subject->Of();
}

AEGP_StreamRefH NewStream(Core& core, const StreamSubject& subject) {
  const std::string label =
      subject.effect->matchName +
      (subject.parameter ? " parameter " + std::to_string(*subject.parameter) : " group");
  auto owned = std::make_unique<StreamSubject>(subject);
  const void* name = core.tracker.Issue(Kind::kStream, label, owned.get());
  core.streams[name] = std::move(owned);
  return Core::AsHandle<AEGP_StreamRefH>(name);
}

A_Err GetNewEffectStreamByIndex(Core& core, AEGP_PluginID id, AEGP_EffectRefH effect,
                                PF_ParamIndex index, AEGP_StreamRefH* stream) {
  Effect* found = core.EffectOf(effect, "AEGP_GetNewEffectStreamByIndex");
  if (!core.IsPluginId(id, "AEGP_GetNewEffectStreamByIndex") || found == nullptr ||
      stream == nullptr) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  if (index < 0 || static_cast<std::size_t>(index) >= found->parameters.size()) {
    return PF_Err_INVALID_INDEX;
  }
  *stream = NewStream(core, {found, index});
  return A_Err_NONE;
}

A_Err GetNewParentStreamRef(Core& core, AEGP_PluginID id, AEGP_StreamRefH stream,
                            AEGP_StreamRefH* parent) {
  const StreamSubject* subject = StreamOf(core, stream, "AEGP_GetNewParentStreamRef");
  if (!core.IsPluginId(id, "AEGP_GetNewParentStreamRef") || subject == nullptr ||
      parent == nullptr) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  *parent = NewStream(core, {subject->effect, std::nullopt});
  return A_Err_NONE;
}

A_Err DisposeStream(Core& core, AEGP_StreamRefH stream) {
  if (!core.tracker.Remove(Kind::kStream, stream, "AEGP_DisposeStream")) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  core.streams.erase(stream);
  return A_Err_NONE;
}

A_Err GetStreamName(Core& core, AEGP_StreamRefH stream, A_Boolean /*forceEnglish*/, A_char* name) {
  const StreamSubject* subject = StreamOf(core, stream, "AEGP_GetStreamName");
  if (subject == nullptr || name == nullptr) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  const std::string text = subject->parameter ? subject->Of()->Name() : subject->effect->groupName;
  name[text.copy(name, kLongestWrittenName)] = '\0';
  return A_Err_NONE;
}

A_Err GetNewStreamValue(Core& core, AEGP_PluginID id, AEGP_StreamRefH stream, AEGP_LTimeMode mode,
                        const A_Time* time, A_Boolean /*preExpression*/, AEGP_StreamValue2* value) {
  const Parameter* parameter = ParameterOf(core, stream, "AEGP_GetNewStreamValue");
  if (!core.IsPluginId(id, "AEGP_GetNewStreamValue") || parameter == nullptr || value == nullptr) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  if (time == nullptr || time->scale == 0 || mode < 0 || mode > 1) {
    return core.Refuse("AEGP_GetNewStreamValue", "no time, a time of scale 0 or no time mode");
  }
  *value = {};
  value->streamH = stream;
  value->val.one_d = parameter->Value();
  core.tracker.Enter(Kind::kStreamValue, value, "of " + core.tracker.Describe(stream), nullptr);
  return A_Err_NONE;
}

A_Err DisposeStreamValue(Core& core, AEGP_StreamValue2* value) {
  return core.tracker.Remove(Kind::kStreamValue, value, "AEGP_DisposeStreamValue")
             ? A_Err_NONE
             : PF_Err_BAD_CALLBACK_PARAM;
}

A_Err SetStreamValue(Core& core, AEGP_PluginID id, AEGP_StreamRefH stream,
                     AEGP_StreamValue2* value) {
  Parameter* parameter = ParameterOf(core, stream, "AEGP_SetStreamValue");
  if (!core.IsPluginId(id, "AEGP_SetStreamValue") || parameter == nullptr || value == nullptr) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  if (value->streamH != nullptr && value->streamH != stream) {
    return core.Refuse("AEGP_SetStreamValue", "a value of " +
                                                  core.tracker.Describe(value->streamH) + " for " +
                                                  core.tracker.Describe(stream));
  }
  if (!parameter->Takes(value->val.one_d)) {
    return core.Refuse("AEGP_SetStreamValue", std::to_string(value->val.one_d) +
                                                  ", which is out of range for " +
                                                  core.tracker.Describe(stream));
  }
  parameter->SetValue(value->val.one_d);
  const StreamSubject& subject = *core.streams[stream];
  core.NoteChange(subject.effect->matchName + " parameter " +
                  std::to_string(subject.parameter.value_or(-1)) + " = " +
                  ArgumentFormatter(core.tracker, true)(value->val.one_d));
  return A_Err_NONE;
}

A_Err GetDynamicStreamFlags(Core& core, AEGP_StreamRefH stream, AEGP_DynStreamFlags* flags) {
  const Parameter* parameter = ParameterOf(core, stream, "AEGP_GetDynamicStreamFlags");
  if (parameter == nullptr || flags == nullptr) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  *flags = parameter->streamFlags;
  return A_Err_NONE;
}

A_Err SetDynamicStreamFlag(Core& core, AEGP_StreamRefH stream, AEGP_DynStreamFlags flag,
                           A_Boolean undoable, A_Boolean set) {
  Parameter* parameter = ParameterOf(core, stream, "AEGP_SetDynamicStreamFlag");
  if (parameter == nullptr || flag != AEGP_DynStreamFlag_HIDDEN) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  parameter->streamFlags =
      set != 0 ? parameter->streamFlags | flag : parameter->streamFlags & ~flag;
  if (undoable != 0) {
    core.NoteChange(core.tracker.Describe(stream) + (set != 0 ? " hidden" : " shown"));
  }
  return A_Err_NONE;
}

}  // namespace

void AddStreamSuites(Core& core) {
  auto& stream = core.suites.Add<AEGP_StreamSuite4>("AEGP Stream Suite", 9);
  stream.AEGP_GetNewEffectStreamByIndex =
      Operation<"AEGP_GetNewEffectStreamByIndex", GetNewEffectStreamByIndex>::Call;
  stream.AEGP_DisposeStream =
      Operation<"AEGP_DisposeStream", DisposeStream, FailurePoint::kAfterEffect>::Call;
  stream.AEGP_GetNewStreamValue = Operation<"AEGP_GetNewStreamValue", GetNewStreamValue>::Call;
  stream.AEGP_DisposeStreamValue =
      Operation<"AEGP_DisposeStreamValue", DisposeStreamValue, FailurePoint::kAfterEffect>::Call;
  stream.AEGP_SetStreamValue = Operation<"AEGP_SetStreamValue", SetStreamValue>::Call;

  auto& named = core.suites.Add<AEGP_StreamSuite1>("AEGP Stream Suite", 4);
  named.AEGP_GetStreamName = Operation<"AEGP_GetStreamName", GetStreamName>::Call;

  auto& dynamic = core.suites.Add<AEGP_DynamicStreamSuite4>("AEGP Dynamic Stream Suite", 5);
  dynamic.AEGP_GetDynamicStreamFlags =
      Operation<"AEGP_GetDynamicStreamFlags", GetDynamicStreamFlags>::Call;
  dynamic.AEGP_SetDynamicStreamFlag =
      Operation<"AEGP_SetDynamicStreamFlag", SetDynamicStreamFlag>::Call;
  dynamic.AEGP_GetNewParentStreamRef =
      Operation<"AEGP_GetNewParentStreamRef", GetNewParentStreamRef>::Call;
}

}  // namespace standin
