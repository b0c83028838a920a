#pragma once

#include <cstdint>
#include <functional>

#include "check/result/selection.h"

namespace check {

/// What the user chose for all checks of a run.
struct Settings {
  /// Cases that draw lots start from it: the same seed gives the same lots. They are the calls that
  /// fail in lives, the noise in bad records, the messages of many senders, the frames of long
  /// lives.
  std::uint32_t seed = kUsualSeed;
  /// Long lives are lived in full length, which takes minutes.
  bool isLong = false;
  /// FaultInjection with failures are lived for every host call, not for some.
  bool failsEveryCall = false;
  /// Called in the middle of lives, once the plug-in is set up. Where the plug-in is linked in, it
  /// may be given a small render target: thousands of large ones take minutes to clear.
  std::function<void()> afterGlobalSetup = [] {};
  /// Width in pixels of an output that no render target holds.
  int tiledWidth = 4100;
  /// Counts the textures that the plug-in holds in its OpenGL context, which a host cannot; empty
  /// where the plug-in is not linked in.
  std::function<double()> glTextures;
};

/// The settings of this process.
inline Settings& TheSettings() {
  static Settings settings;
  return settings;
}

}  // namespace check
