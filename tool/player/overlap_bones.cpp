#include "tool/player/overlap_bones.h"

#include <cstddef>
#include <stdexcept>

#include "tool/rig/active_bones.h"

namespace tarvo {
namespace {

constexpr std::size_t kFastTransparency = 53;

double ValueOf(const standin::RendererInstance& renderer, std::size_t index) {
  return renderer.parameters.at(index).Value();
}

}  // namespace

std::vector<const standin::Companion*> ActiveCompanions(const standin::Layer& layer) {
  std::vector<const standin::Companion*> active;
  for (const auto& effect : layer.effects) {
    const auto* companion = dynamic_cast<const standin::Companion*>(effect.get());
    if (companion != nullptr && companion->active) {
      active.push_back(companion);
    }
  }
  return active;
}

std::vector<OverlapBone> BonesOn(const standin::Layer& layer,
                                 const standin::RendererInstance& renderer) {
  std::vector<OverlapBone> bones;
  for (const standin::Companion* companion : ActiveCompanions(layer)) {
    const auto start = static_cast<std::size_t>(StartSliderOf(bones.size()));
    bones.push_back({.name = companion->groupName,
                     .pieces = companion->pieces,
                     .imageA = companion->imageA.picture,
                     .imageB = companion->imageB.picture,
                     .opacityA = companion->imageA.opacity,
                     .opacityB = companion->imageB.opacity,
                     .startZ = ValueOf(renderer, start),
                     .endZ = ValueOf(renderer, start + 1)});
  }
  return bones;
}

bool IsExact(const standin::RendererInstance& renderer) {
  return ValueOf(renderer, kFastTransparency) == 0.0;
}

OverlapView ViewOf(const Picture& picture, const standin::RendererInstance& renderer,
                   const standin::FrameRequest& request) {
  return {.width = picture.width,
          .height = picture.height,
          .scaleX = 1.0 / request.downsampleX,
          .scaleY = 1.0 / request.downsampleY,
          .originX = static_cast<double>(picture.originX + request.preEffectOriginX),
          .originY = static_cast<double>(picture.originY + request.preEffectOriginY),
          .exact = IsExact(renderer)};
}

const standin::Layer& PlayedLayer(const standin::Host& host) {
  return host.project.ActiveComposition()->layers.front();
}

const standin::RendererInstance& PlayedRenderer(const standin::Host& host) {
  for (const auto& effect : PlayedLayer(host).effects) {
    if (const auto* renderer = dynamic_cast<const standin::RendererInstance*>(effect.get())) {
      return *renderer;
    }
  }
  throw std::logic_error("no renderer on the layer");
}

Overlap OverlapNow(const standin::Host& host, const Picture& frame, int downsample) {
  const standin::RendererInstance& renderer = PlayedRenderer(host);
  const auto denominator = static_cast<A_u_long>(downsample);
  const standin::FrameRequest request{.downsampleX = denominator, .downsampleY = denominator};
  return {BonesOn(PlayedLayer(host), renderer), ViewOf(frame, renderer, request)};
}

}  // namespace tarvo
