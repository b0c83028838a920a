#include "tests/support/software_renderer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <stdexcept>

namespace support {
namespace {

using standin::Picture;
using standin::Rgba;

/// Red, green, blue, alpha from 0 to 1.
using Colour = std::array<double, 4>;
constexpr std::size_t kAlpha = 3;

struct Point {
  double x = 0;
  double y = 0;
};

/// A piece in place: corners in output pixels, its image, opacity and depth.
struct Piece {
  std::array<Point, 4> corners;
  std::array<Point, 4> texture;
  const Picture* image = nullptr;
  double opacity = 1;
  double depth = 0;
};

/// 8 bits a channel is all that a texture or a render target keeps.
double Stored(double value) { return std::floor(std::clamp(value, 0.0, 1.0) * 255 + 0.5) / 255; }

Colour Stored(Colour colour) {
  std::ranges::transform(colour, colour.begin(), [](double value) { return Stored(value); });
  return colour;
}

std::uint8_t Byte(double value) {
  return static_cast<std::uint8_t>(std::lround(Stored(value) * 255));
}

Colour Texel(const Picture& image, double column, double row) {
  const int x = std::clamp(static_cast<int>(column), 0, image.width - 1);
  const int y = std::clamp(static_cast<int>(row), 0, image.height - 1);
  const Rgba texel = image.At(x, y);
  return {texel.red / 255.0, texel.green / 255.0, texel.blue / 255.0, texel.alpha / 255.0};
}

Colour Mix(const Colour& from, const Colour& to, double share) {
  Colour mixed{};
  for (std::size_t i = 0; i < mixed.size(); ++i) {
    mixed.at(i) = from.at(i) + (to.at(i) - from.at(i)) * share;
  }
  return mixed;
}

/// Bilinear, clamped to the edge; (u, v) in image pixels, so that texel centres lie at halves.
Colour Sample(const Picture& image, Point at) {
  const double left = std::floor(at.x - 0.5);
  const double top = std::floor(at.y - 0.5);
  const double shareX = at.x - 0.5 - left;
  const double shareY = at.y - 0.5 - top;
  const Colour upper = Mix(Texel(image, left, top), Texel(image, left + 1, top), shareX);
  const Colour lower = Mix(Texel(image, left, top + 1), Texel(image, left + 1, top + 1), shareX);
  return Stored(Mix(upper, lower, shareY));
}

/// Twice the signed area of a triangle.
double Cross(Point a, Point b, Point c) {
  return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

/// The texture coordinate at a point of one of a piece's two triangles; none outside of it.
std::optional<Point> InTriangle(const Piece& piece, Point at, std::size_t i, std::size_t j,
                                std::size_t k) {
  const Point a = piece.corners.at(i);
  const Point b = piece.corners.at(j);
  const Point c = piece.corners.at(k);
  const double whole = Cross(a, b, c);
  if (whole == 0) return std::nullopt;
  const double shareA = Cross(at, b, c) / whole;
  const double shareB = Cross(a, at, c) / whole;
  const double shareC = 1 - shareA - shareB;
  if (shareA < 0 || shareB < 0 || shareC < 0) return std::nullopt;
  const Point ta = piece.texture.at(i);
  const Point tb = piece.texture.at(j);
  const Point tc = piece.texture.at(k);
  return Point{.x = ta.x * shareA + tb.x * shareB + tc.x * shareC,
               .y = ta.y * shareA + tb.y * shareB + tc.y * shareC};
}

/// A quadrilateral is two triangles that meet along the diagonal from corner 0 to corner 2.
std::optional<Point> TextureAt(const Piece& piece, Point at) {
  const auto first = InTriangle(piece, at, 0, 1, 2);
  return first ? first : InTriangle(piece, at, 0, 2, 3);
}

/// Pixels from `first` up to `last`, not included.
struct Range {
  int first = 0;
  int last = 0;
};

Range PixelsBetween(double least, double greatest, int limit) {
  return {
      .first = static_cast<int>(std::clamp(std::floor(least), 0.0, static_cast<double>(limit))),
      .last = static_cast<int>(std::clamp(std::ceil(greatest), 0.0, static_cast<double>(limit)))};
}

/// Calls visit(index, centre) for every pixel of the smallest box around the points, grown.
template <typename Points, typename Visit>
void ForEachPixelAround(const Points& points, double grow, const ReferenceFrame& frame,
                        Visit visit) {
  const auto [left, right] = std::ranges::minmax(points, {}, &Point::x);
  const auto [top, bottom] = std::ranges::minmax(points, {}, &Point::y);
  const Range columns = PixelsBetween(left.x - grow, right.x + grow, frame.width);
  const Range rows = PixelsBetween(top.y - grow, bottom.y + grow, frame.height);
  for (int y = rows.first; y < rows.last; ++y) {
    for (int x = columns.first; x < columns.last; ++x) {
      const auto index = static_cast<std::size_t>(y) * static_cast<std::size_t>(frame.width) +
                         static_cast<std::size_t>(x);
      visit(index, Point{.x = x + 0.5, .y = y + 0.5});
    }
  }
}

/// Calls visit(index, sample) for every pixel whose centre a piece covers.
template <typename Visit>
void ForEachFragment(const Piece& piece, const ReferenceFrame& frame, Visit visit) {
  ForEachPixelAround(piece.corners, 0, frame, [&](std::size_t index, Point centre) {
    if (const auto texture = TextureAt(piece, centre)) visit(index, Sample(*piece.image, *texture));
  });
}

double DistanceToSegment(Point at, Point from, Point to) {
  const Point along{.x = to.x - from.x, .y = to.y - from.y};
  const double length = along.x * along.x + along.y * along.y;
  const double reach = (at.x - from.x) * along.x + (at.y - from.y) * along.y;
  const double share = length > 0 ? std::clamp(reach / length, 0.0, 1.0) : 0.0;
  return std::hypot(at.x - from.x - share * along.x, at.y - from.y - share * along.y);
}

class Drawing {
 public:
  Drawing(const std::vector<ReferenceBone>& bones, const ReferenceFrame& frame) : frame_(frame) {
    for (std::size_t o = 0; o < bones.size(); ++o) Gather(bones[o], o);
    std::ranges::sort(pieces_, std::ranges::greater{}, &Piece::depth);
    if (std::ranges::adjacent_find(pieces_, {}, &Piece::depth) != pieces_.end()) {
      throw std::invalid_argument("two pieces have the same depth");
    }
    const auto pixels =
        static_cast<std::size_t>(frame.width) * static_cast<std::size_t>(frame.height);
    target_.resize(pixels);
    decided_.assign(pixels, true);
  }

  ReferencePicture Draw() {
    if (frame_.exact) Claim();
    for (const Piece& piece : pieces_) KeepGreatest(piece);
    for (std::size_t i = 0; i < pieces_.size(); ++i) LayOver(i);
    for (const Piece& piece : pieces_) DoubtEdges(piece);
    return {.picture = Straight(), .decided = std::move(decided_)};
  }

 private:
  void Gather(const ReferenceBone& bone, std::size_t ordinal) {
    const double start = bone.startZ;
    // Equal values fall slightly along the bone, towards its end.
    const double end = bone.endZ == start ? start - 0.0001 : bone.endZ;
    for (const PieceQuad& quad : bone.pieces) {
      if (quad.imageSelect != TARVO_IMAGE_A && quad.imageSelect != TARVO_IMAGE_B) continue;
      const bool usesA = quad.imageSelect == TARVO_IMAGE_A;
      Piece piece;
      piece.image = usesA ? &bone.imageA : &bone.imageB;
      if (piece.image->pixels.empty()) continue;
      piece.opacity = usesA ? bone.opacityA : bone.opacityB;
      piece.depth =
          1e6 * (start + (end - start) * quad.boneT) - 1e-4 * static_cast<double>(ordinal);
      for (std::size_t c = 0; c < 4; ++c) {
        piece.corners.at(c) = {.x = quad.corners[c][0] * frame_.scaleX + frame_.originX,
                               .y = quad.corners[c][1] * frame_.scaleY + frame_.originY};
        piece.texture.at(c) = {.x = quad.texCoords[c][0], .y = quad.texCoords[c][1]};
      }
      pieces_.push_back(piece);
    }
  }

  /// The front-most piece of each image that is opaque enough owns the pixel.
  void Claim() {
    constexpr double kThreshold = 0.5;
    constexpr double kDoubt = 2.0 / 255;
    for (std::size_t i = 0; i < pieces_.size(); ++i) {
      auto& owners = owners_[pieces_[i].image];
      owners.resize(target_.size(), kNobody);
      ForEachFragment(pieces_[i], frame_, [&](std::size_t pixel, const Colour& sample) {
        if (sample[kAlpha] >= kThreshold) owners[pixel] = i;  // later pieces are in front
        if (std::abs(sample[kAlpha] - kThreshold) <= kDoubt) decided_[pixel] = false;
      });
    }
  }

  [[nodiscard]] bool Owned(std::size_t piece, std::size_t pixel) const {
    if (!frame_.exact) return true;
    const std::size_t owner = owners_.at(pieces_[piece].image)[pixel];
    return owner == piece || owner == kNobody;
  }

  static Colour Premultiplied(const Colour& sample, double opacity) {
    const double alpha = sample[kAlpha] * opacity;
    return Stored(Colour{sample[0] * alpha, sample[1] * alpha, sample[2] * alpha, alpha});
  }

  /// First pass: every channel keeps the greatest value of all pieces.
  void KeepGreatest(const Piece& piece) {
    ForEachFragment(piece, frame_, [&](std::size_t pixel, const Colour& sample) {
      const Colour source = Premultiplied(sample, piece.opacity);
      Colour& below = target_[pixel];
      std::ranges::transform(source, below, below.begin(),
                             [](double a, double b) { return std::max(a, b); });
    });
  }

  /// Second pass: from back to front, each over what is there.
  void LayOver(std::size_t index) {
    const Piece& piece = pieces_[index];
    ForEachFragment(piece, frame_, [&](std::size_t pixel, const Colour& sample) {
      if (!Owned(index, pixel)) return;
      const Colour source = Premultiplied(sample, piece.opacity);
      Colour& below = target_[pixel];
      std::ranges::transform(source, below, below.begin(), [&](double above, double old) {
        return Stored(above + old * (1 - source[kAlpha]));
      });
    });
  }

  void DoubtEdges(const Piece& piece) {
    for (std::size_t c = 0; c < 4; ++c) {
      const std::array<Point, 2> edge{piece.corners.at(c), piece.corners.at((c + 1) % 4)};
      ForEachPixelAround(edge, kEdgeMargin, frame_, [&](std::size_t pixel, Point centre) {
        if (DistanceToSegment(centre, edge[0], edge[1]) < kEdgeMargin) decided_[pixel] = false;
      });
    }
  }

  [[nodiscard]] Picture Straight() const {
    Picture picture(frame_.width, frame_.height);
    std::ranges::transform(target_, picture.pixels.begin(), [](const Colour& colour) {
      const double alpha = colour[kAlpha];
      if (alpha == 0) return Rgba{};
      return Rgba{.red = Byte(colour[0] / alpha),
                  .green = Byte(colour[1] / alpha),
                  .blue = Byte(colour[2] / alpha),
                  .alpha = Byte(alpha)};
    });
    return picture;
  }

  static constexpr std::size_t kNobody = SIZE_MAX;

  ReferenceFrame frame_;
  std::vector<Piece> pieces_;  ///< the greatest depth, which is farthest back, first
  std::map<const Picture*, std::vector<std::size_t>> owners_;
  std::vector<Colour> target_;  ///< premultiplied
  std::vector<bool> decided_;
};

}  // namespace

ReferencePicture DrawInSoftware(const std::vector<ReferenceBone>& bones,
                                const ReferenceFrame& frame) {
  return Drawing(bones, frame).Draw();
}

}  // namespace support
