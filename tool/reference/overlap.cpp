#include "tool/reference/overlap.h"

#include <iterator>
#include <utility>

namespace tarvo {
namespace {

constexpr double kLeastFall = 1e-4;  // Z, from start to end of a bone
constexpr double kDepthPerBone = 1e-4;

/// Depth along one bone, its number not counted in.
double OwnDepth(const OverlapBone& bone, double t) {
  const double start = bone.startZ;
  const double end = bone.endZ == start ? start - kLeastFall : bone.endZ;
  return start * kDepthPerZ * (1.0 - t) + end * kDepthPerZ * t;
}

std::optional<ImageChoice> ChoiceOf(const PieceQuad& quad) {
  switch (quad.imageSelect) {
    case TARVO_IMAGE_A:
      return ImageChoice::kA;
    case TARVO_IMAGE_B:
      return ImageChoice::kB;
    default:
      return std::nullopt;
  }
}

/// From coordinate(corner, axis): a piece's record is packed, so that only values can leave it.
template <typename Coordinate>
QuadCorners ToCorners(Coordinate coordinate) {
  QuadCorners corners;
  for (std::size_t i = 0; i < corners.size(); ++i) {
    corners.at(i) = {coordinate(i, 0), coordinate(i, 1)};
  }
  return corners;
}

QuadCorners Placed(QuadCorners corners, const OverlapView& view) {
  for (Point& corner : corners) {
    corner = {corner.x * view.scaleX + view.originX, corner.y * view.scaleY + view.originY};
  }
  return corners;
}

/// Sorts [lo, hi] by falling depth. Equal depths have no order of their own: they end where these
/// steps leave them. The pivot is the middle entry; from either end the first entries that are not
/// strictly on their side of it change places, equal ones too; then both parts are sorted.
void SortByFallingDepth(std::vector<PlacedPiece>& pieces, std::ptrdiff_t lo, std::ptrdiff_t hi) {
  const auto at = [&](std::ptrdiff_t i) -> PlacedPiece& {
    return pieces[static_cast<std::size_t>(i)];
  };
  const double pivot = at((lo + hi) / 2).depth;
  std::ptrdiff_t left = lo;
  std::ptrdiff_t right = hi;
  while (left <= right) {
    while (at(left).depth > pivot) {
      ++left;
    }
    while (at(right).depth < pivot) {
      --right;
    }
    if (left <= right) {
      std::swap(at(left++), at(right--));
    }
  }
  if (lo < right) {
    SortByFallingDepth(pieces, lo, right);
  }
  if (left < hi) {
    SortByFallingDepth(pieces, left, hi);
  }
}

}  // namespace

Overlap::Overlap(std::vector<OverlapBone> bones, const OverlapView& view)
    : bones_(std::move(bones)), view_(view) {
  for (std::size_t number = 0; number < bones_.size(); ++number) {
    Gather(number);
  }
  if (!pieces_.empty()) {
    SortByFallingDepth(pieces_, 0, std::ssize(pieces_) - 1);
  }
}

void Overlap::Gather(std::size_t number) {
  const OverlapBone& bone = bones_[number];
  for (std::size_t i = 0; i < bone.pieces.size(); ++i) {
    const PieceQuad& quad = bone.pieces[i];
    const auto from = ChoiceOf(quad);
    if (!from) {
      continue;
    }
    PlacedPiece piece{.bone = number, .index = i, .from = *from, .t = quad.boneT};
    if (ImageOf(piece).pixels.empty()) {
      continue;
    }
    piece.ownDepth = OwnDepth(bone, piece.t);
    piece.depth = piece.ownDepth - kDepthPerBone * static_cast<double>(number);
    const auto corner = [&](std::size_t c, int axis) -> double { return quad.corners[c][axis]; };
    const auto texture = [&](std::size_t c, int axis) -> double { return quad.texCoords[c][axis]; };
    piece.corners = Placed(ToCorners(corner), view_);
    piece.texture = ToCorners(texture);
    pieces_.push_back(piece);
  }
}

const Picture& Overlap::ImageOf(const PlacedPiece& piece) const {
  const OverlapBone& bone = bones_[piece.bone];
  return piece.from == ImageChoice::kA ? bone.imageA : bone.imageB;
}

double Overlap::OpacityOf(const PlacedPiece& piece) const {
  const OverlapBone& bone = bones_[piece.bone];
  return piece.from == ImageChoice::kA ? bone.opacityA : bone.opacityB;
}

std::optional<Colour> Overlap::ColourAt(const PlacedPiece& piece, Point at) const {
  const auto texture = TextureAt(piece.corners, piece.texture, at);
  return texture ? std::optional(Sample(ImageOf(piece), *texture)) : std::nullopt;
}

std::vector<Fragment> Overlap::At(Point place) const {
  std::vector<Fragment> fragments;
  for (std::size_t i = 0; i < pieces_.size(); ++i) {
    if (const auto sample = ColourAt(pieces_[i], place)) {
      fragments.push_back({i, *sample});
    }
  }
  return fragments;
}

Precedence WhyInFront(const PlacedPiece& front, const PlacedPiece& behind) {
  if (front.depth == behind.depth) {
    return Precedence::kSort;
  }
  return front.ownDepth == behind.ownDepth ? Precedence::kBoneNumber : Precedence::kDepth;
}

}  // namespace tarvo
