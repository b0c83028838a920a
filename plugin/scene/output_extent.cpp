#include "plugin/scene/output_extent.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "plugin/scene/scene_store.h"

namespace plugin {
namespace {

constexpr float kFarthest = std::numeric_limits<float>::max();
constexpr double kMargin = 0.05;

/// Bounds along one axis. Single and double precision are part of the result: they decide on which
/// side of a whole pixel a bound falls.
struct Bounds {
  float least = 999999995904.0F;  // 1e12 in single precision
  float greatest = -999999995904.0F;

  void Fold(double value) {
    const auto rounded = static_cast<float>(std::clamp<double>(value, -kFarthest, kFarthest));
    if (!(value > static_cast<double>(least))) {
      least = rounded;
    }
    if (!(static_cast<double>(greatest) > value)) {
      greatest = rounded;
    }
  }

  void Divide(A_u_long denominator) {
    least /= static_cast<float>(denominator);
    greatest /= static_cast<float>(denominator);
  }

  void Widen() {
    const auto spread = static_cast<double>(greatest - least);
    least = static_cast<float>(static_cast<double>(least) - kMargin * spread);
    greatest = static_cast<float>(static_cast<double>(greatest) + kMargin * spread);
  }
};

/// Truncates toward zero; what a 32-bit integer cannot hold becomes the nearest that it can.
A_long Saturated(float value) {
  using Limits = std::numeric_limits<A_long>;
  if (std::isnan(value)) {
    return 0;
  }
  if (value >= static_cast<float>(Limits::max())) {
    return Limits::max();
  }
  if (value <= static_cast<float>(Limits::min())) {
    return Limits::min();
  }
  return static_cast<A_long>(value);
}

A_long Negated(A_long value) {
  return value == std::numeric_limits<A_long>::min() ? std::numeric_limits<A_long>::max() : -value;
}

A_long Side(const Bounds& bounds) {
  return std::clamp(Saturated(std::ceil(bounds.greatest) - std::floor(bounds.least)), A_long{0},
                    kLargestSide);
}

A_long Origin(const Bounds& bounds, A_long sourceOrigin) {
  return Saturated(-std::floor(bounds.least) - static_cast<float>(sourceOrigin));
}

/// Folds every finite corner; false if there was none.
bool FoldCorners(const Scene& scene, Bounds& x, Bounds& y) {
  bool folded = false;
  for (const Slot& slot : scene.slots) {
    for (const PieceQuad& quad : slot.quads) {
      // NOLINTNEXTLINE(modernize-loop-convert): corners are packed and must not be referred to.
      for (std::size_t corner = 0; corner < 4; ++corner) {
        const double cornerX = quad.corners[corner][0];
        const double cornerY = quad.corners[corner][1];
        if (!std::isfinite(cornerX) || !std::isfinite(cornerY)) {
          continue;
        }
        x.Fold(cornerX);
        y.Fold(cornerY);
        folded = true;
      }
    }
  }
  return folded;
}

}  // namespace

OutputExtent ComputeOutputExtent(const Scene& scene, const LayerFrame& layer) {
  Bounds x;
  Bounds y;
  if (!FoldCorners(scene, x, y)) {
    return {.width = layer.width,
            .height = layer.height,
            .origin = {.h = Negated(layer.sourceOriginX), .v = Negated(layer.sourceOriginY)}};
  }
  x.Divide(layer.downsampleX);
  y.Divide(layer.downsampleY);
  x.Widen();
  y.Widen();
  return {.width = Side(x),
          .height = Side(y),
          .origin = {.h = Origin(x, layer.sourceOriginX), .v = Origin(y, layer.sourceOriginY)}};
}

PF_Err FrameSetup(PF_InData& in, PF_OutData& out) {
  const Scene* const scene = gScenes.Reach(in.sequence_data);
  if (scene == nullptr) {
    return PF_Err_NONE;
  }
  const OutputExtent extent =
      ComputeOutputExtent(*scene, {.width = in.width,
                                   .height = in.height,
                                   .downsampleX = in.downsample_x.den,
                                   .downsampleY = in.downsample_y.den,
                                   .sourceOriginX = in.pre_effect_source_origin_x,
                                   .sourceOriginY = in.pre_effect_source_origin_y});
  out.width = extent.width;
  out.height = extent.height;
  out.origin = extent.origin;
  return PF_Err_NONE;
}

}  // namespace plugin
