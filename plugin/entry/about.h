#pragma once

#include "sdk/effect.h"

namespace plugin {

/// Answers the About command: name, version and description in the output record's message, lines
/// parted by a carriage return. Throws PF_Err_BAD_CALLBACK_PARAM without the host's ANSI suite.
PF_Err About(PF_InData& in, PF_OutData& out);

}  // namespace plugin
