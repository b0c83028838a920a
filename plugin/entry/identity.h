#pragma once

#include <string_view>

#include "plugin/entry/registration.h"
#include "plugin/host/match_name.h"
#include "sdk/effect.h"

namespace plugin {

/// What the plug-in reports about itself at global set-up. Hosts have read the same values in its
/// resource before, and complain to the user when the two answers differ.
inline constexpr A_u_long kVersion = TARVO_HOST_VERSION;
inline constexpr PF_OutFlags kGlobalFlags = TARVO_OUT_FLAGS;
inline constexpr PF_OutFlags2 kGlobalFlags2 = TARVO_OUT_FLAGS_2;

static_assert(kVersion == PF_VERSION(2, 0, 0, PF_Stage_DEVELOP, 0));
static_assert(kGlobalFlags == (PF_OutFlag_SEND_UPDATE_PARAMS_UI | PF_OutFlag_I_SHRINK_BUFFER |
                               PF_OutFlag_I_EXPAND_BUFFER));
static_assert(std::string_view(TARVO_MATCH_NAME) == kOwnMatchName);

}  // namespace plugin
