#include "base/image/image_file.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <stb/stb_image.h>
#include <stb/stb_image_write.h>
#include <zlib.h>

#include "base/files/out_of_memory.h"
#include "base/image/image_file_stb.h"

namespace tarvo {
namespace {

constexpr int kChannels = 4;
constexpr std::size_t kSignatureBytes = 8;  // bytes before the first chunk of a PNG file

/// Every row as its difference from the one above, and a level of compression that is nearly as
/// quick as the first one: files hardly larger than the smallest, in a small part of the time. Set
/// before there are threads that encode.
const bool kEncodesQuickly = [] {
  stbi_write_force_png_filter = 2;
  stbi_write_png_compression_level = 3;
  return true;
}();

std::string SizeText(std::int64_t width, std::int64_t height) {
  return std::to_string(width) + " x " + std::to_string(height) + " pixels";
}

void ExpectReadableSize(std::int64_t width, std::int64_t height, int longest) {
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

/// Calls `take(type, data)` for each chunk up to the end. The decoder does not look at checksums,
/// and makes pixels out of bytes that a disk has changed.
template <typename Take>
void ForEachChunk(std::string_view bytes, const Take& take) {
  constexpr std::size_t kAround = 12;  // length and type before a chunk's data, checksum behind
  bytes.remove_prefix(std::min(kSignatureBytes, bytes.size()));
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
    take(checked.substr(0, 4), checked.substr(4));
    bytes.remove_prefix(kAround + length);
  }
  throw FileError("damaged PNG file (it ends too early)");
}

/// What the header of a PNG file says.
struct PngHeader {
  std::uint64_t width = 0;
  std::uint64_t height = 0;
  std::uint64_t depth = 0;     ///< bits of a channel
  std::uint64_t channels = 0;  ///< 0 for a colour type that there is not
  bool isInterlaced = false;
};

PngHeader ReadHeader(std::string_view data) {
  constexpr std::size_t kLength = 13;
  constexpr std::array<std::uint64_t, 7> kChannelsOf = {1, 0, 3, 1, 2, 0, 4};  // by colour type
  if (data.size() < kLength) {
    throw FileError("damaged PNG file (a short header)");
  }
  const auto colourType = static_cast<unsigned char>(data[9]);
  return {.width = BigEndian(data),
          .height = BigEndian(data.substr(4)),
          .depth = static_cast<unsigned char>(data[8]),
          .channels = colourType < kChannelsOf.size() ? kChannelsOf.at(colourType) : 0,
          .isInterlaced = data[12] != 0};
}

/// Bytes of rows, each with a byte for its filter; none where there are no pixels.
std::uint64_t BytesOfRows(std::uint64_t width, std::uint64_t height, std::uint64_t bitsPerPixel) {
  return width == 0 ? 0 : height * (1 + (width * bitsPerPixel + 7) / 8);
}

/// Bytes that the data of a picture inflate to.
std::uint64_t InflatedBytes(const PngHeader& header) {
  if (!header.isInterlaced) {
    return BytesOfRows(header.width, header.height, header.depth * header.channels);
  }
  struct Pass {
    std::uint64_t x, y, stepX, stepY;
  };
  constexpr Pass kPasses[] = {{0, 0, 8, 8}, {4, 0, 8, 8}, {0, 4, 4, 8}, {2, 0, 4, 4},
                              {0, 2, 2, 4}, {1, 0, 2, 2}, {0, 1, 1, 2}};
  std::uint64_t bytes = 0;
  for (const Pass& pass : kPasses) {
    bytes += BytesOfRows((header.width + pass.stepX - 1 - pass.x) / pass.stepX,
                         (header.height + pass.stepY - 1 - pass.y) / pass.stepY,
                         header.depth * header.channels);
  }
  return bytes;
}

/// The decoder counts the bytes of a picture in an int, before and after it adds an alpha channel.
void ExpectCountable(const PngHeader& header) {
  const std::uint64_t channels = header.channels < 3 ? header.channels : 4;
  const std::uint64_t decoded =
      header.width * header.height * channels * (header.depth > 8 ? 2 : 1);
  if (const std::uint64_t most = std::max(decoded, InflatedBytes(header)); most > INT_MAX) {
    throw FileError("too large: a picture of at most " + std::to_string(INT_MAX) +
                    " bytes expected, " +
                    SizeText(static_cast<std::int64_t>(header.width),
                             static_cast<std::int64_t>(header.height)) +
                    " of " + std::to_string(header.depth) + " bits a channel (" +
                    std::to_string(most) + " bytes) given");
  }
}

/// Counts what compressed data inflate to, without keeping it, and compares their own checksum.
class InflatedCount {
 public:
  explicit InflatedCount(std::uint64_t most) : most_(most) {
    if (inflateInit(&stream_) != Z_OK) {
      throw OutOfMemory("inflating a picture");
    }
  }
  InflatedCount(const InflatedCount&) = delete;
  InflatedCount& operator=(const InflatedCount&) = delete;
  ~InflatedCount() { inflateEnd(&stream_); }

  /// Takes the next part of the data, which may be empty, up to the end of the stream. Throws
  /// FileError for data that are damaged, or inflate to too much.
  void Take(std::string_view data) {
    std::array<unsigned char, 1 << 15> inflated{};
    // The library's interface is older than const; it does not write there.
    stream_.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.data()));
    stream_.avail_in = static_cast<unsigned>(data.size());
    do {
      stream_.next_out = inflated.data();
      stream_.avail_out = static_cast<unsigned>(inflated.size());
      Inflate();
      bytes_ += inflated.size() - stream_.avail_out;
      if (bytes_ > most_) {
        throw FileError("damaged PNG file (its data inflate to more than " + std::to_string(most_) +
                        " bytes)");
      }
    } while (!isOver_ && stream_.avail_out == 0);
  }

  [[nodiscard]] std::uint64_t Bytes() const { return bytes_; }

 private:
  void Inflate() {
    switch (isOver_ ? Z_STREAM_END : inflate(&stream_, Z_NO_FLUSH)) {
      case Z_OK:
      case Z_BUF_ERROR:  // all input so far is consumed
        return;
      case Z_STREAM_END:
        isOver_ = true;
        return;
      case Z_MEM_ERROR:
        throw OutOfMemory("inflating a picture");
      default:
        throw FileError("damaged PNG file (its data cannot be inflated)");
    }
  }

  std::uint64_t most_;
  std::uint64_t bytes_ = 0;
  bool isOver_ = false;
  z_stream stream_{};
};

/// Checks all of a file in little memory: its chunks, and that its data inflate to what its header
/// says. A little more is no harm, and some programs write it.
void ExpectIntact(std::string_view bytes) {
  constexpr std::uint64_t kTolerated = std::uint64_t{1} << 20;
  std::uint64_t expected = 0;
  std::optional<InflatedCount> count;
  ForEachChunk(bytes, [&](std::string_view type, std::string_view data) {
    if (type == "IHDR" && !count) {
      const PngHeader header = ReadHeader(data);
      ExpectCountable(header);
      expected = InflatedBytes(header);
      count.emplace(expected + kTolerated);
    } else if (type == "IDAT" && count) {
      count->Take(data);
    }
  });
  if (!count || count->Bytes() < expected) {
    throw FileError("damaged PNG file (its data end too early)");
  }
}

/// Tells a picture that is too large from a file that is no picture: the decoder does not.
void ExpectKnownSize(std::string_view bytes, int longest) {
  constexpr std::string_view kSignature("\x89PNG\r\n\x1A\n\0\0\0\rIHDR", 16);
  constexpr std::uint64_t kMostOfAllChannels = std::uint64_t{1} << 30;
  if (!bytes.starts_with(kSignature) || bytes.size() < kSignature.size() + 8) {
    return;
  }
  const std::uint32_t width = BigEndian(bytes.substr(kSignature.size()));
  const std::uint32_t height = BigEndian(bytes.substr(kSignature.size() + 4));
  ExpectReadableSize(width, height, longest);
  if (std::uint64_t{width} * height * kChannels > kMostOfAllChannels) {
    throw FileError("too large: " + SizeText(width, height) + " given");
  }
}

const stbi_uc* DecoderBytes(const std::string& bytes) {
  return reinterpret_cast<const stbi_uc*>(bytes.data());
}

int DecoderSize(const std::string& bytes) {
  return static_cast<int>(std::min<std::size_t>(bytes.size(), INT_MAX));
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

void AppendChunk(std::string& file, std::string_view type, std::string_view data) {
  for (int shift = 24; shift >= 0; shift -= 8) {
    file += static_cast<char>(data.size() >> shift & 0xFFU);
  }
  file.append(type).append(data);
  file.append(4, '\0');  // the checksum, which the decoder ignores
}

/// A copy of a file without what the decoder handles with undefined behaviour. It copies the data
/// of an empty IDAT chunk to a null pointer: such chunks are left out. A pixel whose index lies
/// beyond the palette reads uninitialised memory: the palette is extended to 256 colours with
/// black.
std::string ForDecoder(const std::string& bytes) {
  constexpr std::size_t kPalette = 768;  // 256 colours of three bytes
  std::string file;
  file.reserve(bytes.size() + kPalette);
  file.append(bytes, 0, kSignatureBytes);
  ForEachChunk(bytes, [&](std::string_view type, std::string_view data) {
    const bool isPalette = type == "PLTE" && !data.empty() && data.size() % 3 == 0;
    if (isPalette && data.size() < kPalette) {
      AppendChunk(file, type, std::string(data).append(kPalette - data.size(), '\0'));
    } else if (type != "IDAT" || !data.empty()) {
      AppendChunk(file, type, data);
    }
  });
  AppendChunk(file, "IEND", {});
  return file;
}

}  // namespace

PngFile::PngFile(const FilePath& file, int longestSide) : bytes_(ReadWholeFile(file)) {
  int channels = 0;
  if (stbi_info_from_memory(DecoderBytes(bytes_), DecoderSize(bytes_), &width_, &height_,
                            &channels) == 0) {
    ExpectKnownSize(bytes_, longestSide);
    throw FileError("PNG file expected, something else given");
  }
  ExpectReadableSize(width_, height_, longestSide);
  ExpectIntact(bytes_);
}

Picture PngFile::Decode() const {
  ForgetDecoderFailure();
  const std::string bytes = ForDecoder(bytes_);
  int width = 0;
  int height = 0;
  int channels = 0;
  const std::unique_ptr<stbi_uc, decltype(&std::free)> pixels(
      stbi_load_from_memory(DecoderBytes(bytes), DecoderSize(bytes), &width, &height, &channels,
                            kChannels),
      &std::free);
  if (pixels == nullptr) {
    // Without memory it may fail without a reason: all else was checked.
    const char* reason = stbi_failure_reason();
    if (reason == nullptr || std::string_view(reason) == "outofmem") {
      throw OutOfMemory("decoding a picture of " + SizeText(width_, height_));
    }
    throw FileError(std::string("damaged PNG file (") + reason + ")");
  }
  Picture picture(width, height);
  std::memcpy(picture.Bytes(), pixels.get(), picture.pixels.size() * sizeof(Rgba));
  return picture;
}

Picture ReadPng(const FilePath& file, int longestSide) {
  return PngFile(file, longestSide).Decode();
}

bool IsWholePng(const FilePath& file, int width, int height) {
  try {
    if (KindOf(file.Get()) != FileKind::kRegular) {
      return false;
    }
    const PngFile png(file, INT_MAX);
    return png.Width() == width && png.Height() == height && !png.Decode().pixels.empty();
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

void WritePng(const FilePath& file, const Picture& picture, Sync sync) {
  WriteWholeFile(file, EncodePng(picture), sync);
}

}  // namespace tarvo
