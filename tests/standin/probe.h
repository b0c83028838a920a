#pragma once

#include <functional>
#include <map>
#include <string>

#include "sdk/aegp_suites.h"
#include "sdk/effect.h"
#include "sdk/effect_suites.h"

/// \file
/// A plug-in that exists to check the host: it does what an effect must do, and what a test tells
/// it to on top of that.

namespace probe {

/// One command as the probe gets it.
struct Command {
  PF_InData& in;
  PF_OutData& out;
  PF_LayerDef* output;
  void* extra;

  /// A suite, which stays held until Release; null when the host has none.
  template <typename Table>
  const Table* Acquire(const char* name, int version) const {
    const void* table = nullptr;
    in.pica_basicP->AcquireSuite(name, version, &table);
    return static_cast<const Table*>(table);
  }
  void Release(const char* name, int version) const { in.pica_basicP->ReleaseSuite(name, version); }
};

using Answer = std::function<PF_Err(const Command&)>;

/// Removes all answers: from now on the probe does its own work and nothing else.
void ClearAnswers();
/// What the probe does at this command, after its own work and before it returns.
void On(PF_Cmd command, Answer answer);
/// The number that the host gave the probe.
AEGP_PluginID PluginId();

/// Declares a supervised slider (1), a checkbox (2) and a supervised popup of two choices (3),
/// keeps kSequenceBytes bytes for each instance, and answers everything else with 0.
PF_Err EntryPoint(PF_Cmd command, PF_InData* in, PF_OutData* out, PF_ParamDef* params[],
                  PF_LayerDef* output, void* extra);

inline constexpr std::size_t kSequenceBytes = 16;

}  // namespace probe
