#include "base/files/whole_file.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <random>
#include <system_error>

namespace tarvo {
namespace {

void ExpectAtMost(std::uintmax_t bytes, std::uintmax_t most) {
  if (bytes > most) {
    throw FileError("at most " + std::to_string(most) + " bytes expected, " +
                    std::to_string(bytes) + " given");
  }
}

/// The system would end the name at that byte and open another file than the one named.
void ExpectName(const std::filesystem::path& name) {
  if (name.native().find(std::filesystem::path::value_type{}) !=
      std::filesystem::path::string_type::npos) {
    throw FileError("file name expected, one with a zero byte given");
  }
}

void ExpectFolder(const std::filesystem::path& file) {
  std::error_code ignored;
  const std::filesystem::path folder = file.has_parent_path() ? file.parent_path() : ".";
  if (!std::filesystem::is_directory(folder, ignored)) {
    throw FileError("the folder " + folder.string() + " does not exist");
  }
}

/// Where the bytes of a file go.
struct Destination {
  std::filesystem::path file;  ///< behind all links
  FileKind kind = FileKind::kAbsent;
};

Destination DestinationOf(const std::filesystem::path& name) {
  ExpectName(name);
  ExpectFolder(name);
  const FileKind kind = KindOf(name);
  if (!name.has_filename() || kind == FileKind::kFolder) {
    throw FileError("file name expected, folder given");
  }
  if (kind != FileKind::kAbsent && IsReadOnly(name)) {
    throw FileError("cannot be written: it is read-only");
  }
  if (kind == FileKind::kOther) {
    return {name, kind};  // the links to a program's own streams have no names behind them
  }
  const std::filesystem::path file = FollowLinks(name);
  ExpectFolder(file);
  return {file, kind};
}

/// The file to be replaced, or to be made.
std::filesystem::path ReplaceableFile(const std::filesystem::path& name) {
  const Destination destination = DestinationOf(name);
  if (destination.kind == FileKind::kOther) {
    throw FileError("regular file expected, a pipe or a device given");
  }
  return destination.file;
}

/// A name that no file in the folder of `file` has.
std::filesystem::path TemporaryName(const std::filesystem::path& file) {
  std::random_device random;
  const std::uint64_t number = std::uint64_t{random()} << 32U | random();
  return file.parent_path() / ("tarvo-" + std::to_string(number) + ".part");
}

}  // namespace

std::string ReadWholeFile(const FilePath& file, std::uintmax_t most) {
  ExpectName(file.Get());
  std::error_code ignored;
  if (std::filesystem::is_directory(file.Get(), ignored)) {
    throw FileError("file expected, folder given");
  }
  constexpr std::size_t kPortion = std::size_t{1} << 16;
  const RegularFile open(file.Get());
  ExpectAtMost(open.Size(), most);
  std::string bytes;
  for (std::size_t used = 0;;) {  // to the very end: the file may have grown
    const std::size_t known = open.Size() > used ? static_cast<std::size_t>(open.Size()) - used : 0;
    bytes.resize(used + known + kPortion);
    const std::size_t got = open.Read(bytes.data() + used, bytes.size() - used);
    used += got;
    ExpectAtMost(used, most);
    if (got == 0) {
      bytes.resize(used);
      return bytes;
    }
  }
}

std::uint64_t Fingerprint(std::string_view bytes, std::uint64_t before) {
  constexpr std::uint64_t kFactor = 0x9E37'79B9'7F4A'7C15;  // odd: no two numbers become one
  return before * kFactor + std::hash<std::string_view>()(bytes);
}

void ExpectWritable(const FilePath& file) {
  if (DestinationOf(file.Get()).kind != FileKind::kOther) {
    const PartFile attempt(file);
  }
}

void ExpectFolderWritable(const FilePath& file) {
  ExpectName(file.Get());
  ExpectFolder(file.Get());
  const PartFile attempt(TemporaryName(file.Get()));
}

void ExpectReplaceable(const FilePath& file) { ReplaceableFile(file.Get()); }

PartFile::PartFile(const FilePath& finalName)
    : finalName_(ReplaceableFile(finalName.Get())), partName_(TemporaryName(finalName_)) {
  CreateNew(partName_);
  entry_.NoteMade();
}

PartFile::~PartFile() {
  std::error_code ignored;
  std::filesystem::remove(partName_, ignored);
}

void PartFile::Write(std::string_view bytes) const { WriteExisting(partName_, bytes); }

void PartFile::Rename(Sync sync) const { PutInPlace(partName_, finalName_, sync); }

void WriteWholeFile(const FilePath& file, std::string_view bytes, Sync sync) {
  const Destination destination = DestinationOf(file.Get());
  if (destination.kind == FileKind::kOther) {
    WriteExisting(destination.file, bytes);
    return;
  }
  const PartFile part(file);
  part.Write(bytes);
  part.Rename(sync);
}

}  // namespace tarvo
