#pragma once

#include <cstdint>
#include <vector>

#include "base/image/picture.h"
#include "tarvo/companion.h"

/// \file
/// Pieces and images for tests.

namespace check {

/// A rectangle along the axes, in pixels.
struct Box {
  double left = 0;
  double top = 0;
  double width = 0;
  double height = 0;
};

/// A rectangular piece: `cut` of the image is shown at `place` of the layer.
PieceQuad Piece(const Box& place, const Box& cut, double boneT,
                std::uint32_t imageSelect = TARVO_IMAGE_A);

/// Convex pieces of random place, size, turn and warp whose corners lie within `area`. They sample
/// random parts of an image of the given size, one pixel off its border at least. The same seed
/// gives the same pieces.
std::vector<PieceQuad> WarpedPieces(std::uint32_t seed, int count, const Box& area, int imageWidth,
                                    int imageHeight, std::uint32_t imageSelect = TARVO_IMAGE_A);

/// What a companion at this place of the stack sends that has these pieces and no new image. The
/// pieces must outlive the record.
CompanionSlot RecordOf(const std::vector<PieceQuad>& pieces, std::int32_t place);

/// A smooth pattern of one alpha; each seed has colours of its own.
tarvo::Picture Pattern(int width, int height, std::uint32_t seed, std::uint8_t alpha = 255);
/// The pattern with an alpha that falls from 255 in the middle to 0 at the border.
tarvo::Picture SoftPattern(int width, int height, std::uint32_t seed);

}  // namespace check
