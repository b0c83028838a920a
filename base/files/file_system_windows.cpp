#include <algorithm>
#include <system_error>
#include <utility>

#include <io.h>
#include <windows.h>

#include "base/files/file_system.h"

namespace tarvo {
namespace {

constexpr DWORD kAllMayShare = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr DWORD kLargestTransfer = 1U << 20U;

std::string LastErrorText() {
  const DWORD error = GetLastError();
  return std::system_category().message(static_cast<int>(error)) + " (error " +
         std::to_string(error) + ")";
}

FileError CannotBeWritten() { return FileError("cannot be written: " + LastErrorText()); }

/// The C library's text, as on other systems.
FileError CannotBe(const std::string& done) {
  const std::error_code code(static_cast<int>(GetLastError()), std::system_category());
  return FileError("cannot be " + done + ": " + code.default_error_condition().message());
}

std::uint64_t Joined(DWORD high, DWORD low) { return std::uint64_t{high} << 32U | low; }

}  // namespace

/// An open file or folder, closed at the end of the scope.
class OpenFile {
 public:
  OpenFile(const std::filesystem::path& file, DWORD access, DWORD disposition)
      : handle_(CreateFileW(file.c_str(), access, kAllMayShare, nullptr, disposition,
                            FILE_ATTRIBUTE_NORMAL | FILE_FLAG_BACKUP_SEMANTICS, nullptr)) {}
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  ~OpenFile() {
    if (IsOpen()) {
      CloseHandle(handle_);
    }
  }

  [[nodiscard]] bool IsOpen() const { return handle_ != INVALID_HANDLE_VALUE; }
  [[nodiscard]] HANDLE Get() const { return handle_; }

 private:
  HANDLE handle_;
};

namespace {

FileId IdIn(const BY_HANDLE_FILE_INFORMATION& found) {
  return {.volume = found.dwVolumeSerialNumber,
          .index = Joined(found.nFileIndexHigh, found.nFileIndexLow)};
}

std::optional<FileId> IdOf(HANDLE handle) {
  BY_HANDLE_FILE_INFORMATION found{};
  return GetFileInformationByHandle(handle, &found) != 0 ? std::optional(IdIn(found))
                                                         : std::nullopt;
}

/// An open file. Throws FileError.
std::unique_ptr<OpenFile> OpenForReading(const std::filesystem::path& file) {
  auto open = std::make_unique<OpenFile>(file, GENERIC_READ, OPEN_EXISTING);
  if (!open->IsOpen()) {
    throw CannotBe("opened");
  }
  return open;
}

/// The size of what is open. Throws FileError when that is no regular file.
std::uintmax_t SizeOfRegular(const OpenFile& file) {
  const DWORD type = GetFileType(file.Get());
  if (type != FILE_TYPE_DISK) {
    throw FileError(std::string("regular file expected, ") +
                    (type == FILE_TYPE_PIPE ? "pipe" : "device") + " given");
  }
  LARGE_INTEGER size{};
  if (GetFileSizeEx(file.Get(), &size) == 0) {
    throw CannotBe("read");
  }
  return static_cast<std::uintmax_t>(size.QuadPart);
}

bool IsLink(const std::filesystem::path& file) {
  const DWORD attributes = GetFileAttributesW(file.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}

void Flush(const std::filesystem::path& file) {
  const OpenFile open(file, GENERIC_WRITE, OPEN_EXISTING);
  if (!open.IsOpen() || FlushFileBuffers(open.Get()) == 0) {
    throw CannotBeWritten();
  }
}

}  // namespace

std::optional<FileId> IdOf(const std::filesystem::path& file) {
  const OpenFile open(file, 0, OPEN_EXISTING);
  return open.IsOpen() ? IdOf(open.Get()) : std::nullopt;
}

std::optional<FileId> IdOf(std::FILE* stream) {
  const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
  const bool isFile = handle != INVALID_HANDLE_VALUE && GetFileType(handle) == FILE_TYPE_DISK;
  return isFile ? IdOf(handle) : std::nullopt;
}

FileStamp StampOf(const std::filesystem::path& file) {
  // Asks for no right to its bytes: an editor may hold it.
  const OpenFile open(file, FILE_READ_ATTRIBUTES, OPEN_EXISTING);
  BY_HANDLE_FILE_INFORMATION found{};
  FILE_BASIC_INFO times{};
  if (!open.IsOpen() || GetFileInformationByHandle(open.Get(), &found) == 0 ||
      GetFileInformationByHandleEx(open.Get(), FileBasicInfo, &times, sizeof times) == 0) {
    return {};
  }
  return {.id = IdIn(found),
          .saved = times.LastWriteTime.QuadPart,
          .changed = times.ChangeTime.QuadPart,
          .bytes = Joined(found.nFileSizeHigh, found.nFileSizeLow)};
}

std::string ComparableName(const std::filesystem::path& file) {
  std::wstring name = file.filename().wstring();
  CharUpperBuffW(name.data(), static_cast<DWORD>(name.size()));
  return std::filesystem::path(name).string();
}

FileKind KindOf(const std::filesystem::path& file) {
  const OpenFile open(file, 0, OPEN_EXISTING);
  if (!open.IsOpen()) {
    const DWORD error = GetLastError();
    if (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND) {
      return FileKind::kAbsent;
    }
    throw CannotBeWritten();
  }
  if (GetFileType(open.Get()) != FILE_TYPE_DISK) {
    return FileKind::kOther;
  }
  BY_HANDLE_FILE_INFORMATION found{};
  if (GetFileInformationByHandle(open.Get(), &found) == 0) {
    throw CannotBeWritten();
  }
  const bool isFolder = (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  return isFolder ? FileKind::kFolder : FileKind::kRegular;
}

bool IsReadOnly(const std::filesystem::path& file) {
  const DWORD attributes = GetFileAttributesW(file.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
}

std::filesystem::path FollowLinks(const std::filesystem::path& file) {
  if (!IsLink(file)) {
    return file;
  }
  const OpenFile open(file, 0, OPEN_EXISTING);
  std::wstring name(32'768, L'\0');
  const DWORD length = open.IsOpen() ? GetFinalPathNameByHandleW(open.Get(), name.data(),
                                                                 static_cast<DWORD>(name.size()), 0)
                                     : 0;
  if (length == 0 || length >= name.size()) {
    throw FileError("cannot be written: it is a link that leads to no file");
  }
  name.resize(length);
  return name;
}

RegularFile::RegularFile(const std::filesystem::path& file)
    : open_(OpenForReading(file)), size_(SizeOfRegular(*open_)) {}

RegularFile::~RegularFile() = default;

std::size_t RegularFile::Read(char* bytes, std::size_t count) const {
  DWORD got = 0;
  const auto part = static_cast<DWORD>(std::min<std::size_t>(count, kLargestTransfer));
  if (ReadFile(open_->Get(), bytes, part, &got, nullptr) == 0) {
    throw CannotBe("read");
  }
  return got;
}

void CreateNew(const std::filesystem::path& file) {
  if (!OpenFile(file, GENERIC_WRITE, CREATE_NEW).IsOpen()) {
    throw CannotBeWritten();
  }
}

void WriteExisting(const std::filesystem::path& file, std::string_view bytes) {
  const OpenFile open(file, GENERIC_WRITE, OPEN_EXISTING);
  if (!open.IsOpen()) {
    throw CannotBeWritten();
  }
  while (!bytes.empty()) {
    DWORD written = 0;
    const auto part = static_cast<DWORD>(std::min<std::size_t>(bytes.size(), kLargestTransfer));
    if (WriteFile(open.Get(), bytes.data(), part, &written, nullptr) == 0) {
      throw CannotBeWritten();
    }
    bytes.remove_prefix(written);
  }
}

void PutInPlace(const std::filesystem::path& part, const std::filesystem::path& file, Sync sync) {
  if (sync == Sync::kYes) {
    Flush(part);
  }
  // Keeps attributes, owner and access rights of what it replaces; a rename would not.
  if (ReplaceFileW(file.c_str(), part.c_str(), nullptr, REPLACEFILE_IGNORE_MERGE_ERRORS, nullptr,
                   nullptr) != 0) {
    if (sync == Sync::kYes) {
      Flush(file);
    }
    return;
  }
  // Nothing to replace, or a file system without this operation. The name is on the disk when the
  // call returns if that was asked for.
  const DWORD flags =
      MOVEFILE_REPLACE_EXISTING | (sync == Sync::kYes ? MOVEFILE_WRITE_THROUGH : 0U);
  if (MoveFileExW(part.c_str(), file.c_str(), flags) == 0) {
    throw CannotBeWritten();
  }
}

}  // namespace tarvo
