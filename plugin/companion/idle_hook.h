#pragma once

#include "sdk/aegp.h"

namespace plugin {

/// The host's idle hook. On the first call after any sequence set-up or resetup it switches
/// "Hidden" on in every instance of this effect in the active composition, in one undo group
/// without a name; every other call only counts. The sleep value stays as it is. Never throws.
A_Err IdleHook(AEGP_GlobalRefcon pluginRefcon, AEGP_IdleRefcon refcon, A_long* maxSleep);

}  // namespace plugin
