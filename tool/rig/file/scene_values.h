#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "base/files/name_index.h"
#include "tool/rig/file/scene_node.h"
#include "tool/rig/scene.h"

namespace tarvo {

/// Longest name of the user's that a message quotes in full, in bytes.
inline constexpr std::size_t kLongestQuote = 256;

inline constexpr Range kOpacities{.least = 0.0, .most = 1.0};
inline constexpr Range kDepths{.least = -kDeepestZ, .most = kDeepestZ};
inline constexpr Range kWidths{.least = 0.0};

/// One number for both ends, or [start, end].
ZPair ReadEnds(const SceneNode& node, Range range);

/// "kCount points": so many of [x, y].
template <std::size_t kCount>
std::array<Point, kCount> ReadPoints(const SceneNode& node);

/// The image of this name, as its place in `images`; their number after a fault.
std::size_t ReadImageName(const SceneNode& node, const NameIndex& images);

}  // namespace tarvo
