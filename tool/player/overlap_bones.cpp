#include "tool/player/overlap_bones.h"

#include <cstddef>
#include <stdexcept>

#include "tool/rig/active_bones.h"

namespace standin {
namespace {

constexpr std::size_t kFastTransparency = 53;

double ValueOf(const RendererInstance& renderer, std::size_t index) {
  return renderer.parameters.at(index).Value();
}

}  // namespace

std::vector<const Companion*> ActiveCompanions(const Layer& layer) {
  std::vector<const Companion*> active;
  for (const auto& effect : layer.effects) {
    const auto* companion = dynamic_cast<const Companion*>(effect.get());
    if (companion != nullptr && companion->active) {
      active.push_back(companion);
    }
  }
  return active;
}

std::vector<OverlapBone> BonesOn(const Layer& layer, const RendererInstance& renderer) {
  std::vector<OverlapBone> bones;
  for (const Companion* companion : ActiveCompanions(layer)) {
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

bool IsExact(const RendererInstance& renderer) {
  return ValueOf(renderer, kFastTransparency) == 0.0;
}

OverlapView ViewOf(const Picture& picture, const RendererInstance& renderer,
                   const FrameRequest& request) {
  return {.width = picture.width,
          .height = picture.height,
          .scaleX = 1.0 / request.downsampleX,
          .scaleY = 1.0 / request.downsampleY,
          .originX = static_cast<double>(picture.originX + request.preEffectOriginX),
          .originY = static_cast<double>(picture.originY + request.preEffectOriginY),
          .exact = IsExact(renderer)};
}

const Layer& PlayedLayer(const Host& host) {
  return host.project.ActiveComposition()->layers.front();
}

const RendererInstance& PlayedRenderer(const Host& host) {
  for (const auto& effect : PlayedLayer(host).effects) {
    if (const auto* renderer = dynamic_cast<const RendererInstance*>(effect.get())) {
      return *renderer;
    }
  }
  throw std::logic_error("no renderer on the layer");
}

Overlap OverlapNow(const Host& host, const Picture& frame, int downsample) {
  const RendererInstance& renderer = PlayedRenderer(host);
  const auto denominator = static_cast<A_u_long>(downsample);
  const FrameRequest request{.downsampleX = denominator, .downsampleY = denominator};
  return {BonesOn(PlayedLayer(host), renderer), ViewOf(frame, renderer, request)};
}

}  // namespace standin
