#pragma once

#include <array>
#include <cmath>
#include <cstddef>

namespace plugin {

/// Pixels that a corner must lie beyond an edge. Two corners move against one another by less: the
/// transformation in single precision moves each by some thousandths up to kFarthestProved, and the
/// rounding to kSubpixelBits by two more.
inline constexpr double kClearance = 1.0 / 64.0;
/// Fewest bits of a pixel's fraction that OpenGL keeps of a corner's place (GL_SUBPIXEL_BITS).
inline constexpr int kSubpixelBits = 8;
/// Pixels from the frame's origin, all offsets added up, to which that holds.
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

/// Whether all corners lie within so many pixels of the origin on both axes; not if one is no
/// number.
bool AreNear(const Corners& corners, double farthest);

/// Whether two shapes may cover the centre of one pixel. Not if an edge of one has all corners of
/// the other beyond it, by kClearance at least. Corners that are equal to an end of that edge may
/// lie on it: they go through the same arithmetic, and OpenGL gives a pixel on a shared edge to one
/// side only. Of a shape without a turn nothing is proved.
bool MayShareAPixel(const Outline& a, const Outline& b);

}  // namespace plugin
