#pragma once

#include "sdk/effect.h"

namespace plugin {

/// Declares the 53 parameters after the input layer: a start Z and an end Z slider for each bone,
/// "Hidden", "Updater:" and "Fast transparency". Returns the first error of the host's, with which
/// the declaring ends; what was declared before it stays.
PF_Err ParamsSetup(PF_InData& in, PF_OutData& out);

}  // namespace plugin
