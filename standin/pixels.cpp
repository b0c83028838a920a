#include "standin/pixels.h"

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

}  // namespace

PF_Pixel* RowOf(const PF_EffectWorld& world, A_long row) {
  auto* bytes = reinterpret_cast<std::byte*>(world.data);
  return reinterpret_cast<PF_Pixel*>(bytes + std::ptrdiff_t{row} * world.rowbytes);
}

void FillPixels(PF_EffectWorld& world, const PF_Rect* area, PF_Pixel colour) {
  const PF_Rect inside = Clipped(world, area);
  for (A_long y = inside.top; y < inside.bottom; ++y) {
    for (A_long x = inside.left; x < inside.right; ++x) {
      RowOf(world, y)[x] = colour;
    }
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

void MapPixels(PF_EffectWorld& world, PF_Pixel (*map)(PF_Pixel)) {
  for (A_long y = 0; y < world.height; ++y) {
    PF_Pixel* row = RowOf(world, y);
    std::transform(row, row + world.width, row, map);
  }
}

}  // namespace standin
