#pragma once

#include "sdk/effect.h"

namespace plugin {

/// The effect's global data, in a host handle of exactly this size.
struct GlobalData {
  /// Source of the instances' numbers, which identify a store in a debugger and have no other use.
  /// Goes down with each instance, so that numbers may repeat.
  A_long instanceCounter;
};
SDK_SIZE(GlobalData, 4);

/// Answers global set-up: reports version and flags, registers with the host's project layer,
/// starts the framework and its program, and makes the global data. A failure does not keep the
/// later steps from being tried. What an earlier set-up made that was not set down is released
/// first. [framework's context current, if there is one]
///
/// Returns PF_Err_OUT_OF_MEMORY if the host has no memory for the global data (a lock that it
/// refuses is no error); else PF_Err_INTERNAL_STRUCT_DAMAGED, with a message, if the framework
/// failed, or PF_Err_OUT_OF_MEMORY if memory ran out while it started; else the code of the first
/// host call that failed. Throws PF_Err_BAD_CALLBACK_PARAM without the utility or the handle suite.
PF_Err GlobalSetup(PF_InData& in, PF_OutData& out);

/// Answers global set-down: releases the scenes that are left, stops the framework and disposes of
/// the global data. Returns PF_Err_INTERNAL_STRUCT_DAMAGED, with a message, if the framework fails,
/// and PF_Err_OUT_OF_MEMORY if memory runs out in it. Throws PF_Err_BAD_CALLBACK_PARAM without the
/// handle suite. [framework's context current; it is gone at the return]
PF_Err GlobalSetdown(PF_InData& in, PF_OutData& out);

}  // namespace plugin
