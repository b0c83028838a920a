#pragma once

#include <string>
#include <vector>

#include "base/image/picture.h"
#include "tarvo/companion.h"

namespace bench {

/// Size of a frame, in pixels.
struct FrameSize {
  int width = 0;
  int height = 0;
};
inline constexpr FrameSize kFullHd{1920, 1080};

inline constexpr int kBones = 25;  ///< of limbs and fields, each with an image of its own
inline constexpr int kLimbPieces = 200;
inline constexpr int kCarpetPieces = 200;

/// As in "25 images, 2,000 pieces".
std::string InWords(int images, int pieces);

/// A bone: its image, its pieces, and the depths at its two ends.
struct Bone {
  tarvo::Picture image;
  std::vector<PieceQuad> pieces;
  double startZ = 0.0;
  double endZ = 0.0;
};

/// What is drawn: one companion for each bone, on a layer of the frame's size. Every piece is a
/// parallelogram inside the frame, so that other painters can draw it too.
struct Rig {
  FrameSize size;
  std::vector<Bone> bones;
};

/// How the slices of a limb lie: each over a quarter of the next one, edge to edge, or edge to edge
/// with the last three eighths turned back over what lies before them.
enum class Slicing { kOverlapping, kSideBySide, kFolded };

/// A limb for each bone, each of some slices of an image of 512 × 512 pixels that is shown in its
/// own size in full HD, and larger or smaller with the frame. They cover about four times the
/// frame.
Rig Limbs(FrameSize size, Slicing slicing = Slicing::kOverlapping,
          int slices = kLimbPieces / kBones);

/// The sample of this name from the folder of examples, as at its first frame. Throws
/// std::runtime_error if it cannot be read.
Rig Sample(const std::string& name);

/// `pieces` small pieces over the images of all bones, in full HD. Every bone runs through the
/// whole depth, so that neighbours in the order of drawing seldom share an image. Together the
/// pieces cover `coverage` times the frame, however many they are.
Rig Field(int pieces, double coverage);

/// Pieces of one image all over a full HD frame, each overlapping its neighbours.
Rig Carpet();

}  // namespace bench
