#pragma once

#include "plugin/scene/scene.h"
#include "sdk/effect.h"
#include "tarvo/companion.h"

namespace plugin {

/// The largest side, in pixels, of an output that the host accepts.
inline constexpr A_long kLargestSide = TARVO_LONGEST_SIDE;

/// The host's side of a frame: layer size in pixels at full resolution, denominators of the
/// resolution, and the origin of what lies before this effect.
struct LayerFrame {
  A_long width;
  A_long height;
  A_u_long downsampleX;
  A_u_long downsampleY;
  A_long sourceOriginX;
  A_long sourceOriginY;
};

/// Size of the output in pixels, and the layer's corner in it.
struct OutputExtent {
  A_long width;
  A_long height;
  PF_Point origin;
};

/// The output that encloses every piece with a margin of 5 % of the pieces' spread on each side;
/// the layer's full size if there are no pieces, whatever the resolution. Corners that are not
/// finite are left out; sizes end at 30,000 pixels, the largest the host accepts, and origins
/// saturate.
OutputExtent ComputeOutputExtent(const Scene& scene, const LayerFrame& layer);

/// Answers frame setup with the output's size and origin. Without a store the output record is left
/// as the host gave it. Always returns 0.
PF_Err FrameSetup(PF_InData& in, PF_OutData& out);

}  // namespace plugin
