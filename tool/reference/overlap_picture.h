#pragma once

#include <functional>
#include <vector>

#include "base/image/picture.h"
#include "tool/reference/overlap.h"
#include "tool/reference/overlap_pixel.h"

/// \file
/// Whole frames as the reference model draws them.

namespace tarvo {

/// Calls `visit` for every pixel of the frame, row by row, with the fragments at its centre,
/// deepest first.
void ForEachPixel(const Overlap& overlap,
                  const std::function<void(int x, int y, const std::vector<Fragment>&)>& visit);

struct OverlapPicture {
  Picture picture;
  /// One entry a pixel, row by row. False where two correct renderers may disagree: closer than
  /// kEdgeMargin to the edge of a piece, or where an owner depends on an alpha close to one half.
  std::vector<bool> comparable;
};

/// What the frame should look like.
OverlapPicture DrawOverlap(const Overlap& overlap);

}  // namespace tarvo
