#include "bench/bench_cases.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <random>
#include <string>

#include "standin/scene_file.h"

namespace bench {
namespace {

constexpr Canvas kFullHd{.width = 1920, .height = 1080};

/// Numbers that are the same everywhere, which the library's distributions are not.
class Dice {
 public:
  /// Evenly between the two.
  double Between(double low, double high) {
    return low + (high - low) * static_cast<double>(generator_()) / 4294967296.0;
  }

 private:
  std::mt19937 generator_;
};

/// What a field of small pieces is made of; lengths in pixels.
struct Field {
  Canvas canvas;
  int bones;
  int piecesPerBone;
  int imageSide;
  double pieceSide;
};

/// A disc with a soft edge on nothing, in a colour of its own.
standin::Picture SoftDisc(int side, int number) {
  standin::Picture picture(side, side);
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

/// A turned square that shows its whole image, somewhere inside the canvas.
standin::Piece SmallPiece(const Field& field, Dice& dice) {
  const double reach = field.pieceSide * std::numbers::sqrt2 / 2.0;
  const double x = dice.Between(reach, field.canvas.width - reach);
  const double y = dice.Between(reach, field.canvas.height - reach);
  const double turn = dice.Between(0.0, 2.0 * std::numbers::pi);
  const double least = 1.0;
  const double most = field.imageSide - 1.0;
  standin::Piece piece;
  for (std::size_t corner = 0; corner < piece.corners.size(); ++corner) {
    const double angle = turn + static_cast<double>(corner) * std::numbers::pi / 2.0;
    piece.corners[corner] = {x + reach * std::cos(angle), y + reach * std::sin(angle)};
  }
  piece.texCoords = {{{least, least}, {most, least}, {most, most}, {least, most}}};
  piece.t = dice.Between(0.0, 1.0);
  return piece;
}

/// Every bone has an image of its own and runs through the whole depth, so that neighbours in the
/// order of drawing seldom share an image.
standin::Scene MakeField(const Field& field) {
  standin::Scene scene;
  scene.width = field.canvas.width;
  scene.height = field.canvas.height;
  Dice dice;
  for (std::size_t number = 0; number < static_cast<std::size_t>(field.bones); ++number) {
    const std::string name = std::to_string(number + 1);
    scene.images.push_back({name, SoftDisc(field.imageSide, static_cast<int>(number))});
    standin::Bone bone;
    bone.name = "Bone " + name;
    bone.image = number;
    bone.z = {dice.Between(50.0, 100.0), dice.Between(-100.0, -50.0)};
    for (int piece = 0; piece < field.piecesPerBone; ++piece) {
      bone.pieces.push_back(SmallPiece(field, dice));
    }
    scene.bones.push_back(bone);
    scene.stack.push_back({standin::StackEntry::Kind::kBone, number});
  }
  scene.stack.push_back({standin::StackEntry::Kind::kRenderer, 0});
  return scene;
}

standin::Scene Wave() { return standin::ReadScene(TARVO_EXAMPLES "/wave/wave.json"); }

standin::Scene Small2000() {
  return MakeField(
      {.canvas = kFullHd, .bones = 25, .piecesPerBone = 80, .imageSide = 64, .pieceSide = 40.0});
}

}  // namespace

const std::vector<BenchCase>& BenchCases() {
  static const std::vector<BenchCase> cases{
      {.name = "wave", .makeScene = Wave, .canvas = std::nullopt},
      {.name = "small_2000", .makeScene = Small2000, .canvas = kFullHd},
  };
  return cases;
}

}  // namespace bench
