#pragma once

#include "sdk/effect.h"

namespace plugin {

/// Answers the update of the parameter controls: shows one start Z and one end Z slider for each
/// active companion on the layer, labelled after it, and hides the others and "Hidden". A
/// 26th companion's first label falls on "Hidden", which is then shown. Nothing is sent and no flag
/// is set where nothing changes.
///
/// Returns the code of the first host call that failed; what was changed before it stays changed.
/// Throws PF_Err_BAD_CALLBACK_PARAM for a suite that the host does not hand out.
PF_Err UpdateParamsUI(PF_InData& in, PF_ParamDef* const* params);

}  // namespace plugin
