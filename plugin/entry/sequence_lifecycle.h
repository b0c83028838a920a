#pragma once

#include "sdk/effect.h"

namespace plugin {

/// Answers the making of an instance: gives it an empty scene store with a number, prepares the
/// render target and arms the idle hook. [framework's context current]
///
/// Returns PF_Err_OUT_OF_MEMORY, nothing else being done, if the host has no memory for a store;
/// else 0. A lock that the host refuses leaves the instance without a store. A render target that
/// could not be made is reported by the frames that need it, and made by the next set-up that can.
/// Throws PF_Err_BAD_CALLBACK_PARAM without the handle suite, as do the other two.
PF_Err SequenceSetup(PF_InData& in, PF_OutData& out);

/// Answers the return of an instance from a saved project and the duplication of one: replaces its
/// store by an empty one. The old bytes are never read, for what they name is gone or another
/// instance's. [framework's context current]
///
/// Returns what SequenceSetup does; a store that cannot be replaced is not an error, unless the new
/// one cannot be locked (PF_Err_INTERNAL_STRUCT_DAMAGED).
PF_Err SequenceResetup(PF_InData& in, PF_OutData& out);

/// Answers the end of an instance: releases its scene and disposes of its store. Returns 0.
/// Textures are deleted if the framework's context is current, and kept until global set-down else.
PF_Err SequenceSetdown(PF_InData& in, PF_OutData& out);

}  // namespace plugin
