#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace tarvo {

/// One pixel as in image files: straight (not premultiplied) red, green, blue, alpha.
struct Rgba {
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;
  std::uint8_t alpha = 0;

  bool operator==(const Rgba&) const = default;
};

/// A picture with straight alpha, 8 bits a channel; rows from the top, without padding.
struct Picture {
  Picture() = default;
  /// A picture of one colour. REQUIRES: width and height are not negative.
  Picture(int pictureWidth, int pictureHeight, Rgba colour = {});

  [[nodiscard]] Rgba At(int x, int y) const { return pixels[Index(x, y)]; }
  [[nodiscard]] Rgba& At(int x, int y) { return pixels[Index(x, y)]; }

  /// The pixels as bytes, red first: `width` * 4 bytes a row.
  [[nodiscard]] const std::uint8_t* Bytes() const;
  [[nodiscard]] std::uint8_t* Bytes();

  bool operator==(const Picture&) const = default;

  int width = 0;
  int height = 0;
  /// Where pixel (0, 0) of the layer lies in this picture, in pixels of this picture.
  int originX = 0;
  int originY = 0;
  std::vector<Rgba> pixels;

 private:
  [[nodiscard]] std::size_t Index(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
           static_cast<std::size_t>(x);
  }
};
static_assert(sizeof(Rgba) == 4);

}  // namespace tarvo
