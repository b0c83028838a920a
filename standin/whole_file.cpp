#include "standin/whole_file.h"

#include <cerrno>
#include <fstream>
#include <random>
#include <sstream>
#include <system_error>

namespace standin {
namespace {

std::string LastSystemError() { return std::error_code(errno, std::generic_category()).message(); }

/// A file under its temporary name: gone at the end of the scope unless renamed.
class PartFile {
 public:
  explicit PartFile(const std::filesystem::path& finalName)
      : finalName_(finalName), partName_(finalName) {
    partName_ += "." + std::to_string(std::random_device{}()) + ".part";
  }
  PartFile(const PartFile&) = delete;
  PartFile& operator=(const PartFile&) = delete;
  ~PartFile() {
    std::error_code ignored;
    std::filesystem::remove(partName_, ignored);
  }

  void Write(std::string_view bytes) const {
    std::ofstream stream(partName_, std::ios::binary);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    stream.close();
    if (!stream) {
      throw FileError("cannot be written: " + LastSystemError());
    }
  }

  void Rename() const {
    std::error_code failure;
    std::filesystem::rename(partName_, finalName_, failure);
    if (failure) {
      throw FileError("cannot be written: " + failure.message());
    }
  }

 private:
  std::filesystem::path finalName_;
  std::filesystem::path partName_;
};

}  // namespace

std::string ReadWholeFile(const std::filesystem::path& file) {
  std::error_code ignored;
  if (std::filesystem::is_directory(file, ignored)) {
    throw FileError("file expected, folder given");
  }
  const std::ifstream stream(file, std::ios::binary);
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

void ExpectWritable(const std::filesystem::path& file) {
  std::error_code ignored;
  const std::filesystem::path folder = file.has_parent_path() ? file.parent_path() : ".";
  if (!std::filesystem::is_directory(folder, ignored)) {
    throw FileError("the folder " + folder.string() + " does not exist");
  }
  if (!file.has_filename() || std::filesystem::is_directory(file, ignored)) {
    throw FileError("file name expected, folder given");
  }
}

void WriteWholeFile(const std::filesystem::path& file, std::string_view bytes) {
  ExpectWritable(file);
  const PartFile part(file);
  part.Write(bytes);
  part.Rename();
}

}  // namespace standin
