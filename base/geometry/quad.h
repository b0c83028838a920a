#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "base/geometry/point.h"

/// \file
/// Geometry of convex quadrilaterals.

namespace tarvo {

/// QuadCorners around a quadrilateral.
using QuadCorners = std::array<Point, 4>;

/// A box along the axes.
struct Bounds {
  double left = 0.0;
  double top = 0.0;
  double right = 0.0;
  double bottom = 0.0;
};

Bounds BoundsOf(const QuadCorners& corners);
Point CentreOf(const QuadCorners& corners);

/// What a textured quadrilateral shows at a place: the texture coordinate, linear over each of the
/// two triangles that share the diagonal from corner 0 to corner 2; none outside.
std::optional<Point> TextureAt(const QuadCorners& corners, const QuadCorners& texture, Point at);

/// From a place to the nearest point of any of the four sides.
double DistanceToSides(const QuadCorners& corners, Point at);

/// True iff two convex quadrilaterals share more than sides and corners.
bool Overlaps(const QuadCorners& one, const QuadCorners& other);

/// The pixel that a place lies in, kept within 0 to `limit`; 0 for what is no number.
inline int PixelAt(double place, int limit) {
  if (std::isnan(place)) {
    return 0;
  }
  return static_cast<int>(std::clamp(std::floor(place), 0.0, static_cast<double>(limit)));
}

/// Calls visit(x, y) for every pixel of a width x height picture that a box touches.
template <typename Visit>
void ForEachPixelIn(const Bounds& bounds, int width, int height, Visit visit) {
  const int right = PixelAt(std::ceil(bounds.right), width);
  const int bottom = PixelAt(std::ceil(bounds.bottom), height);
  for (int y = PixelAt(bounds.top, height); y < bottom; ++y) {
    for (int x = PixelAt(bounds.left, width); x < right; ++x) {
      visit(x, y);
    }
  }
}

}  // namespace tarvo
