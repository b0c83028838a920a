#pragma once

#include <cmath>

namespace tarvo {

/// A place in a plane: layer pixels for corners, image pixels for texture coordinates.
struct Point {
  double x = 0.0;
  double y = 0.0;

  bool operator==(const Point&) const = default;
};

/// The point at a fraction of the way from one to another: 0 gives `from`, 1 gives `to`.
inline Point Mix(Point from, Point to, double fraction) {
  return {std::lerp(from.x, to.x, fraction), std::lerp(from.y, to.y, fraction)};
}

}  // namespace tarvo
