#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/files/file_system.h"

namespace tarvo {
namespace {

constexpr mode_t kModeOfNewFiles = 0666;  // less the user's mask
constexpr int kMostLinks = 40;            // as many as the kernel follows

/// With the system's latest error.
FileError ErrorOf(const std::string& what) {
  return FileError(what + ": " + std::generic_category().message(errno));
}

FileError CannotBeWritten() { return ErrorOf("cannot be written"); }

}  // namespace

/// An open file, closed at the end of the scope.
class OpenFile {
 public:
  OpenFile(const std::filesystem::path& file, int flags, const char* failure = "cannot be written")
      : number_(open(file.c_str(), flags | O_CLOEXEC, kModeOfNewFiles)) {
    if (number_ < 0) {
      throw ErrorOf(failure);
    }
  }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  ~OpenFile() {
    if (number_ >= 0) {
      close(number_);
    }
  }

  [[nodiscard]] int Get() const { return number_; }

  /// Up to so many of the next bytes; 0 at the end of the file.
  std::size_t Read(char* bytes, std::size_t count) const {
    while (true) {
      const ssize_t got = read(number_, bytes, count);
      if (got >= 0) {
        return static_cast<std::size_t>(got);
      }
      if (errno != EINTR) {
        throw ErrorOf("cannot be read");
      }
    }
  }

  void Write(std::string_view bytes) const {
    while (!bytes.empty()) {
      const ssize_t written = write(number_, bytes.data(), bytes.size());
      if (written >= 0) {
        bytes.remove_prefix(static_cast<std::size_t>(written));
      } else if (errno != EINTR) {
        throw CannotBeWritten();
      }
    }
  }

  /// Some file systems have nothing to synchronize, and say so.
  void Synchronize() const {
    if (fsync(number_) != 0 && errno != EINVAL && errno != ENOTSUP) {
      throw CannotBeWritten();
    }
  }

  /// File systems of a network may report what was not written as late as here.
  void Close() {
    if (close(std::exchange(number_, -1)) != 0) {
      throw CannotBeWritten();
    }
  }

 private:
  int number_;
};

namespace {

std::optional<struct stat> StatusOf(const std::filesystem::path& file) {
  struct stat status {};
  return stat(file.c_str(), &status) == 0 ? std::optional(status) : std::nullopt;
}

FileId IdIn(const struct stat& status) { return {.volume = status.st_dev, .index = status.st_ino}; }

std::int64_t Nanoseconds(const timespec& time) {
  constexpr std::int64_t kPerSecond = 1'000'000'000;
  return std::int64_t{time.tv_sec} * kPerSecond + time.tv_nsec;
}

const char* NameOfKind(mode_t mode) {
  if (S_ISDIR(mode)) {
    return "folder";
  }
  return S_ISFIFO(mode) ? "pipe" : "device";
}

/// The size of what is open. Throws FileError when that is no regular file.
std::uintmax_t SizeOfRegular(const OpenFile& file) {
  struct stat status {};
  if (fstat(file.Get(), &status) != 0) {
    throw ErrorOf("cannot be read");
  }
  if (!S_ISREG(status.st_mode)) {
    throw FileError(std::string("regular file expected, ") + NameOfKind(status.st_mode) + " given");
  }
  return static_cast<std::uintmax_t>(status.st_size);
}

/// The owner is set first: a change of owner clears bits of the mode. Bits that lend the owner's
/// rights are kept only together with the owner.
void TakeOverModeAndOwner(const OpenFile& part, const struct stat& replaced) {
  const bool hasOwner = fchown(part.Get(), replaced.st_uid, replaced.st_gid) == 0;
  const bool hasGroup =
      hasOwner || fchown(part.Get(), static_cast<uid_t>(-1), replaced.st_gid) == 0;
  mode_t mode = replaced.st_mode & 07777U;
  mode &= hasOwner ? mode : ~static_cast<mode_t>(S_ISUID);
  mode &= hasGroup ? mode : ~static_cast<mode_t>(S_ISGID);
  if (fchmod(part.Get(), mode) != 0 && errno != EPERM && errno != ENOTSUP) {
    throw CannotBeWritten();
  }
}

std::filesystem::path FolderOf(const std::filesystem::path& file) {
  return file.has_parent_path() ? file.parent_path() : ".";
}

}  // namespace

std::optional<FileId> IdOf(const std::filesystem::path& file) {
  const auto status = StatusOf(file);
  return status ? std::optional(IdIn(*status)) : std::nullopt;
}

std::optional<FileId> IdOf(std::FILE* stream) {
  struct stat status {};
  const bool isFile = fstat(fileno(stream), &status) == 0 && S_ISREG(status.st_mode);
  return isFile ? std::optional(IdIn(status)) : std::nullopt;
}

FileStamp StampOf(const std::filesystem::path& file) {
  const auto status = StatusOf(file);
  if (!status) {
    return {};
  }
  return {.id = IdIn(*status),
          .saved = Nanoseconds(status->st_mtim),
          .changed = Nanoseconds(status->st_ctim),
          .bytes = static_cast<std::uintmax_t>(status->st_size)};
}

std::string ComparableName(const std::filesystem::path& file) { return file.filename().string(); }

FileKind KindOf(const std::filesystem::path& file) {
  const auto status = StatusOf(file);
  if (!status && errno == ENOENT) {
    return FileKind::kAbsent;
  }
  if (!status) {
    throw CannotBeWritten();
  }
  return S_ISREG(status->st_mode)   ? FileKind::kRegular
         : S_ISDIR(status->st_mode) ? FileKind::kFolder
                                    : FileKind::kOther;
}

bool IsReadOnly(const std::filesystem::path& file) {
  constexpr mode_t kMayWrite = S_IWUSR | S_IWGRP | S_IWOTH;
  const auto status = StatusOf(file);
  // The administrator may write to every file, and is warned by its mode all the same.
  return (status && (status->st_mode & kMayWrite) == 0) ||
         faccessat(AT_FDCWD, file.c_str(), W_OK, AT_EACCESS) != 0;
}

std::filesystem::path FollowLinks(const std::filesystem::path& file) {
  std::filesystem::path end = file;
  std::error_code noLink;
  for (int links = 0; links < kMostLinks; ++links) {
    const std::filesystem::path target = std::filesystem::read_symlink(end, noLink);
    if (noLink) {
      if (IdOf(end) != IdOf(file)) {
        throw FileError("cannot be written: it is a link to a file that has no name");
      }
      return end;
    }
    end = end.parent_path() / target;  // an absolute target replaces the whole
  }
  throw FileError("cannot be written: its symbolic links lead in a circle");
}

// Not blocking: opening a pipe must not wait for a writer.
RegularFile::RegularFile(const std::filesystem::path& file)
    : open_(std::make_unique<OpenFile>(file, O_RDONLY | O_NONBLOCK | O_NOCTTY, "cannot be opened")),
      size_(SizeOfRegular(*open_)) {}

RegularFile::~RegularFile() = default;

std::size_t RegularFile::Read(char* bytes, std::size_t count) const {
  return open_->Read(bytes, count);
}

void CreateNew(const std::filesystem::path& file) {
  OpenFile(file, O_WRONLY | O_CREAT | O_EXCL).Close();
}

void WriteExisting(const std::filesystem::path& file, std::string_view bytes) {
  OpenFile descriptor(file, O_WRONLY);
  descriptor.Write(bytes);
  descriptor.Close();
}

void PutInPlace(const std::filesystem::path& part, const std::filesystem::path& file, Sync sync) {
  OpenFile descriptor(part, O_WRONLY);
  if (const auto replaced = StatusOf(file)) {
    TakeOverModeAndOwner(descriptor, *replaced);
  }
  if (sync == Sync::kYes) {
    descriptor.Synchronize();
  }
  descriptor.Close();
  if (std::rename(part.c_str(), file.c_str()) != 0) {
    throw CannotBeWritten();
  }
  if (sync == Sync::kYes) {
    OpenFile(FolderOf(file), O_RDONLY | O_DIRECTORY).Synchronize();
  }
}

}  // namespace tarvo
