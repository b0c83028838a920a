#pragma once

#include <vector>

#include "tool/reference/overlap.h"

/// \file
/// How the pieces that cover a pixel make its colour.
///
/// All pieces are drawn twice. The max pass keeps, for each channel by itself, the greatest
/// premultiplied value of any piece, in any order. The over pass composites the pieces on that
/// result from the deepest to the nearest. With "Fast transparency" off it leaves out the pieces
/// whose image has an owner here that they are not: the nearest piece of the image whose alpha is
/// at least one half.

namespace tarvo {

/// The least alpha with which a piece owns a pixel of its image.
inline constexpr double kOwningAlpha = 0.5;

/// What one piece contributes to a pixel. The sum of all `over` and `maxPass` is the pixel's
/// colour, but for the rounding to 8 bits between the passes.
struct PixelPart {
  std::size_t piece = 0;    ///< index into Overlap::Pieces()
  Colour sample{};          ///< of its image, straight
  double alpha = 0.0;       ///< the sample's, times the bone's opacity
  bool owner = false;       ///< of its image here, in exact mode
  bool composited = false;  ///< drawn in the over pass
  Colour over{};            ///< visible contribution of the over pass, premultiplied
  Colour maxPass{};  ///< visible contribution of the max pass: the channels in which it is the
                     ///< greatest
};

struct PixelBreakdown {
  std::vector<PixelPart> parts;  ///< deepest first
  Colour premultiplied{};        ///< what the pixel becomes
  /// False where an owner depends on an alpha within two steps of one half, so that two correct
  /// renderers may disagree.
  bool ownersComparable = true;
};

/// The contributions of the pieces that cover a pixel, as Overlap::At gives them.
PixelBreakdown ExplainPixel(const Overlap& overlap, const std::vector<Fragment>& fragments);

/// How far from the sides of a piece two correct renderers agree on what it covers, in pixels from
/// a pixel's centre.
inline constexpr double kEdgeMargin = 1.0;

}  // namespace tarvo
