#include "base/image/colour.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace tarvo {
namespace {

double StoredChannel(double value) {
  return std::floor(std::clamp(value, 0.0, 1.0) * kSteps + 0.5) / kSteps;
}

Colour Texel(const Picture& image, double column, double row) {
  const int x = static_cast<int>(std::clamp(column, 0.0, image.width - 1.0));
  const int y = static_cast<int>(std::clamp(row, 0.0, image.height - 1.0));
  const Rgba texel = image.At(x, y);
  return {texel.red / kSteps, texel.green / kSteps, texel.blue / kSteps, texel.alpha / kSteps};
}

Colour Mix(const Colour& from, const Colour& to, double t) {
  Colour mixed{};
  std::ranges::transform(from, to, mixed.begin(),
                         [t](double a, double b) { return a + (b - a) * t; });
  return mixed;
}

}  // namespace

std::uint8_t Byte(double t) {
  return static_cast<std::uint8_t>(std::lround(StoredChannel(t) * kSteps));
}

Colour Stored(const Colour& colour) {
  Colour stored{};
  std::ranges::transform(colour, stored.begin(), StoredChannel);
  return stored;
}

Colour Premultiplied(const Colour& straight, double opacity) {
  const double alpha = straight[kAlpha] * opacity;
  return Stored(Colour{straight[0] * alpha, straight[1] * alpha, straight[2] * alpha, alpha});
}

Rgba Straight(const Colour& premultiplied) {
  const double alpha = premultiplied[kAlpha];
  if (alpha == 0.0) {
    return {};
  }
  return {Byte(premultiplied[0] / alpha), Byte(premultiplied[1] / alpha),
          Byte(premultiplied[2] / alpha), Byte(alpha)};
}

Colour Sample(const Picture& image, Point at) {
  const double left = std::floor(at.x - 0.5);
  const double top = std::floor(at.y - 0.5);
  const double shareX = at.x - 0.5 - left;
  const double shareY = at.y - 0.5 - top;
  const Colour upper = Mix(Texel(image, left, top), Texel(image, left + 1.0, top), shareX);
  const Colour lower =
      Mix(Texel(image, left, top + 1.0), Texel(image, left + 1.0, top + 1.0), shareX);
  return Stored(Mix(upper, lower, shareY));
}

}  // namespace tarvo
