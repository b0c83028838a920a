#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "standin/scene.h"
#include "standin/scene_node.h"

namespace standin {

inline constexpr Range kOpacities{.least = 0.0, .most = 1.0};
inline constexpr Range kDepths{.least = -kDeepestZ, .most = kDeepestZ};
inline constexpr Range kWidths{.least = 0.0};

/// One number for both ends, or [start, end].
ZPair ReadEnds(const SceneNode& node, Range range);

/// "kCount points": so many of [x, y].
template <std::size_t kCount>
std::array<Point, kCount> ReadPoints(const SceneNode& node);

/// The image of this name, as an index into `images`; their number after a fault.
std::size_t ReadImageName(const SceneNode& node, const std::vector<NamedImage>& images);

}  // namespace standin
