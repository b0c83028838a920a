#pragma once

#include "sdk/effect.h"

namespace standin {

/// Fills `area` of a world (null: all of it), as far as it lies inside, with one colour.
void FillPixels(PF_EffectWorld& world, const PF_Rect* area, PF_Pixel colour);

/// Copies `from` of `source` (null: all) to `to` of `destination` (null: all), upper left corners
/// on each other, as far as both reach. The worlds may be one and the same.
void CopyPixels(const PF_EffectWorld& source, const PF_Rect* from, PF_EffectWorld& destination,
                const PF_Rect* to);

/// Colour times alpha, rounded to nearest.
PF_Pixel Premultiplied(PF_Pixel pixel);

/// Colour divided by alpha, rounded to nearest and limited to 255. Where alpha is 0 the colour is
/// unknown and stays as it is.
PF_Pixel Straightened(PF_Pixel pixel);

/// Premultiplied, for every pixel of a world.
void PremultiplyPixels(PF_EffectWorld& world);
/// Straightened, for every pixel of a world.
void StraightenPixels(PF_EffectWorld& world);

/// The first pixel of a row.
PF_Pixel* RowOf(const PF_EffectWorld& world, A_long row);

}  // namespace standin
