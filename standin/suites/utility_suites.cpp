#include <cstring>

#include "sdk/aegp_suites.h"
#include "standin/core/operation.h"
#include "standin/suites/families.h"

namespace standin {
namespace {

A_Err ReportInfo(Core& core, AEGP_PluginID id, const A_char* text) {
  // A plug-in that never got a number may still report why.
  const bool known = core.pluginIds.empty() || core.IsPluginId(id, "AEGP_ReportInfo");
  if (!known || text == nullptr) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  core.reports.emplace_back(text);
  return A_Err_NONE;
}

A_Err RegisterWithAegp(Core& core, AEGP_GlobalRefcon refcon, const A_char* name,
                       AEGP_PluginID* id) {
  static AEGP_PluginID lastId = 100;  // no load of a plug-in gets the number of another
  if (name == nullptr || id == nullptr) {
    return core.Refuse("AEGP_RegisterWithAEGP", "null");
  }
  core.globalRefcon = refcon;
  core.pluginIds[name] = *id = ++lastId;
  return A_Err_NONE;
}

/// The host keeps the section's name in the room that the caller gives it.
A_Err StartQuietErrors(Core& core, AEGP_ErrReportState* state) {
  if (state == nullptr) {
    return core.Refuse("AEGP_StartQuietErrors", "null");
  }
  const void* section = core.tracker.Issue(Kind::kQuietSection, "", nullptr);
  core.quietSections.push_back(section);
  std::memset(state, 0x3C, sizeof *state);
  std::memcpy(state->opaque, &section, sizeof section);
  return A_Err_NONE;
}

A_Err EndQuietErrors(Core& core, A_Boolean /*report*/, AEGP_ErrReportState* state) {
  if (state == nullptr) {
    return core.Refuse("AEGP_EndQuietErrors", "null");
  }
  const void* section = nullptr;
  std::memcpy(&section, state->opaque, sizeof section);
  if (!core.tracker.Remove(Kind::kQuietSection, section, "AEGP_EndQuietErrors")) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  if (core.quietSections.back() != section) {
    core.tracker.ReportViolation(
        "AEGP_EndQuietErrors ended an outer quiet section before the inner one");
  }
  std::erase(core.quietSections, section);
  return A_Err_NONE;
}

A_Err StartUndoGroup(Core& core, const A_char* name) {
  if (name == nullptr) {
    return core.Refuse("AEGP_StartUndoGroup", "null");
  }
  core.openUndoGroups.push_back({core.tracker.Issue(Kind::kUndoGroup, name, nullptr), name});
  return A_Err_NONE;
}

A_Err EndUndoGroup(Core& core) {
  if (core.openUndoGroups.empty()) {
    core.tracker.ReportViolation("AEGP_EndUndoGroup was called with no undo group open");
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  core.tracker.Remove(Kind::kUndoGroup, core.openUndoGroups.back().token, "AEGP_EndUndoGroup");
  core.undoGroups.push_back(core.openUndoGroups.back().name);
  core.openUndoGroups.pop_back();
  return A_Err_NONE;
}

A_Err RegisterIdleHook(Core& core, AEGP_PluginID id, AEGP_IdleHook hook, AEGP_IdleRefcon refcon) {
  if (!core.IsPluginId(id, "AEGP_RegisterIdleHook") || hook == nullptr) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  core.idleHooks.push_back({hook, refcon});
  return A_Err_NONE;
}

}  // namespace

void AddUtilitySuites(Core& core) {
  auto& reporting = core.suites.Add<AEGP_UtilitySuite3>("AEGP Utility Suite", 7);
  reporting.AEGP_ReportInfo = Operation<"AEGP_ReportInfo", ReportInfo>::Call;

  auto& utility = core.suites.Add<AEGP_UtilitySuite5>("AEGP Utility Suite", 11);
  utility.AEGP_StartQuietErrors = Operation<"AEGP_StartQuietErrors", StartQuietErrors>::Call;
  utility.AEGP_EndQuietErrors =
      Operation<"AEGP_EndQuietErrors", EndQuietErrors, FailurePoint::kAfterEffect>::Call;
  utility.AEGP_RegisterWithAEGP = Operation<"AEGP_RegisterWithAEGP", RegisterWithAegp>::Call;

  auto& undo = core.suites.Add<AEGP_UtilitySuite6>("AEGP Utility Suite", 13);
  undo.AEGP_StartUndoGroup = Operation<"AEGP_StartUndoGroup", StartUndoGroup>::Call;
  undo.AEGP_EndUndoGroup =
      Operation<"AEGP_EndUndoGroup", EndUndoGroup, FailurePoint::kAfterEffect>::Call;

  auto& registering = core.suites.Add<AEGP_RegisterSuite5>("AEGP Register Suite", 6);
  registering.AEGP_RegisterIdleHook = Operation<"AEGP_RegisterIdleHook", RegisterIdleHook>::Call;
}

}  // namespace standin
