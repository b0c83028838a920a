#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

#include "standin/file_path.h"

namespace standin {

/// Why a file could not be read or written, without the file's name.
struct FileError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// The bytes of a file. Throws FileError when it is a folder, cannot be opened or cannot be read.
std::string ReadWholeFile(const FilePath& file);

/// Throws FileError when no file of that name can be made, because its folder is missing or the
/// name is a folder's: worth knowing before the work of making what goes into it.
void ExpectWritable(const FilePath& file);

/// A file under a temporary name in its own folder: gone at the end of the scope unless renamed.
class PartFile {
 public:
  explicit PartFile(const FilePath& finalName);
  PartFile(const PartFile&) = delete;
  PartFile& operator=(const PartFile&) = delete;
  ~PartFile();

  /// Where it is, for others to write to.
  [[nodiscard]] const std::filesystem::path& Name() const { return partName_; }
  /// Throws FileError.
  void Write(std::string_view bytes) const;
  /// Gives it its final name, in place of any file of that name. Throws FileError.
  void Rename() const;

 private:
  std::filesystem::path finalName_;
  std::filesystem::path partName_;
};

/// Writes a file whole or not at all: under a temporary name in the same folder first, then renamed
/// over `file`. Throws FileError, and leaves the folder as it was, when it cannot.
void WriteWholeFile(const FilePath& file, std::string_view bytes);

}  // namespace standin
