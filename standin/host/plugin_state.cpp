#include "standin/host/plugin_state.h"

#include <algorithm>
#include <array>

#include "standin/host/send_command.h"

namespace standin {
namespace {

std::string Name(PluginState state) {
  constexpr std::array<const char*, 5> kNames = {"loaded", "set up", "ready", "failed to set up",
                                                 "set down"};
  return kNames.at(static_cast<std::size_t>(state));
}

std::string Name(InstanceState state) {
  constexpr std::array<const char*, 3> kNames = {"new", "set up", "set down"};
  return kNames.at(static_cast<std::size_t>(state));
}

}  // namespace

void Expect(const Core& core, const std::string& command,
            std::initializer_list<PluginState> wanted) {
  if (std::find(wanted.begin(), wanted.end(), core.state) != wanted.end()) {
    return;
  }
  std::string names;
  for (const PluginState state : wanted) {
    names += (names.empty() ? "'" : " or '") + Name(state) + "'";
  }
  throw PluginStateError(command + ": the plug-in is '" + Name(core.state) + "'; it must be " +
                         names);
}

void ExpectInstance(const Core& core, const std::string& command, const RendererInstance& instance,
                    InstanceState wanted) {
  Expect(core, command, {PluginState::kReady});
  if (instance.state != wanted) {
    throw PluginStateError(command + ": the instance is '" + Name(instance.state) +
                           "'; it must be '" + Name(wanted) + "'");
  }
}

void ExpectForgotten(Core& core, const CommandResult& result, const std::string& what,
                     PF_Handle inInput, PF_Handle inOutput) {
  if (result.Ok() && (inInput != nullptr || inOutput != nullptr)) {
    core.tracker.ReportViolation("the " + what + " still stand in the " +
                                 (inInput != nullptr ? "input" : "output") +
                                 " record after the set-down; null was expected");
  }
}

CommandResult SendSequence(Core& core, PF_Cmd command, RendererInstance& instance) {
  Records records = MakeRecords(core, &instance);
  CommandResult result = SendCommand(core, command, records);
  if (command == PF_Cmd_SEQUENCE_SETDOWN) {
    ExpectForgotten(core, result, "sequence data", records.in.sequence_data,
                    records.out.sequence_data);
  }
  TakeOverData(core, instance, command, records.out);
  return result;
}

void TakeOverData(Core& core, RendererInstance& instance, A_long command, const PF_OutData& out) {
  instance.sequenceData = out.sequence_data;
  if (out.sequence_data != nullptr && !core.memory.IsLive(out.sequence_data)) {
    core.tracker.ReportViolation(
        CommandName(command) + ": the sequence data of the answer is " +
        core.tracker.Describe(static_cast<const void*>(out.sequence_data)) +
        ", which does not exist");
    instance.sequenceData = nullptr;
  }
}

void SetUp(Core& core, PF_Cmd command, RendererInstance& instance) {
  instance.setup = SendSequence(core, command, instance);
  instance.state = InstanceState::kSetUp;
}

CommandResult SetDown(Core& core, RendererInstance& instance) {
  CommandResult result = SendSequence(core, PF_Cmd_SEQUENCE_SETDOWN, instance);
  instance.state = InstanceState::kSetDown;
  return result;
}

}  // namespace standin
