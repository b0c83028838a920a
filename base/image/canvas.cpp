#include "base/image/canvas.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <stb/stb_easy_font.h>

namespace tarvo {
namespace {

constexpr Rgba kGround{0, 0, 0, 170};

/// A channel of one straight colour over another's. REQUIRES: their joint alpha is not 0.
std::uint8_t Mixed(std::uint8_t above, std::uint8_t below, double shareAbove, double shareBelow) {
  return static_cast<std::uint8_t>(
      std::lround((above * shareAbove + below * shareBelow) / (shareAbove + shareBelow)));
}

/// The font's own form of a vertex.
struct FontVertex {
  float x = 0.0F;
  float y = 0.0F;
  float z = 0.0F;
  std::array<unsigned char, 4> colour{};
};

std::string Printable(std::string text) {
  std::ranges::replace_if(
      text, [](char letter) { return letter < ' ' || letter > '~'; }, '?');
  return text;
}

}  // namespace

void Paint(Picture& picture, int x, int y, Rgba colour) {
  if (x < 0 || y < 0 || x >= picture.width || y >= picture.height || colour.alpha == 0) {
    return;
  }
  Rgba& below = picture.At(x, y);
  const double above = colour.alpha / 255.0;
  const double rest = below.alpha / 255.0 * (1.0 - above);
  below = {Mixed(colour.red, below.red, above, rest), Mixed(colour.green, below.green, above, rest),
           Mixed(colour.blue, below.blue, above, rest),
           static_cast<std::uint8_t>(std::lround((above + rest) * 255.0))};
}

void FillBox(Picture& picture, int left, int top, int width, int height, Rgba colour) {
  for (int y = top; y < top + height; ++y) {
    for (int x = left; x < left + width; ++x) {
      Paint(picture, x, y, colour);
    }
  }
}

void DrawLine(Picture& picture, Point from, Point to, Rgba colour, int width) {
  // Far places are cut off by the number of steps that a picture can need.
  const double length = std::max(std::abs(to.x - from.x), std::abs(to.y - from.y));
  const int steps = std::max(1, static_cast<int>(std::ceil(std::min(length, 1e5))));
  for (int step = 0; step <= steps; ++step) {
    const double t = static_cast<double>(step) / steps;
    const double x = std::clamp(std::lerp(from.x, to.x, t), -1e6, 1e6);
    const double y = std::clamp(std::lerp(from.y, to.y, t), -1e6, 1e6);
    FillBox(picture, static_cast<int>(std::floor(x)) - width / 2,
            static_cast<int>(std::floor(y)) - width / 2, width, width, colour);
  }
}

int TextWidth(const std::string& text, int size) {
  std::string letters = Printable(text);
  return stb_easy_font_width(letters.data()) * size;
}

void WriteText(Picture& picture, int left, int top, const std::string& text, Rgba colour,
               int size) {
  constexpr std::size_t kVerticesPerLetter = 64;
  std::string letters = Printable(text);
  std::vector<FontVertex> vertices(kVerticesPerLetter * (letters.size() + 1));
  const int quads = stb_easy_font_print(0.0F, 0.0F, letters.data(), nullptr, vertices.data(),
                                        static_cast<int>(vertices.size() * sizeof(FontVertex)));
  for (std::size_t quad = 0; quad < static_cast<std::size_t>(quads); ++quad) {
    const FontVertex& first = vertices[4 * quad];
    const FontVertex& opposite = vertices[4 * quad + 2];
    const auto x = static_cast<int>(first.x);
    const auto y = static_cast<int>(first.y);
    FillBox(picture, left + x * size, top + y * size, (static_cast<int>(opposite.x) - x) * size,
            (static_cast<int>(opposite.y) - y) * size, colour);
  }
}

void DrawTag(Picture& picture, Point centre, const std::string& text, Rgba colour, int size) {
  const int width = TextWidth(text, size);
  const int height = (kTextHeight - 3) * size;
  const int left = static_cast<int>(std::clamp(centre.x, -1e6, 1e6)) - width / 2;
  const int top = static_cast<int>(std::clamp(centre.y, -1e6, 1e6)) - height / 2;
  FillBox(picture, left - size, top - size, width + 2 * size, height + 2 * size, kGround);
  WriteText(picture, left, top, text, colour, size);
}

}  // namespace tarvo
