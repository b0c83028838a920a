#include "tool/rig/strip.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>

namespace tarvo {
namespace {

double Distance(Point a, Point b) { return std::hypot(b.x - a.x, b.y - a.y); }

/// A place on a curve and the way on from there, of any length.
struct Spot {
  Point place;
  Point forward;
};

/// De Casteljau's construction: exact at both ends, and straight where the curve is.
Spot SpotAt(const Curve& curve, double u) {
  const Point ab = Mix(curve[0], curve[1], u);
  const Point bc = Mix(curve[1], curve[2], u);
  const Point cd = Mix(curve[2], curve[3], u);
  const Point abc = Mix(ab, bc, u);
  const Point bcd = Mix(bc, cd, u);
  return {Mix(abc, bcd, u), {bcd.x - abc.x, bcd.y - abc.y}};
}

Point At(const Curve& curve, double u) { return SpotAt(curve, u).place; }

/// The way on where the derivative vanishes, as it does where a control point lies on its end.
Point ForwardAround(const Curve& curve, double u) {
  constexpr double kReach = 1e-4;
  const Point behind = At(curve, std::max(u - kReach, 0.0));
  const Point ahead = At(curve, std::min(u + kReach, 1.0));
  return {ahead.x - behind.x, ahead.y - behind.y};
}

/// The unit normal to the left of the direction of travel, the y axis pointing down.
Point LeftOf(const Curve& curve, double u) {
  constexpr double kStandstill = 1e-9;
  const double size =
      Distance(curve[0], curve[1]) + Distance(curve[1], curve[2]) + Distance(curve[2], curve[3]);
  Point forward = SpotAt(curve, u).forward;
  if (std::hypot(forward.x, forward.y) <= kStandstill * size) {
    forward = ForwardAround(curve, u);
  }
  const double length = std::hypot(forward.x, forward.y);
  return length == 0.0 ? Point{} : Point{forward.y / length, -forward.x / length};
}

/// Arc length along a curve, summed over chords short enough for a hundredth of a pixel on curves
/// of many thousands.
class ArcLength {
 public:
  explicit ArcLength(const Curve& curve) {
    Point last = curve[0];
    for (std::size_t i = 1; i < lengths_.size(); ++i) {
      const Point next = At(curve, static_cast<double>(i) / kChords);
      lengths_[i] = lengths_[i - 1] + Distance(last, next);
      last = next;
    }
  }

  [[nodiscard]] double Total() const { return lengths_.back(); }

  /// The curve's parameter where `fraction` (0 to 1) of the length lies behind; exact at the ends.
  /// On a curve without a length it is the fraction itself: everything lies at one place.
  [[nodiscard]] double ParameterAt(double fraction) const {
    if (Total() == 0.0) {
      return fraction;
    }
    if (fraction <= 0.0 || fraction >= 1.0) {
      return fraction <= 0.0 ? 0.0 : 1.0;
    }
    const double length = fraction * Total();
    const auto end = std::upper_bound(lengths_.begin() + 1, lengths_.end() - 1, length);
    const double chordStart = *std::prev(end);
    const auto chord = static_cast<double>(std::distance(lengths_.begin(), end) - 1);
    return (chord + (length - chordStart) / (*end - chordStart)) / kChords;
  }

 private:
  static constexpr int kChords = 4096;

  std::array<double, kChords + 1> lengths_{};
};

/// The edge that two neighbouring pieces share.
struct CrossSection {
  Point left;
  Point right;
};

std::vector<CrossSection> CrossSections(const Band& band, int pieces) {
  const ArcLength length(band.middle);
  std::vector<CrossSection> sections;
  for (int i = 0; i <= pieces; ++i) {
    const double fraction = static_cast<double>(i) / pieces;
    const double u = length.ParameterAt(fraction);
    const Point middle = At(band.middle, u);
    const Point left = LeftOf(band.middle, u);
    const double half = std::lerp(band.startWidth, band.endWidth, fraction) / 2.0;
    sections.push_back({{middle.x + half * left.x, middle.y + half * left.y},
                        {middle.x - half * left.x, middle.y - half * left.y}});
  }
  return sections;
}

std::array<Point, 4> Between(const CrossSection& start, const CrossSection& end) {
  return {start.left, end.left, end.right, start.right};
}

}  // namespace

Curve StraightCurve(Point start, Point end) {
  return {start, Mix(start, end, 1.0 / 3.0), Mix(start, end, 2.0 / 3.0), end};
}

double CurveLength(const Curve& curve) { return ArcLength(curve).Total(); }

std::vector<Piece> CutStrip(const Strip& strip) {
  const std::vector<CrossSection> rest = CrossSections(strip.rest, strip.pieces);
  const std::vector<CrossSection> pose = CrossSections(strip.pose, strip.pieces);
  std::vector<Piece> pieces;
  for (std::size_t i = 0; i + 1 < pose.size(); ++i) {
    pieces.push_back({.corners = Between(pose[i], pose[i + 1]),
                      .texCoords = Between(rest[i], rest[i + 1]),
                      .t = (static_cast<double>(i) + 0.5) / strip.pieces,
                      .from = strip.from});
  }
  return pieces;
}

}  // namespace tarvo
