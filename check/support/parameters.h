#pragma once

namespace check {

/// The plug-in's parameters by number, as users' projects have them saved.
inline constexpr int kHidden = 51;
inline constexpr int kUpdater = 52;
inline constexpr int kFastTransparency = 53;

/// Sliders of a bone, counted from 1.
constexpr int StartZ(int bone) { return 2 * bone - 1; }
constexpr int EndZ(int bone) { return 2 * bone; }

}  // namespace check
