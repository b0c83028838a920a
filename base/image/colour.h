#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "base/geometry/point.h"
#include "base/image/picture.h"

/// \file
/// Colours as the reference model of a frame computes with them.

namespace tarvo {

/// Red, green, blue, alpha, each from 0 to 1.
using Colour = std::array<double, 4>;
inline constexpr std::size_t kAlpha = 3;

/// The greatest value of a channel of 8 bits.
inline constexpr double kSteps = 255.0;
/// A share of a channel, from 0 to 1, as 8 bits keep it.
std::uint8_t Byte(double share);

/// Rounded to 8 bits a channel: all that a texture or a render target keeps.
Colour Stored(const Colour& colour);
/// A straight colour with its alpha times an opacity, multiplied by that alpha; stored.
Colour Premultiplied(const Colour& straight, double opacity);
/// A premultiplied colour as 8-bit straight RGBA, as in image files.
Rgba Straight(const Colour& premultiplied);

/// An image at a place in its pixels: bilinear, clamped to the edge; texel centres lie at halves.
Colour Sample(const Picture& image, Point at);

}  // namespace tarvo
