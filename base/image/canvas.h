#pragma once

#include <string>

#include "base/geometry/point.h"
#include "base/image/picture.h"

/// \file
/// Lines, boxes and small text on a picture. What lies outside of it is left out.

namespace tarvo {

/// Lays a colour over a pixel.
void Paint(Picture& picture, int x, int y, Rgba colour);
void FillBox(Picture& picture, int left, int top, int width, int height, Rgba colour);
/// A line that is `width` pixels wide.
void DrawLine(Picture& picture, Point from, Point to, Rgba colour, int width = 1);

/// Height of a line of text at size 1, in pixels.
inline constexpr int kTextHeight = 12;
/// Width of a line of text, in pixels.
int TextWidth(const std::string& text, int size = 1);
/// A line of text from its top left corner, each of the font's dots `size` pixels wide. Characters
/// other than printable ASCII are shown as '?'.
void WriteText(Picture& picture, int left, int top, const std::string& text, Rgba colour,
               int size = 1);
/// The same on a dark ground, in the middle of a place.
void DrawTag(Picture& picture, Point centre, const std::string& text, Rgba colour, int size = 1);

}  // namespace tarvo
