#pragma once

#include "sdk/effect.h"

namespace plugin {

/// Bytes of an 8-bit pixel: alpha, red, green, blue.
inline constexpr A_long kPixelBytes = 4;

/// Bytes of `width` × `height` pixels without padding.
constexpr A_HandleSize PackedBytes(A_long width, A_long height) {
  return static_cast<A_HandleSize>(width) * static_cast<A_HandleSize>(height) * kPixelBytes;
}

/// The first byte of row `row` of an 8-bit world, requested from the host for this row; null if the
/// host gives no address. What the host throws passes.
inline A_u_char* RowOf(const PF_UtilCallbacks& utils, PF_EffectWorld& world, A_long row) {
  PF_Pixel* first = nullptr;
  utils.get_pixel_data8(&world, nullptr, &first);
  if (first == nullptr) {
    return nullptr;
  }
  return reinterpret_cast<A_u_char*>(first) + std::ptrdiff_t{row} * world.rowbytes;
}

}  // namespace plugin
