#include "base/geometry/quad.h"

#include <cstddef>
#include <utility>

namespace tarvo {
namespace {

/// Twice the signed area of a triangle.
double Cross(Point a, Point b, Point c) {
  return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

std::optional<Point> InTriangle(const QuadCorners& corners, const QuadCorners& texture, Point at,
                                std::size_t i, std::size_t j, std::size_t k) {
  const double whole = Cross(corners.at(i), corners.at(j), corners.at(k));
  if (whole == 0.0) {
    return std::nullopt;
  }
  const double shareI = Cross(at, corners.at(j), corners.at(k)) / whole;
  const double shareJ = Cross(corners.at(i), at, corners.at(k)) / whole;
  const double shareK = 1.0 - shareI - shareJ;
  const bool isInside = shareI >= 0.0 && shareJ >= 0.0 && shareK >= 0.0;
  if (!isInside) {  // nothing is inside of corners that are no numbers
    return std::nullopt;
  }
  return Point{texture.at(i).x * shareI + texture.at(j).x * shareJ + texture.at(k).x * shareK,
               texture.at(i).y * shareI + texture.at(j).y * shareJ + texture.at(k).y * shareK};
}

double DistanceToSegment(Point at, Point from, Point to) {
  const Point along{to.x - from.x, to.y - from.y};
  const double length = along.x * along.x + along.y * along.y;
  const double reach = (at.x - from.x) * along.x + (at.y - from.y) * along.y;
  const double t = length > 0.0 ? std::clamp(reach / length, 0.0, 1.0) : 0.0;
  return std::hypot(at.x - from.x - t * along.x, at.y - from.y - t * along.y);
}

/// How far the corners lie along a direction: least and greatest.
std::pair<double, double> Extent(const QuadCorners& corners, Point direction) {
  const auto along = [direction](Point corner) {
    return corner.x * direction.x + corner.y * direction.y;
  };
  const auto [least, greatest] = std::ranges::minmax(corners, {}, along);
  return {along(least), along(greatest)};
}

/// True iff a line along one of the first one's sides has the two on different sides of it.
bool HasSideBetween(const QuadCorners& one, const QuadCorners& other) {
  constexpr double kTouch = 1e-9;  // pixels squared: what rounding leaves of a shared side
  for (std::size_t i = 0; i < one.size(); ++i) {
    const Point from = one.at(i);
    const Point to = one.at((i + 1) % one.size());
    const Point across{from.y - to.y, to.x - from.x};
    if (across == Point{}) {
      continue;  // a triangle's fourth side
    }
    const auto [least, greatest] = Extent(one, across);
    const auto [otherLeast, otherGreatest] = Extent(other, across);
    if (std::min(greatest, otherGreatest) - std::max(least, otherLeast) <= kTouch) {
      return true;
    }
  }
  return false;
}

}  // namespace

Bounds BoundsOf(const QuadCorners& corners) {
  const auto [left, right] = std::ranges::minmax(corners, {}, &Point::x);
  const auto [top, bottom] = std::ranges::minmax(corners, {}, &Point::y);
  return {left.x, top.y, right.x, bottom.y};
}

Point CentreOf(const QuadCorners& corners) {
  Point centre;
  for (const Point& corner : corners) {
    centre.x += corner.x / 4.0;
    centre.y += corner.y / 4.0;
  }
  return centre;
}

std::optional<Point> TextureAt(const QuadCorners& corners, const QuadCorners& texture, Point at) {
  const auto first = InTriangle(corners, texture, at, 0, 1, 2);
  return first ? first : InTriangle(corners, texture, at, 0, 2, 3);
}

double DistanceToSides(const QuadCorners& corners, Point at) {
  double least = DistanceToSegment(at, corners[3], corners[0]);
  for (std::size_t i = 0; i + 1 < corners.size(); ++i) {
    least = std::min(least, DistanceToSegment(at, corners.at(i), corners.at(i + 1)));
  }
  return least;
}

bool Overlaps(const QuadCorners& one, const QuadCorners& other) {
  return !HasSideBetween(one, other) && !HasSideBetween(other, one);
}

}  // namespace tarvo
