#include "standin/core/core.h"

#include <algorithm>
#include <utility>

namespace standin {
namespace {

Core* gActiveCore = nullptr;

// Keys that cannot be mistaken for an index.
constexpr AEGP_InstalledEffectKey kFirstKey = 5000;

}  // namespace

Core* ActiveCore() { return gActiveCore; }

void SetActiveCore(Core* core) { gActiveCore = core; }

Parameter* StreamSubject::Of() const {
  return parameter ? &effect->parameters[static_cast<std::size_t>(*parameter)] : nullptr;
}

Core::Core(PF_EntryPoint plugin, HostOptions hostOptions)
    : entryPoint(plugin), options(std::move(hostOptions)) {
  memory.Inspect(options.inspectPixels);
  worlds.FillNew(options.inspectPixels);
  if (options.ownContext) {
    context = std::make_unique<GlContext>();
  }
  pluginRef = AsHandle<PF_ProgPtr>(tracker.Issue(Kind::kProgramRef, "the plug-in", nullptr));
}

Effect* Core::Instance(PF_ProgPtr reference, std::string_view who) {
  if (reference == pluginRef) {
    Refuse(who, "the effect_ref of no instance");
    return nullptr;
  }
  return tracker.Find<Effect>(Kind::kProgramRef, reference, who);
}

std::vector<RendererInstance*> Core::Instances() {
  std::vector<RendererInstance*> instances;
  for (Composition& composition : project.compositions) {
    for (const Layer& layer : composition.layers) {
      for (const std::unique_ptr<Effect>& effect : layer.effects) {
        if (auto* instance = dynamic_cast<RendererInstance*>(effect.get())) {
          instances.push_back(instance);
        }
      }
    }
  }
  return instances;
}

Effect* Core::EffectOf(AEGP_EffectRefH reference, std::string_view who) {
  return tracker.Find<Effect>(Kind::kEffectRef, reference, who);
}

AEGP_EffectRefH Core::NewEffectRef(Effect& effect) {
  if (effect.withoutReference) {
    return nullptr;
  }
  return AsHandle<AEGP_EffectRefH>(tracker.Issue(Kind::kEffectRef, effect.matchName, &effect));
}

bool Core::IsPluginId(AEGP_PluginID id, std::string_view who) {
  std::string given;
  for (const auto& [name, number] : pluginIds) {
    if (id == number) {
      return true;
    }
    given += (given.empty() ? "" : " and ") + std::to_string(number);
  }
  Refuse(who, "plug-in number " + std::to_string(id) + "; " + (given.empty() ? "none" : given) +
                  " was given out");
  return false;
}

AEGP_InstalledEffectKey Core::InstalledKey(const std::string& matchName) {
  const auto found = std::find(installed.begin(), installed.end(), matchName);
  const auto index = static_cast<AEGP_InstalledEffectKey>(found - installed.begin());
  if (found == installed.end()) {
    installed.push_back(matchName);
  }
  return kFirstKey + index;
}

const std::string* Core::MatchNameOf(AEGP_InstalledEffectKey key) const {
  const auto index = static_cast<std::size_t>(key - kFirstKey);
  return key < kFirstKey || index >= installed.size() ? nullptr : &installed[index];
}

AEGP_LayerH Core::LayerHandle(Layer& layer) {
  return HandleFor<AEGP_LayerH>(layer.handle, Kind::kLayer, layer.name, &layer);
}

void Core::NoteChange(std::string what) {
  changes.push_back({std::move(what), !openUndoGroups.empty(),
                     openUndoGroups.empty() ? "" : openUndoGroups.front().name});
}

void Core::WriteOff(const std::string& command, std::uint64_t since) {
  tracker.ReportLeaksOfCall(command, since);
  memory.ForgetLocks();
  for (auto& [suite, held] : heldSuites) {
    std::erase_if(held, [&](const void* name) { return !tracker.IsLive(Kind::kSuite, name); });
  }
  std::erase_if(streams,
                [&](const auto& stream) { return !tracker.IsLive(Kind::kStream, stream.first); });
  std::erase_if(quietSections,
                [&](const void* name) { return !tracker.IsLive(Kind::kQuietSection, name); });
  std::erase_if(openUndoGroups, [&](const OpenUndoGroup& group) {
    return !tracker.IsLive(Kind::kUndoGroup, group.token);
  });
}

PF_Err Core::Refuse(std::string_view who, const std::string& what) {
  tracker.ReportViolation(std::string(who) + " was given " + what);
  return PF_Err_BAD_CALLBACK_PARAM;
}

}  // namespace standin
