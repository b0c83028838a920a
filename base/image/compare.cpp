#include "base/image/compare.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <stdexcept>

namespace tarvo {
namespace {

int SeenDifference(std::uint8_t one, std::uint8_t oneAlpha, std::uint8_t other,
                   std::uint8_t otherAlpha) {
  return static_cast<int>(std::lround(std::abs(one * oneAlpha - other * otherAlpha) / 255.0));
}

int Difference(Rgba one, Rgba other) {
  return std::max({std::abs(one.alpha - other.alpha),
                   SeenDifference(one.red, one.alpha, other.red, other.alpha),
                   SeenDifference(one.green, one.alpha, other.green, other.alpha),
                   SeenDifference(one.blue, one.alpha, other.blue, other.alpha)});
}

void Paste(const Picture& from, Picture& onto, int left) {
  for (int y = 0; y < from.height; ++y) {
    for (int x = 0; x < from.width; ++x) {
      onto.At(left + x, y) = from.At(x, y);
    }
  }
}

Rgba DifferenceColour(int difference, int tolerance) {
  constexpr Rgba kSame{0, 0, 0, 255};
  constexpr Rgba kTolerated{40, 60, 110, 255};
  if (difference <= tolerance) {
    return difference == 0 ? kSame : kTolerated;
  }
  const auto bright = static_cast<std::uint8_t>(difference);
  return {255, bright, bright, 255};
}

}  // namespace

std::string Comparison::Text() const {
  return std::to_string(compared) + " pixels compared, largest difference " +
         std::to_string(largest) + " at (" + std::to_string(x) + ", " + std::to_string(y) + "), " +
         std::to_string(beyond) + " beyond the tolerance";
}

Comparison Compare(const Picture& one, const Picture& other, int tolerance,
                   const std::vector<bool>& where) {
  if (one.width != other.width || one.height != other.height ||
      (!where.empty() && where.size() != one.pixels.size())) {
    throw std::invalid_argument("pictures of different sizes");
  }
  Comparison result;
  for (std::size_t i = 0; i < one.pixels.size(); ++i) {
    if (!where.empty() && !where[i]) {
      continue;
    }
    const int difference = Difference(one.pixels[i], other.pixels[i]);
    ++result.compared;
    if (difference > tolerance) {
      ++result.beyond;
    }
    if (difference <= result.largest) {
      continue;
    }
    result.largest = difference;
    result.x = static_cast<int>(i % static_cast<std::size_t>(one.width));
    result.y = static_cast<int>(i / static_cast<std::size_t>(one.width));
  }
  return result;
}

Picture SideBySide(const Picture& one, const Picture& other, int tolerance) {
  constexpr int kGap = 8;
  const bool sameSize = one.width == other.width && one.height == other.height;
  const int second = one.width + kGap;
  const int third = second + other.width + kGap;
  Picture beside(sameSize ? third + one.width : third - kGap, std::max(one.height, other.height));
  Paste(one, beside, 0);
  Paste(other, beside, second);
  if (sameSize) {
    Picture difference(one.width, one.height);
    std::ranges::transform(
        one.pixels, other.pixels, difference.pixels.begin(),
        [tolerance](Rgba a, Rgba b) { return DifferenceColour(Difference(a, b), tolerance); });
    Paste(difference, beside, third);
  }
  return beside;
}

}  // namespace tarvo
