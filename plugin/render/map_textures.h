#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include <window_system.h>

#include "sdk/effect.h"

namespace plugin {

/// Rectangle textures for the maps of a frame, kept from frame to frame: making them anew costs as
/// much as filling them. They grow to the largest map that each had to hold, and are asked for
/// their size: one for which memory was lacking is tried again in the next frame.
class MapTextures {
 public:
  /// The textures number `index`, two of one size, for `width` × `height` pixels; their contents
  /// are undefined. [framework's context current]
  std::array<GLuint, 2> Get(std::size_t index, A_long width, A_long height);

  /// Deletes all textures, or forgets them where their context is not current.
  void Release();

 private:
  std::vector<std::array<GLuint, 2>> entries_;
};

}  // namespace plugin
