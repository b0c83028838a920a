#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "base/geometry/quad.h"
#include "base/image/colour.h"
#include "base/image/picture.h"
#include "tarvo/companion.h"
#include "tool/rig/scene.h"

/// \file
/// The reference model of how the pieces of a rig overlap: their depth, their order, and what
/// covers a point. It shares nothing with the plug-in but the meaning of the records and of the
/// sliders, so that each can be checked against the other. Depths are doubles and the sort is the
/// plug-in's quicksort step by step, because equal depths are ordered by its exchanges alone.
/// Finding the fragments of a point costs a look at every piece.

namespace tarvo {

/// Depth units of a Z of 1: far more than the ordinals of bones add up to.
inline constexpr double kDepthPerZ = 1e6;

/// One bone as its companion and its sliders describe it. An image without pixels was never
/// sent.
struct OverlapBone {
  std::string name;
  std::vector<PieceQuad> pieces;
  Picture imageA;
  Picture imageB;
  double opacityA = 1.0;
  double opacityB = 1.0;
  double startZ = 0.0;
  double endZ = 0.0;
};

/// The frame: its size in pixels, and how layer pixels at full resolution reach it.
struct OverlapView {
  int width = 0;
  int height = 0;
  double scaleX = 1.0;
  double scaleY = 1.0;
  double originX = 0.0;  ///< column at which layer pixel (0, 0) lies
  double originY = 0.0;
  bool exact = false;  ///< "Fast transparency" is off
};

/// A piece, transformed into the frame.
struct PlacedPiece {
  std::size_t bone = 0;   ///< bone number from 0
  std::size_t index = 0;  ///< in its bone's list
  ImageChoice from = ImageChoice::kA;
  double t = 0.0;
  double ownDepth = 0.0;  ///< of its bone's Z alone, in millionths
  double depth = 0.0;     ///< with the bone's number counted in; lower is nearer to the viewer
  QuadCorners corners{};  ///< in frame pixels
  QuadCorners texture{};  ///< in image pixels
};

/// Why one of two pieces is in front of the other.
enum class Precedence {
  kDepth,       ///< its bone's Z, at its place along the bone, is lower
  kBoneNumber,  ///< the same Z; its bone has the higher number
  kSort,        ///< the same depth to the last bit: where the sort's exchanges left it
};

/// What one piece shows at a point: its image's colour, straight, without the bone's opacity.
struct Fragment {
  std::size_t piece = 0;  ///< index into Overlap::Pieces()
  Colour sample{};
};

/// The pieces of a frame in the order of their depth.
///
/// A depth, in doubles, is Z times a million, mixed between the bone's two ends by the piece's
/// place along it, minus 0.0001 times the bone's number; where the two ends have the same Z, the
/// end's counts as 0.0001 less. Bones are gathered by number, pieces in their bone's order.
/// Pieces that name no image, or one that was never sent, are left out.
class Overlap {
 public:
  /// The bone at index o counts as bone number o. REQUIRES: pieces are convex.
  Overlap(std::vector<OverlapBone> bones, const OverlapView& view);

  [[nodiscard]] const std::vector<OverlapBone>& Bones() const { return bones_; }
  [[nodiscard]] const OverlapView& View() const { return view_; }
  /// In the order of drawing: deepest first.
  [[nodiscard]] const std::vector<PlacedPiece>& Pieces() const { return pieces_; }

  [[nodiscard]] const Picture& ImageOf(const PlacedPiece& piece) const;
  [[nodiscard]] double OpacityOf(const PlacedPiece& piece) const;
  /// What a piece shows at a point of the frame; nothing outside of it.
  [[nodiscard]] std::optional<Colour> ColourAt(const PlacedPiece& piece, Point at) const;
  /// All that covers a point of the frame, deepest first.
  [[nodiscard]] std::vector<Fragment> At(Point place) const;

 private:
  void Gather(std::size_t number);

  std::vector<OverlapBone> bones_;
  OverlapView view_;
  std::vector<PlacedPiece> pieces_;
};

/// Why `front` is drawn after `behind`. REQUIRES: it is.
Precedence WhyInFront(const PlacedPiece& front, const PlacedPiece& behind);

}  // namespace tarvo
