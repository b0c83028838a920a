#include "bench/rigs.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <random>

#include "tool/player/scene_player.h"
#include "tool/rig/file/scene_file.h"

namespace bench {
namespace {

constexpr int kLimbImageSide = 512;
constexpr int kFieldImageSide = 64;
constexpr int kCarpetColumns = 20;
constexpr int kCarpetRows = kCarpetPieces / kCarpetColumns;

/// Numbers that are the same everywhere, which the library's distributions are not.
class RandomSource {
 public:
  /// Evenly between the two.
  double Between(double low, double high) {
    return low + (high - low) * static_cast<double>(generator_()) / 4294967296.0;
  }

 private:
  std::mt19937 generator_;
};

/// A rectangle along the axes of an image, in its pixels.
struct Cut {
  double left;
  double top;
  double right;
  double bottom;
};

/// A turned rectangle in the frame, in pixels.
struct Place {
  double x;  ///< of the centre
  double y;
  double width;
  double height;
  double turn;  ///< radians
};

/// Sets a corner to so many pixels from the centre of a place, along it and across.
void PutCorner(PieceQuad& piece, std::size_t corner, const Place& place, double along,
               double across) {
  piece.corners[corner][0] = place.x + along * std::cos(place.turn) - across * std::sin(place.turn);
  piece.corners[corner][1] = place.y + along * std::sin(place.turn) + across * std::cos(place.turn);
}

PieceQuad Piece(const Place& place, const Cut& cut, double boneT) {
  PieceQuad piece{};
  const double u[4] = {cut.left, cut.right, cut.right, cut.left};
  const double v[4] = {cut.top, cut.top, cut.bottom, cut.bottom};
  for (std::size_t corner = 0; corner < 4; ++corner) {
    PutCorner(piece, corner, place, (u[corner] == cut.left ? -0.5 : 0.5) * place.width,
              (v[corner] == cut.top ? -0.5 : 0.5) * place.height);
    piece.texCoords[corner][0] = u[corner];
    piece.texCoords[corner][1] = v[corner];
  }
  piece.boneT = boneT;
  return piece;
}

/// A disc with a soft edge on nothing, in a colour of its own.
tarvo::Picture SoftDisc(int side, int number) {
  tarvo::Picture picture(side, side);
  const double radius = 0.5 * side;
  for (int y = 0; y < side; ++y) {
    for (int x = 0; x < side; ++x) {
      const double inside = 1.0 - std::hypot(x + 0.5 - radius, y + 0.5 - radius) / radius;
      const auto alpha = static_cast<std::uint8_t>(std::clamp(inside * 4.0, 0.0, 1.0) * 255.0);
      picture.At(x, y) = {static_cast<std::uint8_t>(40 + 8 * number),
                          static_cast<std::uint8_t>(x * 255 / side),
                          static_cast<std::uint8_t>(y * 255 / side), alpha};
    }
  }
  return picture;
}

/// The part of the image that each slice of a limb shows, and where it lies along the limb.
class Slicer {
 public:
  Slicer(Slicing slicing, int slices)
      : slicing_(slicing), slices_(slices), step_((kLimbImageSide - 2.0) / slices) {}

  [[nodiscard]] Cut CutOf(int slice) const {
    const double reach = slicing_ == Slicing::kOverlapping ? 1.25 : 1.0;
    return {.left = PlaceOf(slice),
            .top = 1.0,
            .right = std::min(PlaceOf(slice + reach), kLimbImageSide - 1.0),
            .bottom = kLimbImageSide - 1.0};
  }

  /// Behind the fold it goes back.
  [[nodiscard]] double Along(double place) const {
    const double fold = PlaceOf(std::round(0.625 * slices_));
    return slicing_ == Slicing::kFolded && place > fold ? 2.0 * fold - place : place;
  }

 private:
  [[nodiscard]] double PlaceOf(double slice) const { return 1.0 + slice * step_; }

  Slicing slicing_;
  int slices_;
  double step_;  ///< pixels of the image
};

/// Neighbours that lie side by side share the corners between them to the last bit.
std::vector<PieceQuad> Slices(const Place& limb, Slicing slicing, int slices) {
  const Slicer slicer(slicing, slices);
  std::vector<PieceQuad> pieces;
  const double scale = limb.width / kLimbImageSide;
  for (int slice = 0; slice < slices; ++slice) {
    PieceQuad piece = Piece(limb, slicer.CutOf(slice), (slice + 0.5) / slices);
    for (const std::size_t corner : {0U, 1U, 2U, 3U}) {
      PutCorner(piece, corner, limb,
                (slicer.Along(piece.texCoords[corner][0]) - 0.5 * kLimbImageSide) * scale,
                (piece.texCoords[corner][1] - 0.5 * kLimbImageSide) * scale);
    }
    pieces.push_back(piece);
  }
  return pieces;
}

}  // namespace

std::string InWords(int images, int pieces) {
  const auto counted = [](int count, const std::string& what) {
    std::string digits = std::to_string(count);
    if (digits.size() > 3) {
      digits.insert(digits.size() - 3, ",");
    }
    return digits + ' ' + what + (count == 1 ? "" : "s");
  };
  return counted(images, "image") + ", " + counted(pieces, "piece");
}

Rig Limbs(FrameSize size, Slicing slicing, int slices) {
  Rig rig{.size = size, .bones = {}};
  RandomSource random;
  const double side = kLimbImageSide * static_cast<double>(size.height) / kFullHd.height;
  const double reach = side * std::numbers::sqrt2 / 2.0;
  for (int number = 0; number < kBones; ++number) {
    const Place limb{.x = random.Between(reach, size.width - reach),
                     .y = random.Between(reach, size.height - reach),
                     .width = side,
                     .height = side,
                     .turn = random.Between(0.0, 2.0 * std::numbers::pi)};
    rig.bones.push_back({.image = SoftDisc(kLimbImageSide, number),
                         .pieces = Slices(limb, slicing, slices),
                         .startZ = -1.0 * number,
                         .endZ = -1.0 * number - 1.5});
  }
  return rig;
}

Rig Sample(const std::string& name) {
  const tarvo::Scene scene = tarvo::ReadScene(TARVO_EXAMPLES "/" + name + "/" + name + ".json");
  Rig rig{.size = {scene.width, scene.height}, .bones = {}};
  for (const tarvo::Bone& bone : scene.bones) {
    const tarvo::ZPair z = bone.z.value_or(tarvo::ZPair{});
    rig.bones.push_back({.image = scene.images[bone.image].picture,
                         .pieces = tarvo::Quads(bone),
                         .startZ = z.start,
                         .endZ = z.end});
  }
  return rig;
}

Rig Field(int pieces, double coverage) {
  Rig rig{.size = kFullHd, .bones = std::vector<Bone>(kBones)};
  RandomSource random;
  const double side = std::sqrt(coverage * kFullHd.width * kFullHd.height / pieces);
  const double reach = side * std::numbers::sqrt2 / 2.0;
  for (int number = 0; number < kBones; ++number) {
    Bone& bone = rig.bones[static_cast<std::size_t>(number)];
    bone = {.image = SoftDisc(kFieldImageSide, number),
            .pieces = {},
            .startZ = random.Between(50.0, 100.0),
            .endZ = random.Between(-100.0, -50.0)};
    for (int piece = 0; piece < pieces / kBones; ++piece) {
      bone.pieces.push_back(Piece({.x = random.Between(reach, kFullHd.width - reach),
                                   .y = random.Between(reach, kFullHd.height - reach),
                                   .width = side,
                                   .height = side,
                                   .turn = random.Between(0.0, 2.0 * std::numbers::pi)},
                                  {1.0, 1.0, kFieldImageSide - 1.0, kFieldImageSide - 1.0},
                                  random.Between(0.0, 1.0)));
    }
  }
  return rig;
}

Rig Carpet() {
  Bone bone{.image = SoftDisc(kLimbImageSide, 0), .pieces = {}, .startZ = 1.0, .endZ = -1.0};
  constexpr double kColumn = (kFullHd.width - 40.0) / kCarpetColumns;
  constexpr double kRow = (kFullHd.height - 40.0) / kCarpetRows;
  const double cutWidth = (kLimbImageSide - 2.0) / kCarpetColumns;
  const double cutHeight = (kLimbImageSide - 2.0) / kCarpetRows;
  for (int row = 0; row < kCarpetRows; ++row) {
    for (int column = 0; column < kCarpetColumns; ++column) {
      const Cut cut{.left = 1.0 + column * cutWidth,
                    .top = 1.0 + row * cutHeight,
                    .right = 1.0 + (column + 1) * cutWidth,
                    .bottom = 1.0 + (row + 1) * cutHeight};
      bone.pieces.push_back(Piece({.x = 20.0 + (column + 0.5) * kColumn,
                                   .y = 20.0 + (row + 0.5) * kRow,
                                   .width = 1.2 * kColumn,
                                   .height = 1.2 * kRow,
                                   .turn = 0.0},
                                  cut, (column + 1.0 * kCarpetColumns * row) / kCarpetPieces));
    }
  }
  return {.size = kFullHd, .bones = {bone}};
}

}  // namespace bench
