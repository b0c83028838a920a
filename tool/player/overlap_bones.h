#pragma once

#include <cstddef>
#include <vector>

#include "standin/host/host.h"
#include "tool/reference/overlap.h"

namespace standin {

/// True iff the renderer's "Fast transparency" is off.
bool IsExact(const RendererInstance& renderer);

/// The companions that are switched on, from the top of the stack: bone number o at index o.
std::vector<const Companion*> ActiveCompanions(const Layer& layer);

/// The bones of a layer as their companions hold them now and the renderer's sliders stand. Right
/// for a frame when every companion has sent what it holds.
std::vector<OverlapBone> BonesOn(const Layer& layer, const RendererInstance& renderer);

/// The view of a frame that a host rendered: its size and origin are the picture's. Where an effect
/// before the renderer has grown the layer, the request says by how much.
OverlapView ViewOf(const Picture& picture, const RendererInstance& renderer,
                   const FrameRequest& request = {});

/// How the pieces lie in the frame that a performance has just rendered on this host.
/// REQUIRES: the host's layer holds one renderer, as a performance makes it.
Overlap OverlapNow(const Host& host, const Picture& frame, int downsample = 1);

/// The one layer of a performance, and the renderer on it.
const Layer& PlayedLayer(const Host& host);
const RendererInstance& PlayedRenderer(const Host& host);

}  // namespace standin
