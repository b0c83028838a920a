#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

namespace standin {

/// Why a file could not be read or written, without the file's name.
struct FileError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// The bytes of a file. Throws FileError when it is a folder, cannot be opened or cannot be read.
std::string ReadWholeFile(const std::filesystem::path& file);

/// Throws FileError when no file of that name can be made, because its folder is missing or the
/// name is a folder's: worth knowing before the work of making what goes into it.
void ExpectWritable(const std::filesystem::path& file);

/// Writes a file whole or not at all: under a temporary name in the same folder first, then renamed
/// over `file`. Throws FileError, and leaves the folder as it was, when it cannot.
void WriteWholeFile(const std::filesystem::path& file, std::string_view bytes);

}  // namespace standin
