#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "base/image/picture.h"
#include "sdk/effect.h"
#include "standin/core/companion.h"
#include "standin/core/fault_injector.h"
#include "standin/core/host_memory.h"
#include "standin/core/host_records.h"
#include "standin/core/object_tracker.h"
#include "standin/core/project.h"
#include "standin/core/suite_registry.h"
#include "standin/core/worlds.h"

namespace standin {

struct Core;

/// The host: it owns a project and its own OpenGL context, sends the plug-in its commands and
/// answers its host calls. Several hosts may exist in a process;
/// callbacks go to the one whose call is under way, and between calls to the one made last.
///
///   GlobalSetup ParamsSetup (AddRenderer (Send | SetParameter | UpdateParamsUi | FrameSetup |
///   Render | Idle | Duplicate | SaveAndReopen)* Remove)* GlobalSetdown
///
/// Commands may be sent from any thread, one at a time; the host has its OpenGL context on the
/// thread that made it, and none on others. After every call it checks that the context is current
/// again, that nothing temporary is left outstanding, that no picture was written outside its rows
/// and that its records are unchanged; what it finds is in `tracker.Violations()`. Commands
/// never throw for what the plug-in does. A command in the wrong state throws
/// PluginStateError.
class Host {
 public:
  /// Throws std::runtime_error when no OpenGL context can be made.
  explicit Host(PF_EntryPoint entryPoint, HostOptions options = {});
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;
  /// Closes, if that has not been done.
  ~Host();

 private:
  std::unique_ptr<Core> core_;

 public:
  FaultInjector& injector;
  ObjectTracker& tracker;
  Project& project;
  HostMemory& memory;
  Worlds& worlds;

  // The plug-in as a whole.

  CommandResult GlobalSetup();
  /// Also checks that the plug-in declared as many parameters as it says.
  CommandResult ParamsSetup();
  /// Allowed after a failed set-up too. Handles and worlds still out then are violations.
  CommandResult GlobalSetdown();
  CommandResult About();
  /// GlobalSetup and, if that went well, ParamsSetup; the result of the last of them.
  CommandResult StartUp();
  /// Removes all instances and sets the plug-in down, from whatever state it is in. Idempotent.
  void Close();
  [[nodiscard]] PluginState State() const;
  /// The first parameter is the input layer; as the plug-in declared them.
  [[nodiscard]] const std::vector<Parameter>& DeclaredParameters() const;
  /// What it said of itself at global setup.
  [[nodiscard]] A_u_long PluginVersion() const;
  [[nodiscard]] PF_OutFlags OutFlags() const;
  [[nodiscard]] PF_OutFlags2 OutFlags2() const;
  [[nodiscard]] PF_Handle GlobalData() const;

  // The stack. A position below 0 or past the end is the end.

  /// Applies the plug-in: the new instance's `setup` holds what sequence setup answered.
  RendererInstance& AddRenderer(Layer& layer, int position = -1);
  Companion& AddCompanion(Layer& layer, const std::string& boneName, int position = -1);
  /// Any other effect, with a few plain parameters.
  Effect& AddEffect(Layer& layer, const std::string& matchName, int position = -1);
  /// Takes an effect off its layer; an instance of the plug-in is set down first.
  CommandResult Remove(Effect& effect);
  /// A copy right below the original: same parameters, the bytes of its sequence data in a handle
  /// of its own, and a sequence resetup.
  RendererInstance& Duplicate(RendererInstance& original);
  /// Saves the project, closes it (every instance is set down) and opens it again (each gets its
  /// saved bytes in a new handle, and a resetup). The objects of the project stay the same.
  void SaveAndReopen();

  // One instance.

  /// The user changes a parameter; the plug-in is notified of a supervised one.
  CommandResult SetParameter(RendererInstance& renderer, int index, double value);
  CommandResult UpdateParamsUi(RendererInstance& renderer);
  /// The companion sends what it holds; its new images are in worlds of this host. A world whose
  /// flag is still set afterwards is disposed of here, on the sender's behalf.
  SendResult Send(Companion& companion, RendererInstance& renderer);
  /// Sends any record, or none.
  CommandResult SendRecord(RendererInstance& renderer, void* record);
  FrameExtent FrameSetup(RendererInstance& renderer, const FrameRequest& request = {});
  /// Frame setup, render and frame setdown.
  RenderResult Render(RendererInstance& renderer, const FrameRequest& request = {});
  /// Render into an output of this size and origin, whatever frame setup would say.
  RenderResult RenderInto(RendererInstance& renderer, const FrameExtent& extent,
                          const FrameRequest& request = {});
  /// Any command, with the records that this host would pass. The answer is checked as always, but
  /// nothing in it is followed. `renderer` may be null.
  CommandResult Call(A_long command, RendererInstance* renderer, void* extra = nullptr);
  /// Any command, with records of the caller's own. Nothing is prepared or followed.
  CommandResult CallWith(A_long command, PF_InData& in, PF_OutData& out, PF_ParamDef** params,
                         PF_LayerDef* output, void* extra);
  /// The input record that this host would pass for an instance (null: for the plug-in as a whole).
  [[nodiscard]] PF_InData InputRecord(const RendererInstance* renderer) const;

  // The host's idle time.

  /// Calls every registered idle hook once; the first nonzero result. [between commands]
  A_Err Idle();
  [[nodiscard]] std::size_t IdleHooks() const;

  // What is left of it all.

  /// A suite that this host does not have, from now on.
  void HideSuite(const std::string& suite, std::int32_t version);
  /// It has all of them again.
  void ShowAllSuites();
  /// All suites, hidden ones too.
  [[nodiscard]] std::vector<SuiteDescription> Suites() const;
  /// What the plug-in reported to the user with AEGP_ReportInfo.
  [[nodiscard]] const std::vector<std::string>& Reports() const;
  /// Changes of the project that the plug-in made, oldest first.
  [[nodiscard]] const std::vector<Change>& Changes() const;
  void ClearChanges();
  /// Names of the undo groups that were ended, oldest first.
  [[nodiscard]] const std::vector<std::string>& UndoGroups() const;
  [[nodiscard]] const std::map<std::pair<std::string, std::string>, A_long>& Preferences() const;
  /// Worlds without an owner after a failed transfer, as the protocol allows; this host freed them.
  [[nodiscard]] std::size_t AbandonedWorlds() const;
  /// True iff this host's context, with its own state, is current on this thread; on other threads
  /// than the one that made the host, iff none is.
  [[nodiscard]] bool ContextIsCurrent() const;
};

}  // namespace standin
