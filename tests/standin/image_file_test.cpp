#include "standin/image_file.h"

#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include <gtest/gtest.h>

namespace {

using standin::FileError;
using standin::Picture;
using standin::Rgba;

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
  standin::WritePng(folder_ / "a.png", picture);
  EXPECT_EQ(standin::ReadPng(folder_ / "a.png"), picture);
  EXPECT_EQ(FilesInFolder(), 1U);
}

TEST_F(ImageFile, LeavesTheFolderAsItWasWhenAPictureCannotBeWritten) {
  EXPECT_THROW(standin::WritePng(folder_ / "a.png", Picture(0, 5)), FileError);
  EXPECT_THROW(standin::WritePng(folder_ / "none" / "a.png", Picture(1, 1)), FileError);
  std::filesystem::create_directory(folder_ / "a.png");
  EXPECT_THROW(standin::WritePng(folder_ / "a.png", Picture(1, 1)), FileError);
  EXPECT_EQ(FilesInFolder(), 1U);
}

TEST_F(ImageFile, RefusesEveryShorterPartOfAFile) {
  standin::WritePng(folder_ / "a.png", Picture(5, 5, Rgba{200, 100, 50, 255}));
  const std::string bytes = standin::ReadWholeFile(folder_ / "a.png");
  const std::size_t checksumOfEnd = 4;  // not looked at by the decoder
  for (std::size_t length = 0; length + checksumOfEnd < bytes.size(); ++length) {
    standin::WriteWholeFile(folder_ / "b.png", bytes.substr(0, length));
    EXPECT_THROW(standin::ReadPng(folder_ / "b.png"), FileError) << length << " bytes";
  }
}

}  // namespace
