#include "base/image/image_file.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <zlib.h>

namespace {

using tarvo::FileError;
using tarvo::Picture;
using tarvo::Rgba;

/// A folder of the test's own, gone at its end.
class ImageFile : public testing::Test {
 protected:
  ImageFile() { std::filesystem::create_directories(folder_); }
  ~ImageFile() override { std::filesystem::remove_all(folder_); }

  [[nodiscard]] std::size_t FilesInFolder() const {
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator(folder_), {}));
  }

  const std::filesystem::path folder_ =
      std::filesystem::path(testing::TempDir()) / std::to_string(std::random_device{}());
};

TEST_F(ImageFile, KeepsEveryPixelWithItsAlpha) {
  Picture picture(3, 2);
  picture.At(0, 0) = {1, 2, 3, 4};
  picture.At(2, 0) = {255, 128, 0, 0};  // colour under full transparency stays too
  picture.At(1, 1) = {9, 8, 7, 255};
  tarvo::WritePng(folder_ / "a.png", picture);
  EXPECT_EQ(tarvo::ReadPng(folder_ / "a.png"), picture);
  EXPECT_EQ(FilesInFolder(), 1U);
}

TEST_F(ImageFile, LeavesTheFolderAsItWasWhenAPictureCannotBeWritten) {
  EXPECT_THROW(tarvo::WritePng(folder_ / "a.png", Picture(0, 5)), FileError);
  EXPECT_THROW(tarvo::WritePng(folder_ / "none" / "a.png", Picture(1, 1)), FileError);
  std::filesystem::create_directory(folder_ / "a.png");
  EXPECT_THROW(tarvo::WritePng(folder_ / "a.png", Picture(1, 1)), FileError);
  EXPECT_EQ(FilesInFolder(), 1U);
}

TEST_F(ImageFile, RefusesEveryShorterPartOfAFile) {
  tarvo::WritePng(folder_ / "a.png", Picture(5, 5, Rgba{200, 100, 50, 255}));
  const std::string bytes = tarvo::ReadWholeFile(folder_ / "a.png");
  const std::size_t checksumOfEnd = 4;  // not looked at by the decoder
  for (std::size_t length = 0; length + checksumOfEnd < bytes.size(); ++length) {
    tarvo::WriteWholeFile(folder_ / "b.png", bytes.substr(0, length));
    EXPECT_THROW(tarvo::ReadPng(folder_ / "b.png"), FileError) << length << " bytes";
  }
}

/// The checksum that ends a chunk.
std::uint32_t Crc(const std::string& bytes) {
  std::uint32_t sum = ~0U;
  for (const char byte : bytes) {
    sum ^= static_cast<unsigned char>(byte);
    for (int bit = 0; bit < 8; ++bit) {
      sum = (sum & 1) != 0 ? 0xEDB88320U ^ (sum >> 1) : sum >> 1;
    }
  }
  return ~sum;
}

std::string BigEndian(std::uint32_t number) {
  std::string bytes;
  for (int shift = 24; shift >= 0; shift -= 8) {
    bytes += static_cast<char>(number >> shift & 0xFF);
  }
  return bytes;
}

std::string Chunk(const std::string& typeAndData) {
  return BigEndian(static_cast<std::uint32_t>(typeAndData.size() - 4)) + typeAndData +
         BigEndian(Crc(typeAndData));
}

/// The PNG file of a picture, with a header that gives another size, depth and colour type.
std::string WithHeader(const std::string& png, std::uint32_t side, char depth, char colourType) {
  constexpr std::size_t kSignature = 8;
  constexpr std::size_t kHeaderEnd = kSignature + 25;
  return png.substr(0, kSignature) +
         Chunk("IHDR" + BigEndian(side) + BigEndian(side) + depth + colourType +
               std::string(3, '\0')) +
         png.substr(kHeaderEnd);
}

// The header says how much a picture holds; too little, too much and more than the limit are
// distinguished before memory is taken for it.
TEST_F(ImageFile, RefusesWhatIsNotAsLargeAsItsHeaderSays) {
  const std::string small = tarvo::EncodePng(Picture(5, 5, Rgba{200, 100, 50, 255}));
  const std::string large = tarvo::EncodePng(Picture(700, 700));
  const std::string empty = small.substr(0, 33) + Chunk(std::string("IDAT")) + Chunk("IEND");
  // A whole stream of no data, in a file of 65 bytes.
  const std::string nothing =
      small.substr(0, 33) + Chunk(std::string("IDATx\x9C\x03\0\0\0\0\x01", 12)) + Chunk("IEND");
  const struct {
    std::string png;
    std::string message;
  } cases[] = {
      {WithHeader(small, 9, 8, 6), "damaged PNG file (its data end too early)"},
      {WithHeader(empty, 16384, 8, 6), "damaged PNG file (its data end too early)"},
      {WithHeader(nothing, 16384, 8, 2), "damaged PNG file (its data end too early)"},
      {WithHeader(nothing, 16384, 16, 6), "too large: a picture of at most 2147483647 bytes"},
      {WithHeader(nothing, 16384, 16, 2), "too large: a picture of at most 2147483647 bytes"},
      {WithHeader(large, 4, 8, 6),
       "damaged PNG file (its data inflate to more than 1048644 bytes)"},
      {WithHeader(nothing, 16385, 8, 6), "at most 16384 pixels on a side"},
  };
  EXPECT_EQ(cases[3].png.size(), 65U);
  for (const auto& [png, message] : cases) {
    tarvo::WriteWholeFile(folder_ / "a.png", png);
    try {
      static_cast<void>(tarvo::ReadPng(folder_ / "a.png"));
      ADD_FAILURE() << "no error: " << message;
    } catch (const FileError& error) {
      EXPECT_TRUE(std::string(error.what()).starts_with(message)) << error.what();
    }
    EXPECT_FALSE(tarvo::IsWholePng(folder_ / "a.png", 4, 4));
  }
}

/// A PNG file of 4 x 4 pixels, all of palette index 1, in chunks of IDAT as they are given.
std::string Indexed(const std::string& palette, const std::vector<std::string>& data) {
  const std::string header = WithHeader(tarvo::EncodePng(Picture(1, 1)), 4, 8, 3).substr(0, 33);
  std::string png = header + Chunk("PLTE" + palette);
  for (const std::string& part : data) {
    png += Chunk("IDAT" + part);
  }
  return png + Chunk("IEND");
}

std::string Compressed(const std::string& bytes) {
  uLongf size = compressBound(static_cast<uLong>(bytes.size()));
  std::string compressed(size, '\0');
  compress(reinterpret_cast<Bytef*>(compressed.data()), &size,
           reinterpret_cast<const Bytef*>(bytes.data()), static_cast<uLong>(bytes.size()));
  compressed.resize(size);
  return compressed;
}

TEST_F(ImageFile, ReadsDataInAnyPartsAndComparesTheirOwnChecksum) {
  const std::string palette("\0\0\0\x10\x20\x30", 6);
  const std::string data = Compressed(std::string(20, '\0').replace(1, 4, 4, '\1'));
  std::vector<std::string> bytes = {"", ""};
  for (const char byte : data) {
    bytes.emplace_back(1, byte);
    bytes.emplace_back();
  }
  tarvo::WriteWholeFile(folder_ / "a.png", Indexed(palette, bytes));
  EXPECT_EQ(tarvo::ReadPng(folder_ / "a.png").At(0, 0), (Rgba{16, 32, 48, 255}));
  tarvo::WriteWholeFile(folder_ / "a.png", Indexed(palette.substr(0, 3), {data}));
  EXPECT_EQ(tarvo::ReadPng(folder_ / "a.png").At(0, 0), (Rgba{0, 0, 0, 255}))
      << "an index beyond the palette is black";
  std::string damaged = data;
  damaged.back() ^= 1;
  tarvo::WriteWholeFile(folder_ / "a.png", Indexed(palette, {damaged}));
  EXPECT_FALSE(tarvo::IsWholePng(folder_ / "a.png", 4, 4));
}

}  // namespace
