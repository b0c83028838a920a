#pragma once

#include "sdk/effect.h"

namespace plugin {

/// Answers the render command: draws the instance's pieces, deepest first, into `output`, straight
/// colour, 8 bits a channel. The output keeps a transparent fill wherever the render ends early.
/// [framework's context current]
///
/// Returns
/// - 0 for a frame, and for one that keeps its fill: without a store, too small or too large to be
///   copied, or that cannot be read back because memory ran out,
/// - the code of the first host call that failed,
/// - PF_Err_INTERNAL_STRUCT_DAMAGED, with a message for the user, if the framework fails,
/// - PF_Err_BAD_CALLBACK_PARAM if a suite is missing; also, with the output left as it is, for a
///   frame that is requested from within a host call of another frame, or of a message to the same
///   instance,
/// - PF_Interrupt_CANCEL if an image could not be uploaded.
/// Throws PF_Err_BAD_CALLBACK_PARAM without a basic suite.
PF_Err Render(PF_InData& in, PF_OutData& out, PF_ParamDef* const* params, PF_EffectWorld& output);

}  // namespace plugin
