#pragma once

#include "sdk/aegp.h"

namespace plugin {

/// The host's basic suite, as of the latest call of the entry point. The idle hook, which is called
/// without any record of the host's, builds its suite access from it.
extern SPBasicSuite* gBasicSuite;

/// The identifier of this plug-in in the host's project layer, for every call there that takes one.
extern AEGP_PluginID gPluginId;

/// Idle calls since the latest sequence set-up or resetup of any instance; the one-time work of the
/// idle hook runs on the call that finds 0.
extern A_u_long gIdleTicks;

}  // namespace plugin
