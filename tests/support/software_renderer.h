#pragma once

#include <vector>

#include "standin/picture.h"
#include "tarvo/companion.h"

/// \file
/// A small renderer in double precision that draws what the plug-in should have drawn. It shares
/// nothing with the plug-in but the meaning of the records: it works out depth and order by itself
/// and decides by geometry, not by packed coordinates, which piece owns a pixel.

namespace support {

/// One bone as its companion describes it. An image without pixels was never sent.
struct ReferenceBone {
  std::vector<PieceQuad> pieces;
  standin::Picture imageA;
  standin::Picture imageB;
  double opacityA = 1;
  double opacityB = 1;
  double startZ = 0;
  double endZ = 0;
};

/// The frame to draw: size in pixels, and how layer pixels at full resolution reach it.
struct ReferenceFrame {
  int width = 0;
  int height = 0;
  double scaleX = 1;
  double scaleY = 1;
  double originX = 0;  ///< column at which layer pixel (0, 0) lies
  double originY = 0;
  bool exact = false;  ///< "Fast transparency" is off
};

struct ReferencePicture {
  standin::Picture picture;
  /// One entry a pixel, row by row. False where two correct renderers may disagree: closer than
  /// kEdgeMargin to the edge of a piece, or where an ownership decision hangs on an alpha that is
  /// within two steps of its threshold.
  std::vector<bool> decided;
};

/// In pixels, from a pixel's centre.
inline constexpr double kEdgeMargin = 1.0;

/// Draws the bones; the one at index o counts as bone number o. Pieces with an `imageSelect` that
/// names no image, or an image that was never sent, are not drawn.
/// REQUIRES: pieces are convex. Throws std::invalid_argument when two pieces have the same depth,
/// for then their order would not be defined.
ReferencePicture DrawInSoftware(const std::vector<ReferenceBone>& bones,
                                const ReferenceFrame& frame);

}  // namespace support
