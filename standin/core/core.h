#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "sdk/aegp.h"
#include "sdk/effect.h"
#include "standin/core/fault_injector.h"
#include "standin/core/gl_context.h"
#include "standin/core/host_memory.h"
#include "standin/core/host_records.h"
#include "standin/core/object_tracker.h"
#include "standin/core/project.h"
#include "standin/core/suite_registry.h"
#include "standin/core/worlds.h"

namespace standin {

/// What a stream reference refers to: one parameter of an effect, or the group that holds them.
struct StreamSubject {
  Effect* effect = nullptr;
  std::optional<int> parameter;  ///< none: the group

  [[nodiscard]] Parameter* Of() const;
};

struct IdleHookEntry {
  AEGP_IdleHook hook = nullptr;
  AEGP_IdleRefcon refcon = nullptr;
};

struct OpenUndoGroup {
  const void* token = nullptr;
  std::string name;
};

/// All that the host is made of; its callbacks find it through ActiveCore.
struct Core {
  Core(PF_EntryPoint plugin, HostOptions hostOptions);

  /// The effect instance behind a program reference; null, with the violation noted, for any other.
  Effect* Instance(PF_ProgPtr reference, std::string_view who);
  /// All instances of the plug-in in the project.
  std::vector<RendererInstance*> Instances();
  /// The effect behind an effect reference; null, with the violation noted, for any other.
  Effect* EffectOf(AEGP_EffectRefH reference, std::string_view who);
  AEGP_EffectRefH NewEffectRef(Effect& effect);
  /// True iff this is a number that a plug-in was given; otherwise notes the violation.
  bool IsPluginId(AEGP_PluginID id, std::string_view who);
  /// The number under which an effect of this match name is installed.
  AEGP_InstalledEffectKey InstalledKey(const std::string& matchName);
  /// The match name behind such a number; null for a number that was never given out.
  [[nodiscard]] const std::string* MatchNameOf(AEGP_InstalledEffectKey key) const;
  AEGP_LayerH LayerHandle(Layer& layer);
  /// The host's OpenGL context on this thread; null on other threads than the host's first, and in
  /// a host without any.
  [[nodiscard]] const GlContext* ContextHere() const {
    return context && context->IsOfThisThread() ? context.get() : nullptr;
  }
  /// Notes a change of the project.
  void NoteChange(std::string what);
  /// Ends a call: what was handed out since (an entry number of the tracker), is still out and
  /// should not be is noted as a violation, once, and forgotten.
  void WriteOff(const std::string& command, std::uint64_t since);
  /// Notes a violation; PF_Err_BAD_CALLBACK_PARAM.
  PF_Err Refuse(std::string_view who, const std::string& what);
  /// Stores the object's name, issued when it is first asked for.
  template <typename Handle>
  Handle HandleFor(const void*& slot, Kind kind, const std::string& label, void* subject) {
    if (slot == nullptr) {
      slot = tracker.Issue(kind, label, subject);
    }
    return AsHandle<Handle>(slot);
  }
  template <typename Handle>
  static Handle AsHandle(const void* name) {
    return static_cast<Handle>(const_cast<void*>(name));
  }

  PF_EntryPoint entryPoint;
  HostOptions options;
  std::unique_ptr<GlContext> context;  ///< null when the host has none of its own
  FaultInjector injector;
  ObjectTracker tracker;
  Project project;
  HostMemory memory{tracker};
  Worlds worlds{tracker};
  SuiteRegistry suites{tracker};
  SPBasicSuite basicSuite{};
  PF_UtilCallbacks utilities{};
  PF_InteractCallbacks interact{};

  PluginState state = PluginState::kLoaded;
  std::vector<Parameter> declared;  ///< from index 0, the input layer
  PF_ProgPtr pluginRef = nullptr;   ///< effect_ref of commands to the plug-in as a whole
  PF_Handle globalData = nullptr;
  A_u_long pluginVersion = 0;
  PF_OutFlags outFlags = 0;
  PF_OutFlags2 outFlags2 = 0;

  std::string currentCommand;                ///< the command, for messages
  const PF_OutData* currentOut = nullptr;    ///< its output record
  bool addingParameters = false;             ///< it is the one that declares parameters
  std::list<std::string> declaredTexts;      ///< of popups and checkboxes, kept alive
  std::optional<PF_EffectWorld> inputLayer;  ///< the pixels of parameter 0, made when first needed

  std::map<std::string, AEGP_PluginID> pluginIds;  ///< by the name of who registered
  AEGP_GlobalRefcon globalRefcon = nullptr;
  std::vector<IdleHookEntry> idleHooks;
  std::vector<std::string> reports;
  std::vector<std::string> installed;  ///< match names, in the order of their keys
  const void* preferencesHandle = nullptr;
  std::map<std::pair<std::string, std::int32_t>, std::vector<const void*>> heldSuites;
  std::unordered_map<const void*, std::unique_ptr<StreamSubject>> streams;
  std::vector<const void*> quietSections;
  std::vector<OpenUndoGroup> openUndoGroups;
  std::vector<std::string> undoGroups;
  std::vector<Change> changes;
  std::size_t abandonedWorlds = 0;
  /// Sends PF_Cmd_COMPLETELY_GENERAL with this record to an instance, as one effect calls another.
  /// Set by Host, which sends every command.
  std::function<PF_Err(RendererInstance&, void* extra)> sendGeneralCommand;
};

/// The host that is active in this process; null when there is none.
Core* ActiveCore();
void SetActiveCore(Core* core);

}  // namespace standin
