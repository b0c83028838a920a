#pragma once

#include "sdk/effect.h"

namespace tarvo {

/// What the plug-in tells hosts of itself at global set-up.
inline constexpr A_u_long kVersion = PF_VERSION(2, 0, 0, PF_Stage_DEVELOP, 0);
inline constexpr PF_OutFlags kGlobalFlags =
    PF_OutFlag_SEND_UPDATE_PARAMS_UI | PF_OutFlag_I_SHRINK_BUFFER | PF_OutFlag_I_EXPAND_BUFFER;
inline constexpr PF_OutFlags2 kGlobalFlags2 = 0;
static_assert(kVersion == 0x00100000 && kGlobalFlags == 0x04001200);

}  // namespace tarvo
