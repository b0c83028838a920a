#include "base/image/picture.h"

namespace tarvo {

Picture::Picture(int pictureWidth, int pictureHeight, Rgba colour)
    : width(pictureWidth),
      height(pictureHeight),
      pixels(static_cast<std::size_t>(pictureWidth) * static_cast<std::size_t>(pictureHeight),
             colour) {}

const std::uint8_t* Picture::Bytes() const {
  return reinterpret_cast<const std::uint8_t*>(pixels.data());
}

std::uint8_t* Picture::Bytes() { return reinterpret_cast<std::uint8_t*>(pixels.data()); }

}  // namespace tarvo
