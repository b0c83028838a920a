#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "base/geometry/point.h"
#include "base/image/picture.h"

namespace tarvo {

/// Most bones that can be active and still have sliders of their own.
inline constexpr int kBonesWithSliders = 25;

/// The greatest Z, before or behind, that a slider takes when typed.
inline constexpr double kDeepestZ = 1e9;

/// Which of a bone's two images a piece samples.
enum class ImageChoice { kA, kB };

/// A textured quadrilateral; corner i shows texture coordinate i.
struct Piece {
  std::array<Point, 4> corners;    ///< pixels of the layer at full resolution
  std::array<Point, 4> texCoords;  ///< pixels of the chosen image
  double t = 0.0;                  ///< place along the bone: 0 at its start, 1 at its end
  ImageChoice from = ImageChoice::kA;
};

struct NamedImage {
  std::string name;
  Picture picture;
};

/// Depths at the start and at the end of a bone.
struct ZPair {
  double start = 0.0;
  double end = 0.0;
};

/// One companion effect on the layer.
struct Bone {
  std::string name;  ///< group name, shown in the labels of its sliders
  bool active = true;
  std::size_t image = 0;  ///< index into Scene::images
  std::optional<std::size_t> imageB;
  double opacity = 1.0;
  double opacityB = 1.0;
  std::optional<ZPair> z;  ///< none: the sliders keep their own defaults
  std::vector<Piece> pieces;
};

/// Any other effect in the stack.
struct OtherEffect {
  std::string name;
  std::string matchName;
  bool active = true;
};

/// The entry at one position of the effect stack.
struct StackEntry {
  enum class Kind { kBone, kOther, kRenderer };

  Kind kind = Kind::kRenderer;
  std::size_t index = 0;  ///< into Scene::bones or Scene::effects
};

/// A slider's visible label and the value a user gives it.
struct Setting {
  std::string label;
  double value = 0.0;
  std::string place;  ///< where it was asked for, for complaints: "wave.json: set[\"Hand end Z\"]"
};

/// A rig on a layer, checked and complete: what a scene file says, with its images read and its
/// strips cut.
struct Scene {
  int width = 0;  ///< of the layer, in pixels
  int height = 0;
  std::vector<NamedImage> images;
  std::optional<bool> fast;  ///< none: the "Fast transparency" checkbox keeps its default
  std::vector<Setting> settings;
  std::vector<Bone> bones;
  std::vector<OtherEffect> effects;
  std::vector<StackEntry> stack;  ///< top first: every bone, every other effect, one renderer
};

}  // namespace tarvo
