#include "standin/image_file.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

#include <stb/stb_image.h>
#include <stb/stb_image_write.h>

namespace standin {
namespace {

constexpr int kChannels = 4;

/// Every row as its difference from the one above: files as small as those for which each row tries
/// all five filters, in half the time. Set before there are threads that encode.
const bool kRowsAreDifferences = [] {
  stbi_write_force_png_filter = 2;
  return true;
}();

std::string SizeText(int width, int height) {
  return std::to_string(width) + " x " + std::to_string(height) + " pixels";
}

void ExpectReadableSize(int width, int height, int longest) {
  if (width > longest || height > longest) {
    throw FileError("at most " + std::to_string(longest) + " pixels on a side expected, " +
                    SizeText(width, height) + " given");
  }
}

/// Checks the size before any pixel is decoded.
Picture Decode(const std::string& bytes, int longestSide) {
  const auto* data = reinterpret_cast<const stbi_uc*>(bytes.data());
  const auto size = static_cast<int>(std::min<std::size_t>(bytes.size(), INT_MAX));
  int width = 0;
  int height = 0;
  int channels = 0;
  if (stbi_info_from_memory(data, size, &width, &height, &channels) == 0) {
    throw FileError("PNG file expected, something else given");
  }
  ExpectReadableSize(width, height, longestSide);
  const std::unique_ptr<stbi_uc, decltype(&std::free)> pixels(
      stbi_load_from_memory(data, size, &width, &height, &channels, kChannels), &std::free);
  if (pixels == nullptr) {
    throw FileError(std::string("damaged PNG file (") + stbi_failure_reason() + ")");
  }
  Picture picture(width, height);
  std::memcpy(picture.Bytes(), pixels.get(), picture.pixels.size() * sizeof(Rgba));
  return picture;
}

/// The encoder counts the bytes of all rows, with one filter byte each, in an int.
bool EncoderCanHold(const Picture& picture) {
  const long long rowBytes = 1LL + kChannels * static_cast<long long>(picture.width);
  return picture.width > 0 && picture.height > 0 && rowBytes * picture.height <= INT_MAX;
}

void AppendBytes(void* bytes, void* data, int size) {
  static_cast<std::string*>(bytes)->append(static_cast<const char*>(data),
                                           static_cast<std::size_t>(size));
}

}  // namespace

Picture ReadPng(const FilePath& file, int longestSide) {
  return Decode(ReadWholeFile(file), longestSide);
}

bool IsWholePng(const FilePath& file, int width, int height) {
  try {
    const Picture picture = Decode(ReadWholeFile(file), INT_MAX);
    return picture.width == width && picture.height == height;
  } catch (const FileError&) {
    return false;
  }
}

std::string EncodePng(const Picture& picture) {
  if (!EncoderCanHold(picture)) {
    throw FileError("a picture of " + SizeText(picture.width, picture.height) +
                    " cannot be saved as PNG");
  }
  std::string bytes;
  if (stbi_write_png_to_func(AppendBytes, &bytes, picture.width, picture.height, kChannels,
                             picture.Bytes(), picture.width * kChannels) == 0) {
    throw FileError("encoding as PNG failed");
  }
  return bytes;
}

void WritePng(const FilePath& file, const Picture& picture) {
  WriteWholeFile(file, EncodePng(picture));
}

}  // namespace standin
