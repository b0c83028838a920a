#include "standin/core/pixels.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace standin {
namespace {

PF_Rect Clipped(const PF_EffectWorld& world, const PF_Rect* area) {
  const PF_Rect all{0, 0, world.width, world.height};
  if (area == nullptr) {
    return all;
  }
  return {std::max(area->left, all.left), std::max(area->top, all.top),
          std::min(area->right, all.right), std::min(area->bottom, all.bottom)};
}

A_u_char Scaled(int value, int numerator, int denominator) {
  return static_cast<A_u_char>(
      std::min(255, (value * numerator * 2 + denominator) / (denominator * 2)));
}

/// Opaque and empty pixels are the same in either form; most pixels of a picture are one of the
/// two.
template <typename Map>
void MapPixels(PF_EffectWorld& world, Map map) {
  for (A_long y = 0; y < world.height; ++y) {
    PF_Pixel* row = RowOf(world, y);
    std::transform(row, row + world.width, row, [map](PF_Pixel pixel) {
      const bool empty = pixel.alpha == 0 && pixel.red == 0 && pixel.green == 0 && pixel.blue == 0;
      return empty || pixel.alpha == 255 ? pixel : map(pixel);
    });
  }
}

}  // namespace

PF_Pixel* RowOf(const PF_EffectWorld& world, A_long row) {
  auto* bytes = reinterpret_cast<std::byte*>(world.data);
  return reinterpret_cast<PF_Pixel*>(bytes + std::ptrdiff_t{row} * world.rowbytes);
}

void FillPixels(PF_EffectWorld& world, const PF_Rect* area, PF_Pixel colour) {
  const PF_Rect inside = Clipped(world, area);
  for (A_long y = inside.top; y < inside.bottom; ++y) {
    std::fill_n(RowOf(world, y) + inside.left, std::max(0, inside.right - inside.left), colour);
  }
}

void CopyPixels(const PF_EffectWorld& source, const PF_Rect* from, PF_EffectWorld& destination,
                const PF_Rect* to) {
  const PF_Rect in = Clipped(source, from);
  const PF_Rect out = Clipped(destination, to);
  const A_long width = std::min(in.right - in.left, out.right - out.left);
  const A_long height = std::min(in.bottom - in.top, out.bottom - out.top);
  if (width <= 0) {
    return;
  }
  for (A_long row = 0; row < height; ++row) {
    std::memmove(RowOf(destination, out.top + row) + out.left,
                 RowOf(source, in.top + row) + in.left,
                 static_cast<std::size_t>(width) * sizeof(PF_Pixel));
  }
}

PF_Pixel Premultiplied(PF_Pixel pixel) {
  return {pixel.alpha, Scaled(pixel.red, pixel.alpha, 255), Scaled(pixel.green, pixel.alpha, 255),
          Scaled(pixel.blue, pixel.alpha, 255)};
}

PF_Pixel Straightened(PF_Pixel pixel) {
  if (pixel.alpha == 0) {
    return pixel;
  }
  return {pixel.alpha, Scaled(pixel.red, 255, pixel.alpha), Scaled(pixel.green, 255, pixel.alpha),
          Scaled(pixel.blue, 255, pixel.alpha)};
}

void PremultiplyPixels(PF_EffectWorld& world) {
  MapPixels(world, [](PF_Pixel pixel) { return Premultiplied(pixel); });
}

void StraightenPixels(PF_EffectWorld& world) {
  MapPixels(world, [](PF_Pixel pixel) { return Straightened(pixel); });
}

}  // namespace standin
