#pragma once

#include "sdk/effect.h"

namespace plugin {

/// The counter after one more nudge: `counter` + 1, whole and modulo 1000, with the sign of the
/// sum. Values that no 32-bit integer holds count as the nearest that one does, no number as 0.
double Nudged(double counter);

/// Answers a user's change of a supervised parameter: nudges every active companion on the
/// layer, so that it sends its pieces again, and sets "Updater:" back to "..." if it was that.
///
/// Returns the code of the first host call that failed. Throws PF_Err_BAD_CALLBACK_PARAM for a
/// suite that the host does not hand out.
PF_Err UserChangedParam(PF_InData& in, const PF_UserChangedParamExtra& change);

}  // namespace plugin
