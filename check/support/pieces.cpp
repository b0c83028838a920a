#include "check/support/pieces.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <random>

namespace check {
namespace {

using tarvo::Picture;

/// Numbers that are the same on every system, which the standard distributions do not promise.
class SeededRandom {
 public:
  explicit SeededRandom(std::uint32_t seed) : generator_(seed) {}

  double Between(double least, double greatest) {
    return least + (greatest - least) * (static_cast<double>(generator_()) / 4294967296.0);
  }

 private:
  std::mt19937 generator_;
};

/// Four points of a piece, which is packed: they are copied, not referred to.
void SetRectangle(void* points, const Box& box) {
  const double right = box.left + box.width;
  const double bottom = box.top + box.height;
  const double corners[4][2] = {
      {box.left, box.top}, {right, box.top}, {right, bottom}, {box.left, bottom}};
  std::memcpy(points, corners, sizeof corners);
}

/// A part of the image, one pixel off its border at least.
Box RandomCut(SeededRandom& random, int imageWidth, int imageHeight) {
  const double width = random.Between(0.3, 0.8) * (imageWidth - 2);
  const double height = random.Between(0.3, 0.8) * (imageHeight - 2);
  return {.left = random.Between(1, imageWidth - 1 - width),
          .top = random.Between(1, imageHeight - 1 - height),
          .width = width,
          .height = height};
}

PieceQuad WarpedPiece(SeededRandom& random, const Box& area, const Box& cut,
                      std::uint32_t imageSelect) {
  // Corners on a circle, each within its own eighth turn to either side: always convex.
  PieceQuad piece = Piece(area, cut, random.Between(0, 1), imageSelect);
  const double radius = random.Between(0.15, 0.35) * std::min(area.width, area.height);
  const double x = random.Between(area.left + radius, area.left + area.width - radius);
  const double y = random.Between(area.top + radius, area.top + area.height - radius);
  const double turn = random.Between(0, 6.28);
  for (int c = 0; c < 4; ++c) {
    const double angle = turn + 1.5708 * c + random.Between(-0.35, 0.35);
    piece.corners[c][0] = x + radius * std::cos(angle);
    piece.corners[c][1] = y + radius * std::sin(angle);
  }
  return piece;
}

std::uint8_t Wave(double phase) {
  return static_cast<std::uint8_t>(std::lround(128 + 110 * std::sin(phase)));
}

}  // namespace

PieceQuad Piece(const Box& place, const Box& cut, double boneT, std::uint32_t imageSelect) {
  PieceQuad piece{};
  SetRectangle(&piece.corners, place);
  SetRectangle(&piece.texCoords, cut);
  piece.boneT = boneT;
  piece.imageSelect = imageSelect;
  return piece;
}

std::vector<PieceQuad> WarpedPieces(std::uint32_t seed, int count, const Box& area, int imageWidth,
                                    int imageHeight, std::uint32_t imageSelect) {
  SeededRandom random(seed);
  std::vector<PieceQuad> pieces;
  for (int i = 0; i < count; ++i) {
    const Box cut = RandomCut(random, imageWidth, imageHeight);
    pieces.push_back(WarpedPiece(random, area, cut, imageSelect));
  }
  return pieces;
}

CompanionSlot RecordOf(const std::vector<PieceQuad>& pieces, std::int32_t place) {
  CompanionSlot record{};
  record.quads.first = pieces.data();
  record.quads.last = record.quads.reservedEnd = pieces.data() + pieces.size();
  record.effectIndex = place;
  return record;
}

Picture Pattern(int width, int height, std::uint32_t seed, std::uint8_t alpha) {
  SeededRandom random(seed);
  const double red = random.Between(0, 6);
  const double green = random.Between(0, 6);
  const double blue = random.Between(0, 6);
  Picture picture(width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      picture.At(x, y) = {.red = Wave(red + 0.21 * x + 0.05 * y),
                          .green = Wave(green + 0.17 * y),
                          .blue = Wave(blue + 0.11 * (x - y)),
                          .alpha = alpha};
    }
  }
  return picture;
}

Picture SoftPattern(int width, int height, std::uint32_t seed) {
  Picture picture = Pattern(width, height, seed);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const double across = (x + 0.5) / width * 2 - 1;
      const double down = (y + 0.5) / height * 2 - 1;
      const double alpha = std::clamp(1.4 - 1.4 * std::hypot(across, down), 0.0, 1.0);
      picture.At(x, y).alpha = static_cast<std::uint8_t>(std::lround(alpha * 255));
    }
  }
  return picture;
}

}  // namespace check
