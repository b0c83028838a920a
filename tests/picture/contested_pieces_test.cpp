// Pieces that may share a pixel with another one of their image are found, whatever their shapes.

#include "plugin/render/contested_pieces.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "check/support/pieces.h"
#include "check/support/rig.h"
#include "tests/support/still_frame.h"

namespace {

struct Point {
  double x;
  double y;
};
using Shape = std::array<Point, 4>;

/// A corner as rasterizers see it: in 256ths of a pixel.
struct Snapped {
  std::int64_t x;
  std::int64_t y;
};
constexpr std::int64_t kPixel = 256;

Snapped Snap(const Point& corner) {
  return {std::llround(static_cast<double>(static_cast<float>(corner.x)) * kPixel),
          std::llround(static_cast<double>(static_cast<float>(corner.y)) * kPixel)};
}

/// Above 0 where `at` lies on the inner side of an edge of a triangle that turns to the right on
/// the screen; on the edge itself where it is a left or a top one.
bool IsInside(const Snapped& from, const Snapped& to, const Snapped& at) {
  const Snapped along{to.x - from.x, to.y - from.y};
  const std::int64_t side = along.x * (at.y - from.y) - along.y * (at.x - from.x);
  const bool isLeftOrTop = along.y < 0 || (along.y == 0 && along.x > 0);
  return side > 0 || (side == 0 && isLeftOrTop);
}

bool CoversPixel(Snapped a, Snapped b, Snapped c, const Snapped& centre) {
  const std::int64_t turn = (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
  if (turn == 0) {
    return false;
  }
  if (turn < 0) {
    std::swap(b, c);
  }
  return IsInside(a, b, centre) && IsInside(b, c, centre) && IsInside(c, a, centre);
}

/// How often a quadrilateral covers a pixel, cut along either diagonal.
std::array<int, 2> Coverage(const Shape& shape, const Snapped& centre) {
  const std::array<Snapped, 4> s{Snap(shape[0]), Snap(shape[1]), Snap(shape[2]), Snap(shape[3])};
  return {CoversPixel(s[0], s[1], s[3], centre) + CoversPixel(s[1], s[2], s[3], centre),
          CoversPixel(s[0], s[1], s[2], centre) + CoversPixel(s[0], s[2], s[3], centre)};
}

constexpr int kSide = 14;  // pixels of the square that all shapes of the random test lie in

/// What two shapes do at the pixels of the square.
struct Meeting {
  bool share = false;           ///< some pixel is covered by both
  std::array<bool, 2> twice{};  ///< some pixel is covered twice by this one alone
};

Meeting Meet(const Shape& a, const Shape& b) {
  Meeting meeting;
  for (int y = 0; y < kSide; ++y) {
    for (int x = 0; x < kSide; ++x) {
      const Snapped centre{x * kPixel + kPixel / 2, y * kPixel + kPixel / 2};
      const auto [a0, a1] = Coverage(a, centre);
      const auto [b0, b1] = Coverage(b, centre);
      meeting.share = meeting.share || (a0 + a1 > 0 && b0 + b1 > 0);
      meeting.twice = {meeting.twice[0] || a0 > 1 || a1 > 1, meeting.twice[1] || b0 > 1 || b1 > 1};
    }
  }
  return meeting;
}

class ContestedPieces : public check::RigTest {
 protected:
  ContestedPieces() {
    still_.scene.slots.resize(1);
    still_.scene.slots[0].images[plugin::kImageA].width = 64;
    still_.scene.slots[0].images[plugin::kImageA].height = 48;
  }

  /// Which of the pieces of one image are contested.
  std::vector<bool> Contested(const std::vector<PieceQuad>& quads) {
    plugin::Frame frame = still_.Make();
    for (const PieceQuad& quad : quads) {
      frame.drawList.push_back({&quad, 0, 0, plugin::kImageA});
    }
    plugin::MarkContestedPieces(frame, subpixelBits_);
    std::vector<bool> contested;
    for (const plugin::DrawPiece& piece : frame.drawList) {
      contested.push_back(piece.isContested);
    }
    return contested;
  }

  static PieceQuad Quad(const Shape& shape) {
    PieceQuad quad = check::Piece({}, {.left = 2, .top = 2, .width = 20, .height = 20}, 0);
    for (std::size_t corner = 0; corner < shape.size(); ++corner) {
      quad.corners[corner][0] = shape[corner].x;
      quad.corners[corner][1] = shape[corner].y;
    }
    return quad;
  }

  std::vector<bool> Contested(const std::vector<Shape>& shapes) {
    std::vector<PieceQuad> quads;
    for (const Shape& shape : shapes) {
      quads.push_back(Quad(shape));
    }
    return Contested(quads);
  }

  int subpixelBits_ = 8;
  check::StillFrame still_{rig.host.InputRecord(nullptr)};
};

using Flags = std::vector<bool>;
constexpr Shape kSquare{{{0, 0}, {8, 0}, {8, 8}, {0, 8}}};

Shape Moved(Shape shape, double x, double y) {
  for (Point& corner : shape) {
    corner = {corner.x + x, corner.y + y};
  }
  return shape;
}

TEST_F(ContestedPieces, AreThoseWithoutAnEdgeBetweenThem) {
  EXPECT_EQ(Contested({kSquare}), Flags{false});
  EXPECT_EQ(Contested({kSquare, Moved(kSquare, 8, 0)}), (Flags{false, false})) << "a shared edge";
  EXPECT_EQ(Contested({kSquare, Moved(kSquare, 8, 3)}), (Flags{true, true})) << "no shared corner";
  EXPECT_EQ(Contested({kSquare, Moved(kSquare, 8 + 1.0 / 64, 3)}), (Flags{false, false}));
  EXPECT_EQ(Contested({kSquare, Moved(kSquare, 8 + 0.9 / 64, 3)}), (Flags{true, true}));
  EXPECT_EQ(Contested({kSquare, Moved(kSquare, 40, 0), Moved(kSquare, 4, 4)}),
            (Flags{true, false, true}));
  const Shape folded{{{8, 0}, {8, 8}, {3, 8}, {3, 0}}};
  EXPECT_EQ(Contested({kSquare, folded}), (Flags{true, true})) << "to one side of a shared edge";
  // With one corner in common the line of the short edge turns as its ends are rounded, and crosses
  // the other's long edge.
  const Shape high{{{10.5, 20.508}, {17.5, 20.498}, {17.5, 60.5}, {10.5, 60.5}}};
  const Shape wide{{{10.5, 20.508}, {210.5, 20.2}, {210.5, 1.5}, {10.5, 1.5}}};
  EXPECT_EQ(Contested({high, wide}), (Flags{true, true}));
  const Shape turned{{{0, 0}, {0, 8}, {8, 8}, {8, 0}}};
  EXPECT_EQ(Contested({turned, Moved(kSquare, 8, 0)}), (Flags{false, false}));
}

TEST_F(ContestedPieces, AreThoseWhoseShapeProvesNothing) {
  const Shape triangle{{{0, 0}, {8, 0}, {8, 8}, {8, 8}}};
  EXPECT_EQ(Contested({triangle, Moved(kSquare, 8, 0)}), (Flags{false, false}));
  const Shape bowTie{{{0, 0}, {8, 8}, {8, 0}, {0, 8}}};
  const Shape dented{{{0, 0}, {8, 0}, {2, 2}, {0, 8}}};
  const Shape straight{{{0, 0}, {4, 0}, {8, 0}, {4, 8}}};
  const Shape sliver{{{0, 0}, {8, 0}, {8, 0.01}, {0, 0.01}}};
  const Shape line{{{0, 0}, {8, 8}, {8, 8}, {0, 0}}};
  for (const Shape& shape : {bowTie, dented, straight, sliver, line}) {
    EXPECT_EQ(Contested({shape}), Flags{true});
    EXPECT_EQ(Contested({shape, Moved(kSquare, 30, 0)}), (Flags{true, false}));
  }
  for (const double wrong : {20'000.0, -1e30, std::numeric_limits<double>::quiet_NaN()}) {
    Shape distant = kSquare;
    distant[2].x = wrong;
    EXPECT_EQ(Contested({distant, Moved(kSquare, 30, 0)}), (Flags{true, true})) << wrong;
  }
  still_.in.output_origin_x = -9000;
  still_.in.pre_effect_source_origin_x = 7000;
  EXPECT_EQ(Contested({kSquare}), Flags{false});
  EXPECT_EQ(Contested({kSquare, Moved(kSquare, 900, 0)}), (Flags{true, true}))
      << "9000 + 7000 + 900";
  still_.in = rig.host.InputRecord(nullptr);
  subpixelBits_ = 4;
  EXPECT_EQ(Contested({kSquare}), Flags{true});
  subpixelBits_ = 8;
  still_.output.width = 20'000;
  EXPECT_EQ(Contested({kSquare}), Flags{true});
}

TEST_F(ContestedPieces, AreThoseThatReachTheBorderOfTheirImage) {
  for (const double u : {0.9, 63.1, -5.0, std::numeric_limits<double>::quiet_NaN()}) {
    PieceQuad quad = Quad(kSquare);
    quad.texCoords[1][0] = u;
    EXPECT_EQ(Contested(std::vector{quad, Quad(Moved(kSquare, 8, 0))}), (Flags{true, false})) << u;
  }
  PieceQuad quad = Quad(kSquare);
  quad.texCoords[3][1] = 47.0;
  EXPECT_EQ(Contested(std::vector{quad}), Flags{false});
}

/// Random pairs that lie near one another: with one corner or edge in common, or almost, on the
/// grid of pixel centres as often as beside it.
class RandomPairs {
 public:
  explicit RandomPairs(std::uint32_t seed) : random_(seed) {}

  std::pair<Shape, Shape> Next() {
    const Shape a = AnyShape();
    Shape b = AnyShape();
    const std::size_t edge = Below(4);
    for (std::size_t shared = Below(3); shared > 0; --shared) {
      b[shared] = a[(edge + shared) % 4];
      if (Below(4) == 0) {  // almost
        b[shared].x += Uniform(-0.03, 0.03);
      }
    }
    return {a, b};
  }

 private:
  Shape AnyShape() {
    const double x = Uniform(2, kSide - 2);
    const double y = Uniform(2, kSide - 2);
    const double angle = Uniform(0, 6.28);
    const double turn = Below(2) == 0 ? 1.57 : -1.57;
    Shape shape{};
    for (std::size_t corner = 0; corner < shape.size(); ++corner) {
      const double at = angle + turn * static_cast<double>(corner) + Uniform(-0.5, 0.5);
      const double radius = Uniform(0.5, 5);
      shape[corner] = {Place(x + radius * std::cos(at)), Place(y + radius * std::sin(at))};
    }
    if (Below(5) == 0) {
      shape[3] = shape[2];
    }
    return shape;
  }

  double Place(double place) {
    const double inside = std::min(std::max(place, 0.0), 1.0 * kSide);
    return Below(3) == 0 ? std::floor(inside) + 0.5 : inside;
  }

  std::size_t Below(std::size_t limit) { return random_() % limit; }
  double Uniform(double low, double high) {
    return low + (high - low) * static_cast<double>(random_()) / 4294967296.0;
  }

  std::mt19937 random_;
};

TEST_F(ContestedPieces, AreAllThatCoverAPixelTogether) {
  RandomPairs pairs(1);
  int shared = 0;
  int proved = 0;
  for (int pair = 0; pair < 20000; ++pair) {
    const auto [a, b] = pairs.Next();
    const Meeting meeting = Meet(a, b);
    const Flags contested = Contested({a, b});
    shared += meeting.share ? 1 : 0;
    proved += contested == Flags{false, false} ? 1 : 0;
    ASSERT_TRUE(contested[0] || !(meeting.share || meeting.twice[0])) << pair;
    ASSERT_TRUE(contested[1] || !(meeting.share || meeting.twice[1])) << pair;
  }
  EXPECT_GT(shared, 500);
  EXPECT_GT(proved, 500);
}

}  // namespace
