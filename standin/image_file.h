#pragma once

#include <filesystem>

#include "standin/picture.h"
#include "standin/whole_file.h"

namespace standin {

/// Longest side, in pixels, of an image that is read. A texture of the renderer cannot be longer.
inline constexpr int kLongestImageSide = 16384;

/// Reads a PNG file, whatever its colour type and depth, into 8 bits a channel with straight alpha,
/// its origin at (0, 0). Throws FileError when the file cannot be read, is no PNG, is damaged, or
/// has a side longer than kLongestImageSide (found out before any pixel is decoded).
Picture ReadPng(const std::filesystem::path& file);

/// Writes a PNG file, whole or not at all. Throws FileError when the picture has no pixels or more
/// bytes than an int counts, or the file cannot be written.
void WritePng(const std::filesystem::path& file, const Picture& picture);

}  // namespace standin
