#include "tests/support/picture_compare.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <stdexcept>

namespace support {
namespace {

using standin::Rgba;

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

}  // namespace

std::string Comparison::Text() const {
  return std::to_string(compared) + " pixels compared, largest difference " +
         std::to_string(largest) + " at (" + std::to_string(x) + ", " + std::to_string(y) + "), " +
         std::to_string(beyond) + " beyond the tolerance";
}

Comparison Compare(const standin::Picture& one, const standin::Picture& other, int tolerance,
                   const std::vector<bool>& where) {
  if (one.width != other.width || one.height != other.height ||
      (!where.empty() && where.size() != one.pixels.size())) {
    throw std::invalid_argument("pictures of different sizes");
  }
  Comparison result;
  for (std::size_t i = 0; i < one.pixels.size(); ++i) {
    if (!where.empty() && !where[i]) continue;
    const int difference = Difference(one.pixels[i], other.pixels[i]);
    ++result.compared;
    if (difference > tolerance) ++result.beyond;
    if (difference <= result.largest) continue;
    result.largest = difference;
    result.x = static_cast<int>(i % static_cast<std::size_t>(one.width));
    result.y = static_cast<int>(i / static_cast<std::size_t>(one.width));
  }
  return result;
}

}  // namespace support
