#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <tuple>

/// \file
/// What the C++ library cannot ask of files or do with them; one source for each system.

namespace tarvo {

/// Why a file could not be read or written, without the file's name.
struct FileError : std::runtime_error {
  explicit FileError(const std::string& what) : std::runtime_error(what) {}
};

/// Whether a file and its name are on the disk itself, safe from a loss of power, before the call
/// that writes it returns.
enum class Sync { kNo, kYes };

/// A file on this machine, whatever it is called: two names lead to one file iff these are equal.
struct FileId {
  std::uint64_t volume = 0;
  std::uint64_t index = 0;

  bool operator==(const FileId&) const = default;
  bool operator<(const FileId& other) const {
    return std::tie(volume, index) < std::tie(other.volume, other.index);
  }
};

/// The file that a name leads to, through all links; none when there is no such file.
std::optional<FileId> IdOf(const std::filesystem::path& file);

/// The regular file that a stream of this program reads or writes; none when it is something else.
std::optional<FileId> IdOf(std::FILE* stream);

/// Metadata of a file, read without its contents. Two of these differ once the file was saved,
/// replaced, created or deleted: also by one of the same size and the same time of its last change,
/// which a copy may keep.
struct FileStamp {
  FileId id;
  std::int64_t saved = 0;    ///< when its bytes were last written, in units of the system
  std::int64_t changed = 0;  ///< when anything of it changed, its name too
  std::uintmax_t bytes = 0;

  bool operator==(const FileStamp&) const = default;
};

/// All zeros for a file that cannot be asked for.
FileStamp StampOf(const std::filesystem::path& file);

/// The last component of a path in a form that is equal for all spellings that the system takes for
/// one name: on Windows the case of letters does not count.
std::string ComparableName(const std::filesystem::path& file);

enum class FileKind { kAbsent, kRegular, kFolder, kOther };

/// What a name leads to, through all links; kOther is a pipe, a device or a socket. Throws
/// FileError when the system refuses, for instance because a folder may not be searched.
FileKind KindOf(const std::filesystem::path& file);

/// True iff the file is marked as read-only, or this user may not write to it.
bool IsReadOnly(const std::filesystem::path& file);

/// The name that symbolic links lead to, whether a file of that name is there or not. Throws
/// FileError when they lead in a circle, or to a file that has no name any more.
std::filesystem::path FollowLinks(const std::filesystem::path& file);

class OpenFile;

/// A regular file that is open for reading, closed at the end of the scope.
class RegularFile {
 public:
  /// Throws FileError when it cannot be opened, and when it is no regular file: a pipe or a device
  /// may have no end. The kind is that of what was opened, whatever has that name by then.
  explicit RegularFile(const std::filesystem::path& file);
  RegularFile(const RegularFile&) = delete;
  RegularFile& operator=(const RegularFile&) = delete;
  ~RegularFile();

  /// In bytes, when it was opened; 0 for some of the system's own files that have bytes.
  [[nodiscard]] std::uintmax_t Size() const { return size_; }
  /// Reads up to so many of the next bytes; 0 at the end of the file. Throws FileError.
  [[nodiscard]] std::size_t Read(char* bytes, std::size_t count) const;

 private:
  std::unique_ptr<OpenFile> open_;
  std::uintmax_t size_ = 0;
};

/// Makes an empty file. Throws FileError when it cannot, or when there is one of that name.
void CreateNew(const std::filesystem::path& file);

/// Writes into a file, a pipe or a device that is there. Throws FileError.
void WriteExisting(const std::filesystem::path& file, std::string_view bytes);

/// Renames `part` to `file`, in place of the file of that name, whose mode it keeps, and whose
/// owner where this user may give files away. Throws FileError when it cannot, and leaves `file` as
/// it was.
void PutInPlace(const std::filesystem::path& part, const std::filesystem::path& file, Sync sync);

}  // namespace tarvo
