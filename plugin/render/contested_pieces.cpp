#include "plugin/render/contested_pieces.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "plugin/render/outline.h"

namespace plugin {
namespace {

/// Pixels beyond its outline where a piece may still be drawn, by rounding.
constexpr double kOverdraw = 1.0 / 128.0;
/// What a shape covers of one direction.
struct Span {
  double low = std::numeric_limits<double>::infinity();
  double high = -std::numeric_limits<double>::infinity();

  void Include(double place) {
    low = std::min(low, place - kClearance);
    high = std::max(high, place + kClearance);
  }
  [[nodiscard]] bool Meets(const Span& other) const {
    return low <= other.high && other.low <= high;
  }
};

/// One piece of an image. What it covers is known once the image's direction is.
struct Shape {
  DrawPiece* piece;
  Outline outline;
  Span along{};   ///< in the direction in which the image's pieces are swept
  Span across{};  ///< square to it
};

Corners CornersOf(const Frame& frame, const PieceQuad& quad) {
  Corners corners{};
  for (std::size_t corner = 0; corner < corners.size(); ++corner) {
    corners[corner] = {static_cast<float>(quad.corners[corner][0] * frame.scaleX),
                       static_cast<float>(quad.corners[corner][1] * frame.scaleY)};
  }
  return corners;
}

Point TexelAt(const PieceQuad& quad, std::size_t corner) {
  return {quad.texCoords[corner][0], quad.texCoords[corner][1]};
}

/// Whether some texture coordinate comes within a texel of the image's border, or is no number.
bool ReachesTheBorder(const PieceQuad& quad, const SlotImage& image) {
  for (std::size_t corner = 0; corner < 4; ++corner) {
    const Point texel = TexelAt(quad, corner);
    const bool isInside = texel.x >= 1.0 && texel.x <= image.width - 1.0 && texel.y >= 1.0 &&
                          texel.y <= image.height - 1.0;
    if (!isInside) {
      return true;
    }
  }
  return false;
}

/// Whether texture coordinates change so fast over one of the triangles that a quadrilateral may be
/// cut into that they leave their corners' by a texel within the overdraw.
bool IsSteep(const Corners& corners, const PieceQuad& quad) {
  for (std::size_t first = 0; first < 4; ++first) {
    const std::size_t second = (first + 1) % 4;
    const std::size_t third = (first + 2) % 4;
    const Point b = corners[second] - corners[first];
    const Point c = corners[third] - corners[first];
    const Point texelB = TexelAt(quad, second) - TexelAt(quad, first);
    const Point texelC = TexelAt(quad, third) - TexelAt(quad, first);
    const auto squaredGradient = [&](double atB, double atC) {  // times twice the area, squared
      return SquaredLength({atB * c.y - atC * b.y, atC * b.x - atB * c.x});
    };
    const double steepest =
        std::max(squaredGradient(texelB.x, texelC.x), squaredGradient(texelB.y, texelC.y));
    const double twiceArea = Cross(b, c);
    if (twiceArea != 0.0 && steepest * kOverdraw * kOverdraw > twiceArea * twiceArea) {
      return true;
    }
  }
  return false;
}

/// The pieces of one image, without those that lie too far away to tell where.
struct ImageShapes {
  std::vector<Shape> shapes;
  bool hasFarPieces = false;
};

std::vector<ImageShapes> ShapesByImage(Frame& frame, double farthest) {
  std::vector<ImageShapes> images(frame.ImageCount());
  for (DrawPiece& piece : frame.drawList) {
    ImageShapes& image = images[Frame::ImageIndex(piece)];
    const Corners corners = CornersOf(frame, *piece.quad);
    if (!AreNear(corners, farthest)) {
      piece.isContested = image.hasFarPieces = true;
      continue;
    }
    image.shapes.push_back({.piece = &piece, .outline = OutlineOf(corners)});
    piece.isContested = image.shapes.back().outline.turn == 0.0 ||
                        ReachesTheBorder(*piece.quad, frame.ImageOf(piece)) ||
                        IsSteep(corners, *piece.quad);
  }
  return images;
}

/// The direction in which the pieces' middles lie furthest apart, of length 1: the principal axis
/// of their covariance. Along a limb its pieces then follow one another.
Point DirectionOf(const std::vector<Shape>& shapes) {
  Point sum{};
  Point squares{};
  double products = 0.0;
  for (const Shape& shape : shapes) {
    const Corners& corners = shape.outline.corners;
    const Point middle{corners[0].x + corners[2].x, corners[0].y + corners[2].y};
    sum = {sum.x + middle.x, sum.y + middle.y};
    squares = {squares.x + middle.x * middle.x, squares.y + middle.y * middle.y};
    products += middle.x * middle.y;
  }
  const auto count = static_cast<double>(shapes.size());
  const double difference = squares.x - squares.y - (sum.x * sum.x - sum.y * sum.y) / count;
  const double angle = 0.5 * std::atan2(2.0 * (products - sum.x * sum.y / count), difference);
  return {std::cos(angle), std::sin(angle)};
}

void FindSpans(std::vector<Shape>& shapes) {
  const Point direction = DirectionOf(shapes);
  for (Shape& shape : shapes) {
    for (const Point& corner : shape.outline.corners) {
      shape.along.Include(direction.x * corner.x + direction.y * corner.y);
      shape.across.Include(Cross(direction, corner));
    }
  }
}

/// The shapes that a sweep has met and not yet passed.
class ActiveShapes {
 public:
  /// Marks what may share a pixel with the shape, and the shape, which is then active too.
  void Meet(const Shape& shape) {
    MeetFree(shape);
    shape.piece->isContested = shape.piece->isContested || MeetsContested(shape);
    (shape.piece->isContested ? contested_ : free_).push_back(&shape);
  }

 private:
  static bool Meets(const Shape& shape, const Shape& other) {
    return shape.across.Meets(other.across) && MayShareAPixel(shape.outline, other.outline);
  }

  /// Marks all that it meets, moves what has become contested, and forgets what the sweep has
  /// passed.
  void MeetFree(const Shape& shape) {
    std::erase_if(free_, [&](const Shape* other) {
      if (other->along.high < shape.along.low) {
        return true;
      }
      if (!Meets(shape, *other)) {
        return false;
      }
      shape.piece->isContested = other->piece->isContested = true;
      contested_.push_back(other);
      return true;
    });
  }

  /// Looks at the latest first, which of a pile of pieces is enough, and forgets what the sweep has
  /// passed where it had to look at all.
  bool MeetsContested(const Shape& shape) {
    const auto isPassed = [&](const Shape* other) { return other->along.high < shape.along.low; };
    const bool meets = std::any_of(contested_.rbegin(), contested_.rend(), [&](const Shape* other) {
      return !isPassed(other) && Meets(shape, *other);
    });
    if (!meets) {
      std::erase_if(contested_, isPassed);
    }
    return meets;
  }

  std::vector<const Shape*> free_;
  std::vector<const Shape*> contested_;
};

void MarkPiecesThatMeet(std::vector<Shape>& shapes) {
  FindSpans(shapes);
  std::vector<const Shape*> inOrder;
  inOrder.reserve(shapes.size());
  for (const Shape& shape : shapes) {
    inOrder.push_back(&shape);
  }
  std::ranges::sort(inOrder, {}, [](const Shape* shape) { return shape->along.low; });
  ActiveShapes active;
  for (const Shape* const shape : inOrder) {
    active.Meet(*shape);
  }
}

/// Pixels from the layer's origin up to which corners are proved to keep their places; below 0
/// where none do.
double FarthestProved(const Frame& frame, int subpixelBits) {
  const auto isBeyond = [](A_long side) { return side > kFarthestProved; };
  if (subpixelBits < kSubpixelBits || isBeyond(frame.outWidth) || isBeyond(frame.outHeight)) {
    return -1.0;
  }
  const PF_InData& in = frame.in;
  const auto offset = [](double output, double source) {
    return std::abs(output) + std::abs(source);
  };
  return kFarthestProved - std::max(offset(in.output_origin_x, in.pre_effect_source_origin_x),
                                    offset(in.output_origin_y, in.pre_effect_source_origin_y));
}

void MarkAll(std::vector<Shape>& shapes) {
  for (Shape& shape : shapes) {
    shape.piece->isContested = true;
  }
}

}  // namespace

void MarkContestedPieces(Frame& frame, int subpixelBits) {
  for (ImageShapes& image : ShapesByImage(frame, FarthestProved(frame, subpixelBits))) {
    if (image.hasFarPieces) {
      MarkAll(image.shapes);
    } else if (!image.shapes.empty()) {
      MarkPiecesThatMeet(image.shapes);
    }
  }
}

}  // namespace plugin
