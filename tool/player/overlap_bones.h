#pragma once

#include <cstddef>
#include <vector>

#include "standin/host/host.h"
#include "tool/reference/overlap.h"

namespace tarvo {

/// True iff the renderer's "Fast transparency" is off.
bool IsExact(const standin::RendererInstance& renderer);

/// The active companions, from the top of the stack: bone number o at index o.
std::vector<const standin::Companion*> ActiveCompanions(const standin::Layer& layer);

/// The bones of a layer as their companions and the renderer's sliders have them now. Right
/// for a frame when every companion has sent what it holds.
std::vector<OverlapBone> BonesOn(const standin::Layer& layer,
                                 const standin::RendererInstance& renderer);

/// The view of a frame that a host rendered: its size and origin are the picture's. Where an effect
/// before the renderer has grown the layer, the request says by how much.
OverlapView ViewOf(const Picture& picture, const standin::RendererInstance& renderer,
                   const standin::FrameRequest& request = {});

/// The overlap of the pieces in the frame that a player has just rendered on this host.
/// REQUIRES: the host's layer holds one renderer, as a player makes it.
Overlap OverlapNow(const standin::Host& host, const Picture& frame, int downsample = 1);

/// The one layer of a player, and the renderer on it.
const standin::Layer& PlayedLayer(const standin::Host& host);
const standin::RendererInstance& PlayedRenderer(const standin::Host& host);

}  // namespace tarvo
