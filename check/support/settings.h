#pragma once

#include <cstdint>
#include <functional>

#include "check/result/selection.h"

namespace check {

/// What the user chose for all checks of a run.
struct Settings {
  /// Random choices of checks start from it: the same seed, the same choices. They are the calls
  /// that fail in fault injection, the bytes of bad records, the messages of many senders, the
  /// frames of soak tests.
  std::uint32_t seed = kUsualSeed;
  /// Soak tests run at full length (--long): half an hour and more.
  bool isLong = false;
  /// Fault injection runs a scenario for every host call, not for some.
  bool failsEveryCall = false;
  /// Called during scenarios, once the plug-in is set up. Where the plug-in is linked in, it
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
