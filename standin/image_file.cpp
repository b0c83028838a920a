#include "standin/image_file.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include <stb/stb_image.h>
#include <stb/stb_image_write.h>

namespace standin {
namespace {

constexpr int kChannels = 4;

/// Every row as its difference from the one above, and a level of compression that is nearly as
/// quick as the first one: files hardly larger than the smallest, in a small part of the time. Set
/// before there are threads that encode.
const bool kEncodesQuickly = [] {
  stbi_write_force_png_filter = 2;
  stbi_write_png_compression_level = 3;
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

/// The checksum that ends each chunk of a PNG file: CRC-32, lowest bit first.
std::uint32_t Checksum(std::string_view bytes) {
  constexpr std::uint32_t kPolynomial = 0xEDB88320;
  static const auto kOfByte = [] {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t byte = 0; byte < table.size(); ++byte) {
      std::uint32_t sum = byte;
      for (int bit = 0; bit < 8; ++bit) {
        sum = (sum & 1) != 0 ? kPolynomial ^ (sum >> 1) : sum >> 1;
      }
      table.at(byte) = sum;
    }
    return table;
  }();
  std::uint32_t sum = ~0U;
  for (const char byte : bytes) {
    sum = kOfByte.at((sum ^ static_cast<unsigned char>(byte)) & 0xFF) ^ (sum >> 8);
  }
  return ~sum;
}

std::uint32_t BigEndian(std::string_view bytes) {
  std::uint32_t number = 0;
  for (const char byte : bytes.substr(0, 4)) {
    number = number << 8 | static_cast<unsigned char>(byte);
  }
  return number;
}

/// The decoder does not look at checksums, and makes pixels out of bytes that a disk has changed.
void ExpectIntactChunks(std::string_view bytes) {
  constexpr std::size_t kSignature = 8;
  constexpr std::size_t kAround = 12;  // length and type before a chunk's data, checksum behind
  bytes.remove_prefix(std::min(kSignature, bytes.size()));
  while (bytes.size() >= kAround) {
    const std::size_t length = BigEndian(bytes);
    if (length > bytes.size() - kAround) {
      throw FileError("damaged PNG file (it ends too early)");
    }
    const std::string_view checked = bytes.substr(4, 4 + length);
    if (BigEndian(bytes.substr(8 + length)) != Checksum(checked)) {
      throw FileError("damaged PNG file (a checksum is wrong)");
    }
    if (checked.starts_with("IEND")) {
      return;
    }
    bytes.remove_prefix(kAround + length);
  }
  throw FileError("damaged PNG file (it ends too early)");
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
  ExpectIntactChunks(bytes);
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
