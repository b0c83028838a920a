#pragma once

#include <string>

#include "base/files/whole_file.h"
#include "base/image/picture.h"

namespace tarvo {

/// Longest side, in pixels, of an image that is read. A texture of the renderer cannot be longer.
inline constexpr int kLongestImageSide = 16384;

/// A PNG file that was read and checked to its end, and is not decoded yet.
class PngFile {
 public:
  /// Throws FileError when the file cannot be read, is no PNG, is damaged (a checksum is wrong, its
  /// data inflate to less or to far more than its size says), or is too large: it has a side longer
  /// than `longestSide` pixels, or more bytes than the decoder counts. All of it is found out in
  /// little memory.
  explicit PngFile(const FilePath& file, int longestSide = kLongestImageSide);

  [[nodiscard]] int Width() const { return width_; }
  [[nodiscard]] int Height() const { return height_; }
  /// The whole file as it was read.
  [[nodiscard]] const std::string& Bytes() const { return bytes_; }
  /// Its pixels as ReadPng gives them. Throws FileError when they are damaged, and OutOfMemory.
  [[nodiscard]] Picture Decode() const;

 private:
  std::string bytes_;
  int width_ = 0;
  int height_ = 0;
};

/// Reads a PNG file, whatever its colour type and depth, into 8 bits a channel with straight alpha,
/// its origin at (0, 0). Throws as PngFile does.
Picture ReadPng(const FilePath& file, int longestSide = kLongestImageSide);

/// True iff the file is there, and is a PNG file of this size that decodes; false for a pipe or a
/// device, which is not read. Throws OutOfMemory.
bool IsWholePng(const FilePath& file, int width, int height);

/// A picture as the bytes of a PNG file. Throws FileError when it has no pixels or more bytes than
/// an int counts.
std::string EncodePng(const Picture& picture);

/// Writes a PNG file as WriteWholeFile does. Throws FileError as EncodePng does, and when the file
/// cannot be written.
void WritePng(const FilePath& file, const Picture& picture, Sync sync = Sync::kYes);

}  // namespace tarvo
