#include "plugin/render/outline.h"

#include <algorithm>

namespace plugin {
namespace {

/// Which way three corners turn; 0 if one lies so near the line of the other two that rounding
/// could turn them the other way.
double TurnOf(const Point& a, const Point& b, const Point& c) {
  const double twiceArea = Cross(b - a, c - b);
  const double longest =
      std::max({SquaredLength(b - a), SquaredLength(c - b), SquaredLength(c - a)});
  const bool isClear = twiceArea * twiceArea >= kClearance * kClearance * longest;
  if (!isClear || twiceArea == 0.0) {
    return 0.0;
  }
  return twiceArea > 0.0 ? 1.0 : -1.0;
}

/// Of a convex outline every corner turns the same way.
double TurnOf(const Outline& outline) {
  const auto turnAt = [&](std::size_t corner) {
    return TurnOf(outline.corners[corner], outline.corners[(corner + 1) % outline.count],
                  outline.corners[(corner + 2) % outline.count]);
  };
  const double turn = turnAt(0);
  for (std::size_t corner = 1; corner < outline.count; ++corner) {
    if (turnAt(corner) != turn) {
      return 0.0;
    }
  }
  return turn;
}

/// Whether an edge of the outline has all of `other` beyond it.
///
/// Where the two share no corner with that edge its line lies between them, whatever rounding does
/// to either. Where they do the line turns with the edge as rounding moves its ends, and every
/// other corner must form a triangle with it that keeps its turn.
bool LiesBeyond(const Outline& outline, std::size_t edge, const Outline& other) {
  const Point& start = outline.corners[edge];
  const Point& end = outline.corners[(edge + 1) % outline.count];
  const auto isEnd = [&](const Point& corner) { return corner == start || corner == end; };
  if (std::ranges::any_of(other.corners, isEnd)) {
    return std::ranges::all_of(other.corners, [&](const Point& corner) {
      return isEnd(corner) || TurnOf(start, end, corner) == -outline.turn;
    });
  }
  const Point along = end - start;
  const double squaredClearance = kClearance * kClearance * SquaredLength(along);
  return std::ranges::all_of(other.corners, [&](const Point& corner) {
    const double beyond = -outline.turn * Cross(along, corner - start);
    return beyond > 0.0 && beyond * beyond >= squaredClearance;
  });
}

bool HasSeparatingEdge(const Outline& outline, const Outline& other) {
  for (std::size_t edge = 0; edge < outline.count; ++edge) {
    if (LiesBeyond(outline, edge, other)) {
      return true;
    }
  }
  return false;
}

}  // namespace

Outline OutlineOf(const Corners& corners) {
  Outline outline{.corners = corners};
  for (std::size_t corner = 0; corner < corners.size(); ++corner) {
    if (corners[corner] == corners[(corner + 1) % corners.size()]) {
      std::rotate(outline.corners.begin(), outline.corners.begin() + corner + 1,
                  outline.corners.end());
      outline.count = 3;  // the last is the first once more
      break;
    }
  }
  outline.turn = TurnOf(outline);
  return outline;
}

/// False for corners that are far away or no numbers.
bool AreNear(const Corners& corners, double farthest) {
  return std::ranges::all_of(corners, [farthest](const Point& corner) {
    return std::abs(corner.x) <= farthest && std::abs(corner.y) <= farthest;
  });
}

bool MayShareAPixel(const Outline& a, const Outline& b) {
  if (a.turn == 0.0 || b.turn == 0.0) {
    return true;
  }
  return !HasSeparatingEdge(a, b) && !HasSeparatingEdge(b, a);
}

}  // namespace plugin
