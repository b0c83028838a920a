#pragma once

#include "sdk/effect.h"

namespace plugin {

/// Bones that have a pair of depth sliders.
inline constexpr A_long kBoneCount = 25;

/// Positions in the host's parameter array. "Hidden" is a mark on an instance that has been set up:
/// the idle hook sets it to 1, and it is hidden from users. "Updater:" is a popup used as a button:
/// its choice "Update" makes the companions send again, and then it is reset.
///
/// Each parameter's ID equals its position. Between the input layer and "Hidden" lie the sliders, a
/// start Z and an end Z for each bone.
enum ParameterIndex : PF_ParamIndex {
  PARAM_INPUT = 0,
  PARAM_HIDDEN = 2 * kBoneCount + 1,
  PARAM_UPDATER,
  PARAM_FAST_TRANSPARENCY,
  PARAM_COUNT,
};

/// The slider that holds the depth at the start of a bone; `ordinal` counts bones from 0 to 24.
constexpr PF_ParamIndex StartZIndex(A_long ordinal) { return 2 * ordinal + 1; }
/// The slider that holds the depth at the end of a bone; `ordinal` counts bones from 0 to 24.
constexpr PF_ParamIndex EndZIndex(A_long ordinal) { return 2 * ordinal + 2; }

}  // namespace plugin
