#pragma once

#include "base/image/picture.h"
#include "cli/frames/render_settings.h"
#include "standin/host/host.h"

namespace tarvo {

/// Makes of rendered frames the pictures that were asked for.
class PictureComposer {
 public:
  /// Of a layer of so many pixels at full resolution. REQUIRES: the settings outlive this object.
  PictureComposer(const RenderSettings& settings, int layerWidth, int layerHeight);

  /// The sides of the layer's frame, in pixels of the pictures.
  [[nodiscard]] int Width() const { return width_; }
  [[nodiscard]] int Height() const { return height_; }

  /// True iff pictures are cropped to the layer's frame: because that was asked for, or because
  /// only so are all pictures of an animation of one size and at one place.
  [[nodiscard]] bool CropsToLayer(bool isOneOfMany) const {
    return isOneOfMany || settings_.layer || settings_.raw;
  }

  /// The frame that has just been rendered on this host, with the overlay that was asked for, if
  /// any, and cropped if that is wanted.
  [[nodiscard]] Picture Compose(Picture frame, const standin::Host& host, bool cropsToLayer) const;
  /// A picture over the background that was asked for, if any.
  [[nodiscard]] Picture OverBackground(Picture picture) const;

 private:
  const RenderSettings& settings_;
  int width_;
  int height_;
};

}  // namespace tarvo
