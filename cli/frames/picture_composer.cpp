#include "cli/frames/picture_composer.h"

#include <utility>

#include "cli/frames/output_picture.h"
#include "tool/explain/visualization.h"
#include "tool/player/overlap_bones.h"

namespace tarvo {
namespace {

int Scaled(int side, int denominator) { return (side + denominator - 1) / denominator; }

}  // namespace

PictureComposer::PictureComposer(const RenderSettings& settings, int layerWidth, int layerHeight)
    : settings_(settings),
      width_(Scaled(layerWidth, settings.play.downsample)),
      height_(Scaled(layerHeight, settings.play.downsample)) {}

Picture PictureComposer::Compose(Picture frame, const standin::Host& host,
                                 bool cropsToLayer) const {
  if (settings_.show) {
    const Overlap overlap = OverlapNow(host, frame, settings_.play.downsample);
    frame = Show(*settings_.show, frame, overlap, width_, height_);
  }
  return cropsToLayer ? CropToLayer(frame, width_, height_) : frame;
}

Picture PictureComposer::OverBackground(Picture picture) const {
  return settings_.background ? Over(picture, *settings_.background) : std::move(picture);
}

}  // namespace tarvo
