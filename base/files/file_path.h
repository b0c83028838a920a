#pragma once

#include <filesystem>
#include <string>
#include <utility>

namespace tarvo {

/// Where a file is. All text of ours is UTF-8, and becomes a path here: the C++ library of the
/// Windows build would not take a string for that, though its own path::string() is UTF-8. Implicit
/// on purpose, so that what takes a file takes its name in either form.
class FilePath {
 public:
  FilePath(std::filesystem::path path)  // NOLINT(google-explicit-constructor)
      : path_(std::move(path)) {}
  FilePath(const std::string& utf8)  // NOLINT(google-explicit-constructor)
      : path_(std::u8string(utf8.begin(), utf8.end())) {}
  FilePath(const char* utf8)  // NOLINT(google-explicit-constructor)
      : FilePath(std::string(utf8)) {}

  [[nodiscard]] const std::filesystem::path& Get() const { return path_; }

 private:
  std::filesystem::path path_;
};

/// What a file's name says it holds: ".png", in small letters; empty without one.
std::string EndingOf(const FilePath& file);

}  // namespace tarvo
