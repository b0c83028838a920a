#pragma once

#include <string>

#include "standin/picture.h"
#include "standin/whole_file.h"

namespace standin {

/// Longest side, in pixels, of an image that is read. A texture of the renderer cannot be longer.
inline constexpr int kLongestImageSide = 16384;

/// Reads a PNG file, whatever its colour type and depth, into 8 bits a channel with straight alpha,
/// its origin at (0, 0). Throws FileError when the file cannot be read, is no PNG, is damaged, or
/// has a side longer than `longestSide` pixels (found out before any pixel is decoded).
Picture ReadPng(const FilePath& file, int longestSide = kLongestImageSide);

/// True iff the file is there, and is a PNG file of this size that decodes.
bool IsWholePng(const FilePath& file, int width, int height);

/// A picture as the bytes of a PNG file. Throws FileError when it has no pixels or more bytes than
/// an int counts.
std::string EncodePng(const Picture& picture);

/// Writes a PNG file, whole or not at all. Throws FileError as EncodePng does, and when the file
/// cannot be written.
void WritePng(const FilePath& file, const Picture& picture);

}  // namespace standin
