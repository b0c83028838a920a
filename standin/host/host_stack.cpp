#include <memory>
#include <utility>

#include "standin/core/core.h"
#include "standin/host/host.h"
#include "standin/host/plugin_state.h"

namespace standin {
namespace {

constexpr int kPlainParameters = 4;

PF_ProgPtr NewReference(Core& core, Effect& effect) {
  return Core::AsHandle<PF_ProgPtr>(
      core.tracker.Issue(Kind::kProgramRef, effect.OnLayer().name, &effect));
}

RendererInstance& Insert(Core& core, Layer& layer, int position) {
  auto owned = std::make_unique<RendererInstance>(layer);
  RendererInstance& instance = *owned;
  instance.programRef = NewReference(core, instance);
  instance.parameters = core.declared;
  layer.Insert(std::move(owned), position);
  return instance;
}

}  // namespace

RendererInstance& Host::AddRenderer(Layer& layer, int position) {
  Expect(*core_, "AddRenderer", {PluginState::kReady});
  RendererInstance& instance = Insert(*core_, layer, position);
  SetUp(*core_, PF_Cmd_SEQUENCE_SETUP, instance);
  return instance;
}

Companion& Host::AddCompanion(Layer& layer, const std::string& boneName, int position) {
  auto owned = std::make_unique<Companion>(layer, boneName);
  Companion& companion = *owned;
  companion.programRef = NewReference(*core_, companion);
  layer.Insert(std::move(owned), position);
  return companion;
}

Effect& Host::AddEffect(Layer& layer, const std::string& matchName, int position) {
  auto effect = std::make_unique<Effect>(layer, matchName);
  for (int index = 0; index < kPlainParameters; ++index) {
    effect->parameters.push_back(Parameter::Plain("Parameter " + std::to_string(index)));
  }
  return layer.Insert(std::move(effect), position);
}

CommandResult Host::Remove(Effect& effect) {
  CommandResult result;
  if (auto* instance = dynamic_cast<RendererInstance*>(&effect)) {
    if (instance->state == InstanceState::kSetUp) {
      ExpectInstance(*core_, "Remove", *instance);
      result = SetDown(*core_, *instance);
    }
  }
  if (effect.programRef != nullptr) {
    core_->tracker.Remove(Kind::kProgramRef, effect.programRef, "the host");
  }
  effect.OnLayer().Take(effect);
  return result;
}

RendererInstance& Host::Duplicate(RendererInstance& original) {
  ExpectInstance(*core_, "Duplicate", original);
  RendererInstance& copy = Insert(*core_, original.OnLayer(), original.Position() + 1);
  copy.groupName = original.groupName;
  copy.active = original.active;
  copy.parameters = original.parameters;
  if (original.sequenceData != nullptr) {
    copy.sequenceData = memory.NewFrom(memory.Bytes(original.sequenceData));
  }
  SetUp(*core_, PF_Cmd_SEQUENCE_RESETUP, copy);
  return copy;
}

void Host::SaveAndReopen() {
  Expect(*core_, "SaveAndReopen", {PluginState::kReady});
  std::vector<std::pair<RendererInstance*, std::vector<std::uint8_t>>> saved;
  for (RendererInstance* instance : core_->Instances()) {
    saved.emplace_back(instance, memory.Bytes(instance->sequenceData));
  }
  for (auto& [instance, bytes] : saved) {
    SetDown(*core_, *instance);
    tracker.Remove(Kind::kProgramRef, instance->programRef, "the host");
  }
  for (auto& [instance, bytes] : saved) {
    instance->programRef = NewReference(*core_, *instance);
    instance->sequenceData = bytes.empty() ? nullptr : memory.NewFrom(bytes);
    SetUp(*core_, PF_Cmd_SEQUENCE_RESETUP, *instance);
  }
}

}  // namespace standin
