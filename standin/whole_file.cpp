#include "standin/whole_file.h"

#include <cerrno>
#include <fstream>
#include <random>
#include <sstream>
#include <system_error>
#include <utility>

namespace standin {
namespace {

std::string LastSystemError() { return std::error_code(errno, std::generic_category()).message(); }

}  // namespace

std::string ReadWholeFile(const FilePath& file) {
  std::error_code ignored;
  if (std::filesystem::is_directory(file.Get(), ignored)) {
    throw FileError("file expected, folder given");
  }
  const std::ifstream stream(file.Get(), std::ios::binary);
  if (!stream) {
    throw FileError("cannot be opened: " + LastSystemError());
  }
  std::ostringstream bytes;
  bytes << stream.rdbuf();
  if (stream.bad()) {
    throw FileError("cannot be read");
  }
  return std::move(bytes).str();
}

void ExpectWritable(const FilePath& file) {
  std::error_code ignored;
  const std::filesystem::path& path = file.Get();
  const std::filesystem::path folder = path.has_parent_path() ? path.parent_path() : ".";
  if (!std::filesystem::is_directory(folder, ignored)) {
    throw FileError("the folder " + folder.string() + " does not exist");
  }
  if (!path.has_filename() || std::filesystem::is_directory(path, ignored)) {
    throw FileError("file name expected, folder given");
  }
}

PartFile::PartFile(const FilePath& finalName) : finalName_(finalName.Get()), partName_(finalName_) {
  partName_ += "." + std::to_string(std::random_device{}()) + ".part";
}

PartFile::~PartFile() {
  std::error_code ignored;
  std::filesystem::remove(partName_, ignored);
}

void PartFile::Write(std::string_view bytes) const {
  std::ofstream stream(partName_, std::ios::binary);
  stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  stream.close();
  if (!stream) {
    throw FileError("cannot be written: " + LastSystemError());
  }
}

void PartFile::Rename() const {
  std::error_code failure;
  std::filesystem::rename(partName_, finalName_, failure);
  if (failure) {
    throw FileError("cannot be written: " + failure.message());
  }
}

void WriteWholeFile(const FilePath& file, std::string_view bytes) {
  ExpectWritable(file);
  const PartFile part(file);
  part.Write(bytes);
  part.Rename();
}

}  // namespace standin
