#include "standin/host/host.h"

#include <utility>

#include "standin/core/core.h"
#include "standin/host/plugin_state.h"
#include "standin/host/send_command.h"
#include "standin/suites/families.h"

namespace standin {
namespace {

Core& MakeActive(std::unique_ptr<Core>& core, PF_EntryPoint entryPoint, HostOptions options) {
  if (entryPoint == nullptr) {
    throw std::logic_error("a host needs the plug-in's entry point; it was given none");
  }
  core = std::make_unique<Core>(entryPoint, std::move(options));
  AddAllOperations(*core);
  core->sendGeneralCommand = [&core = *core](RendererInstance& renderer, void* extra) {
    Records records = MakeRecords(core, &renderer);
    records.extra = extra;
    return SendCommand(core, PF_Cmd_COMPLETELY_GENERAL, records).code;
  };
  SetActiveCore(core.get());
  return *core;
}

Parameter InputLayerParameter() {
  Parameter parameter;
  parameter.definition.param_type = PF_Param_LAYER;
  return parameter;
}

void TakeOver(Core& core, const PF_OutData& out) {
  core.globalData = out.global_data;
  core.pluginVersion = out.my_version;
  core.outFlags = out.out_flags;
  core.outFlags2 = out.out_flags2;
}

void ForgetPlugin(Core& core) {
  core.declared.clear();
  core.idleHooks.clear();
  core.pluginIds.clear();
  core.globalRefcon = nullptr;
}

/// The plug-in is gone, so what it kept for an instance is the host's to free.
void FreeSequenceData(Core& core) {
  for (RendererInstance* instance : core.Instances()) {
    if (core.memory.IsLive(instance->sequenceData)) {
      core.memory.Dispose(instance->sequenceData, "the host");
    }
    instance->sequenceData = nullptr;
    instance->state = InstanceState::kSetDown;
  }
}

void FreeInputLayer(Core& core) {
  if (core.inputLayer) {
    core.worlds.Dispose(&*core.inputLayer, "the host");
    core.inputLayer.reset();
  }
}

}  // namespace

Host::Host(PF_EntryPoint entryPoint, HostOptions options)
    : injector(MakeActive(core_, entryPoint, std::move(options)).injector),
      tracker(core_->tracker),
      project(core_->project),
      memory(core_->memory),
      worlds(core_->worlds) {}

Host::~Host() {
  try {
    Close();
  } catch (...) {
    core_->tracker.ReportViolation("the host could not be closed");
  }
  if (ActiveCore() == core_.get()) {
    SetActiveCore(nullptr);
  }
}

CommandResult Host::GlobalSetup() {
  Expect(*core_, "GlobalSetup", {PluginState::kLoaded, PluginState::kSetDown});
  ForgetPlugin(*core_);
  Records records = MakeRecords(*core_, nullptr);
  CommandResult result = SendCommand(*core_, PF_Cmd_GLOBAL_SETUP, records);
  TakeOver(*core_, records.out);
  core_->state = result.Ok() ? PluginState::kSetUp : PluginState::kSetUpFailed;
  return result;
}

CommandResult Host::ParamsSetup() {
  Expect(*core_, "ParamsSetup", {PluginState::kSetUp});
  core_->declared = {InputLayerParameter()};
  Records records = MakeRecords(*core_, nullptr);
  core_->addingParameters = true;
  CommandResult result = SendCommand(*core_, PF_Cmd_PARAMS_SETUP, records);
  core_->addingParameters = false;
  if (!result.Ok()) {
    if (records.out.num_params != 0) {
      core_->tracker.ReportViolation(
          "PF_Cmd_PARAMS_SETUP: num_params is " + std::to_string(records.out.num_params) +
          " after a failure; it is set when all parameters are declared");
    }
    return result;
  }
  if (static_cast<std::size_t>(records.out.num_params) != core_->declared.size()) {
    core_->tracker.ReportViolation(
        "PF_Cmd_PARAMS_SETUP: num_params is " + std::to_string(records.out.num_params) +
        "; with the input layer " + std::to_string(core_->declared.size()) +
        " parameters were declared");
  }
  core_->state = PluginState::kReady;
  return result;
}

CommandResult Host::GlobalSetdown() {
  Expect(*core_, "GlobalSetdown",
         {PluginState::kSetUp, PluginState::kReady, PluginState::kSetUpFailed});
  Records records = MakeRecords(*core_, nullptr);
  CommandResult result = SendCommand(*core_, PF_Cmd_GLOBAL_SETDOWN, records);
  ExpectForgotten(*core_, result, "global data", records.in.global_data, records.out.global_data);
  core_->globalData = nullptr;
  core_->state = PluginState::kSetDown;
  FreeSequenceData(*core_);
  FreeInputLayer(*core_);
  core_->tracker.ReportLeaksOfPlugin("PF_Cmd_GLOBAL_SETDOWN");
  ForgetPlugin(*core_);
  return result;
}

CommandResult Host::About() {
  Expect(*core_, "About", {PluginState::kSetUp, PluginState::kReady});
  Records records = MakeRecords(*core_, nullptr);
  return SendCommand(*core_, PF_Cmd_ABOUT, records);
}

CommandResult Host::StartUp() {
  CommandResult result = GlobalSetup();
  return result.Ok() ? ParamsSetup() : result;
}

void Host::Close() {
  if (core_->state == PluginState::kLoaded || core_->state == PluginState::kSetDown) {
    return;
  }
  for (RendererInstance* instance : core_->Instances()) {
    if (core_->state == PluginState::kReady && instance->state == InstanceState::kSetUp) {
      SetDown(*core_, *instance);
    }
  }
  GlobalSetdown();
}

PluginState Host::State() const { return core_->state; }

const std::vector<Parameter>& Host::DeclaredParameters() const { return core_->declared; }

A_u_long Host::PluginVersion() const { return core_->pluginVersion; }

PF_OutFlags Host::OutFlags() const { return core_->outFlags; }

PF_OutFlags2 Host::OutFlags2() const { return core_->outFlags2; }

PF_Handle Host::GlobalData() const { return core_->globalData; }

void Host::HideSuite(const std::string& suite, std::int32_t version) {
  core_->suites.Hide(suite, version);
}

void Host::ShowAllSuites() { core_->suites.ShowAll(); }

std::vector<SuiteDescription> Host::Suites() const { return core_->suites.List(); }

const std::vector<std::string>& Host::Reports() const { return core_->reports; }

const std::vector<Change>& Host::Changes() const { return core_->changes; }

void Host::ClearChanges() { core_->changes.clear(); }

const std::vector<std::string>& Host::UndoGroups() const { return core_->undoGroups; }

const std::map<std::pair<std::string, std::string>, A_long>& Host::Preferences() const {
  return core_->options.preferences;
}

std::size_t Host::AbandonedWorlds() const { return core_->abandonedWorlds; }

bool Host::ContextIsCurrent() const {
  const GlContext* context = core_->ContextHere();
  return context != nullptr ? context->IsCurrent() && GlContext::IsUntouched()
                            : NoContextIsCurrent();
}

}  // namespace standin
