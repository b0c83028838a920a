#pragma once

#include <array>
#include <cmath>
#include <cstddef>

namespace plugin {

/// Pixels that a corner must lie beyond an edge. The transformation in single precision and the
/// snapping of corners to 1/256 of a pixel move it less, up to kFarthestProved.
inline constexpr double kClearance = 1.0 / 64.0;
/// Pixels from the origin up to which that holds.
inline constexpr double kFarthestProved = 16'384.0;

/// A place in pixels.
struct Point {
  bool operator==(const Point&) const = default;

  double x;
  double y;
};

constexpr Point operator-(const Point& a, const Point& b) { return {a.x - b.x, a.y - b.y}; }
constexpr double Cross(const Point& a, const Point& b) { return a.x * b.y - a.y * b.x; }
constexpr double SquaredLength(const Point& a) { return a.x * a.x + a.y * a.y; }

/// Of a quadrilateral, one after the other around it, rounded to single precision.
using Corners = std::array<Point, 4>;

/// A convex outline as OpenGL gets it. A quadrilateral with two neighbouring corners in one place
/// is a triangle.
struct Outline {
  Corners corners;
  std::size_t count = 4;
  /// 1 or -1 as the corners turn one way or the other; 0 if they are not proved to be convex.
  double turn = 0.0;
};

/// The outline of a quadrilateral; without a turn if it crosses itself, is dented, or is so thin
/// that rounding could make it so, whichever diagonal OpenGL cuts it along.
Outline OutlineOf(const Corners& corners);

/// False for corners that are far away or no numbers.
bool AreNear(const Corners& corners);

/// Whether two shapes may cover the centre of one pixel. Not if an edge of one has all corners of
/// the other at least kClearance beyond it, but for corners that are equal to an end of that edge:
/// those go through the same arithmetic, and OpenGL gives a pixel on a shared edge to one side
/// only. Of a shape without a turn nothing is proved.
bool MayShareAPixel(const Outline& a, const Outline& b);

}  // namespace plugin
