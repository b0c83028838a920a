#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "base/files/file_path.h"
#include "base/files/file_system.h"
#include "base/files/temporary_files.h"

namespace tarvo {

/// Most bytes of a file that is read: the PNG decoder counts them in an int.
inline constexpr std::uintmax_t kLargestFile = 2'147'483'647;

/// The bytes of a regular file. Throws FileError when it is a folder, a pipe or a device, has more
/// than `most` bytes, cannot be opened or cannot be read to its end.
std::string ReadWholeFile(const FilePath& file, std::uintmax_t most = kLargestFile);

/// A hash of these bytes, the same in every process of this program; `before` is that
/// of bytes that precede them.
std::uint64_t Fingerprint(std::string_view bytes, std::uint64_t before = 0);

/// Throws FileError when nothing can be written under that name: its folder is missing or takes no
/// new files, or the name is a folder's or a read-only file's. Worth knowing before the work of
/// making what goes into it. A pipe or a device can be written.
void ExpectWritable(const FilePath& file);

/// Throws FileError when no new file can be made in the folder of that name, whatever the name
/// leads to now.
void ExpectFolderWritable(const FilePath& file);

/// Throws FileError when the name leads to what a file cannot take the place of: a folder, a
/// read-only file, a pipe or a device.
void ExpectReplaceable(const FilePath& file);

/// A new file under a temporary name in the folder of the final one, where symbolic links are
/// followed: gone at the end of the scope unless renamed.
class PartFile {
 public:
  /// Throws FileError as ExpectReplaceable does, and when the file cannot be made.
  explicit PartFile(const FilePath& finalName);
  PartFile(const PartFile&) = delete;
  PartFile& operator=(const PartFile&) = delete;
  ~PartFile();

  /// Where it is, for others to write to.
  [[nodiscard]] const std::filesystem::path& Name() const { return partName_; }
  /// Throws FileError.
  void Write(std::string_view bytes) const;
  /// Gives it its final name, in place of any file of that name, whose mode and owner it takes
  /// over. Throws FileError.
  void Rename(Sync sync) const;

 private:
  std::filesystem::path finalName_;
  std::filesystem::path partName_;
  TemporaryFileEntry entry_{partName_};  // last: it refers to the name
};

/// Writes a file whole or not at all: under a temporary name in the same folder first, then renamed
/// over `file`. Symbolic links stay, and the file that they lead to is replaced; a pipe or a device
/// is written as it is. Throws FileError, and leaves the folder as it was, when it cannot.
void WriteWholeFile(const FilePath& file, std::string_view bytes, Sync sync = Sync::kYes);

}  // namespace tarvo
