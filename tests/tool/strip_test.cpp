#include "tool/rig/strip.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using tarvo::Band;
using tarvo::CutStrip;
using tarvo::Piece;
using tarvo::Point;
using tarvo::StraightCurve;
using tarvo::Strip;

const Band kRest{StraightCurve({10, 20}, {110, 20}), 8, 8};

struct Case {
  const char* name;
  Strip strip;
};

// Curves that could trip the arc length or the direction: control points on the ends, all on one
// line but unevenly spaced, an S, a loop, one that turns back on itself.
const std::vector<Case> kCases = {
    {"segment", {kRest, {StraightCurve({300, 100}, {300, 400}), 20, 20}, 8}},
    {"arch", {kRest, {{{{0, 0}, {0, 200}, {300, 200}, {300, 0}}}, 20, 20}, 16}},
    {"control on start", {kRest, {{{{0, 0}, {0, 0}, {200, 10}, {300, 90}}}, 20, 20}, 9}},
    {"control on end", {kRest, {{{{0, 0}, {90, 10}, {300, 90}, {300, 90}}}, 20, 20}, 9}},
    {"both on ends", {kRest, {{{{0, 0}, {0, 0}, {300, 90}, {300, 90}}}, 20, 20}, 7}},
    {"uneven line", {kRest, {{{{0, 0}, {5, 0}, {10, 0}, {300, 0}}}, 20, 20}, 10}},
    {"loop", {kRest, {{{{0, 0}, {400, 300}, {-100, 300}, {300, 0}}}, 4, 4}, 1000}},
    {"turns back", {kRest, {{{{0, 0}, {300, 0}, {-100, 0}, {200, 0}}}, 4, 4}, 12}},
    {"one piece", {kRest, {StraightCurve({0, 0}, {-7, 3}), 1, 1}, 1}},
};

Point Middle(Point a, Point b) { return {(a.x + b.x) / 2, (a.y + b.y) / 2}; }
double Distance(Point a, Point b) { return std::hypot(a.x - b.x, a.y - b.y); }

void ExpectPoints(const std::array<Point, 4>& actual, const std::array<Point, 4>& wanted) {
  for (std::size_t i = 0; i < wanted.size(); ++i) {
    EXPECT_NEAR(Distance(actual[i], wanted[i]), 0, 1e-9) << "corner " << i;
  }
}

class EveryStrip : public testing::TestWithParam<Case> {};

TEST_P(EveryStrip, NeighboursShareTheirCornersToTheLastBit) {
  const std::vector<Piece> pieces = CutStrip(GetParam().strip);
  ASSERT_EQ(pieces.size(), static_cast<std::size_t>(GetParam().strip.pieces));
  for (std::size_t i = 1; i < pieces.size(); ++i) {
    EXPECT_EQ(pieces[i - 1].corners[1], pieces[i].corners[0]);
    EXPECT_EQ(pieces[i - 1].corners[2], pieces[i].corners[3]);
    EXPECT_EQ(pieces[i - 1].texCoords[1], pieces[i].texCoords[0]);
    EXPECT_EQ(pieces[i - 1].texCoords[2], pieces[i].texCoords[3]);
  }
}

TEST_P(EveryStrip, BeginsAndEndsWhereThePoseDoesAndIsAsWideEverywhere) {
  const Strip& strip = GetParam().strip;
  const std::vector<Piece> pieces = CutStrip(strip);
  const auto& first = pieces.front().corners;
  const auto& last = pieces.back().corners;
  EXPECT_NEAR(Distance(Middle(first[0], first[3]), strip.pose.middle[0]), 0, 1e-9);
  EXPECT_NEAR(Distance(Middle(last[1], last[2]), strip.pose.middle[3]), 0, 1e-9);
  for (const Piece& piece : pieces) {
    EXPECT_NEAR(Distance(piece.corners[0], piece.corners[3]), strip.pose.startWidth, 1e-9);
    EXPECT_NEAR(Distance(piece.corners[1], piece.corners[2]), strip.pose.endWidth, 1e-9);
  }
}

/// The curve's own parameter is bunched up where control points are; cuts must not be.
TEST_P(EveryStrip, CutsStandAtEqualDistancesAlongTheCurve) {
  Strip strip = GetParam().strip;
  constexpr int kFiner = 500;
  const std::vector<Piece> pieces = CutStrip(strip);
  strip.pieces *= kFiner;
  const std::vector<Piece> finer = CutStrip(strip);
  const double segmentLength =
      tarvo::CurveLength(strip.pose.middle) / static_cast<double>(pieces.size());
  double walked = 0;
  for (std::size_t i = 0; i < finer.size(); ++i) {
    const Point from = Middle(finer[i].corners[0], finer[i].corners[3]);
    const Point to = Middle(finer[i].corners[1], finer[i].corners[2]);
    walked += Distance(from, to);
    if ((i + 1) % kFiner == 0) {
      const auto& cut = pieces[i / kFiner].corners;
      EXPECT_NEAR(Distance(to, Middle(cut[1], cut[2])), 0, 1e-6);
      EXPECT_NEAR(walked, segmentLength * std::floor(static_cast<double>(i + 1) / kFiner), 0.1);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Strip, EveryStrip, testing::ValuesIn(kCases), [](const auto& test) {
  std::string name = test.param.name;
  std::replace(name.begin(), name.end(), ' ', '_');
  return name;
});

/// y points down: seen in the direction of the curve, the left side has the smaller y where the
/// curve runs to the right.
TEST(Strip, LeftSideComesFirstAndCornersGoAround) {
  const std::vector<Piece> pieces =
      CutStrip({kRest, {StraightCurve({300, 100}, {300, 400}), 20, 20}, 2});
  const auto& uv = pieces[0].texCoords;  // left at the start, left at the end, and back
  ExpectPoints(uv, {{{10, 16}, {60, 16}, {60, 24}, {10, 24}}});
  const auto& corners = pieces[0].corners;  // where it runs down, the left side has the larger x
  ExpectPoints(corners, {{{310, 100}, {310, 250}, {290, 250}, {290, 100}}});
}

TEST(Strip, PlacesEachPieceAtItsMiddleAlongTheBone) {
  const std::vector<Piece> pieces = CutStrip({kRest, kRest, 4, tarvo::ImageChoice::kB});
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    EXPECT_DOUBLE_EQ(pieces[i].t, (static_cast<double>(i) + 0.5) / 4);
    EXPECT_EQ(pieces[i].from, tarvo::ImageChoice::kB);
  }
}

}  // namespace
