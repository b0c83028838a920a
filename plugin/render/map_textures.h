#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include <window_system.h>

#include "sdk/effect.h"

namespace plugin {

/// Rectangle textures for the maps of a frame, kept from frame to frame: making them anew costs as
/// much as filling them. They grow to the largest map that each had to hold.
class MapTextures {
 public:
  /// The textures number `index`, two of one size, for `width` × `height` pixels; their contents
  /// are undefined. [framework's context current]
  std::array<GLuint, 2> Get(std::size_t index, A_long width, A_long height);

  /// Deletes all textures, or forgets them where their context is not current.
  void Release();

 private:
  struct Entry {
    std::array<GLuint, 2> names{};
    A_long width = 0;
    A_long height = 0;
  };

  std::vector<Entry> entries_;
};

}  // namespace plugin
