#pragma once

#include <array>
#include <optional>
#include <string>

#include "base/image/picture.h"
#include "tool/reference/overlap.h"

namespace tarvo {

/// What to show of the overlap.
enum class Visualization {
  kBones,   ///< outlines of the bones over the frame, and their numbers
  kPieces,  ///< outlines of the pieces over the frame, numbered from the front
  kDepth,   ///< false colours by the depth of what is seen, with a scale
  kOwner,   ///< false colours by the piece that owns the pixel: the nearest half-opaque one
};

/// The visualization of one of kVisualizationNames; none for any other text.
std::optional<Visualization> ReadVisualization(const std::string& text);
inline constexpr std::array kVisualizationNames = {"bones", "pieces", "depth", "owner"};

/// A frame with a visualization of its overlap in place of it or on it; of the frame's size. The
/// legend is in the lower left corner of what the layer's frame and the picture share, if it
/// leaves half of the picture free; the layer is `layerWidth` x `layerHeight` frame pixels large.
Picture Show(Visualization visualization, const Picture& frame, const Overlap& overlap,
             int layerWidth, int layerHeight);

}  // namespace tarvo
