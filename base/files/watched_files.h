#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <utility>
#include <vector>

#include "base/files/file_system.h"

namespace tarvo {

/// The stamps of several files.
using FileStamps = std::map<std::filesystem::path, FileStamp>;

FileStamps StampsOf(const std::vector<std::filesystem::path>& files);

/// A file, the files that it names, and how they all were when last looked at. The file is read
/// again only when it was saved.
class WatchedFiles {
 public:
  /// Reads a file's own name and those of the files that it names.
  using FilesOf = std::function<std::vector<std::filesystem::path>(const std::filesystem::path&)>;

  WatchedFiles(std::filesystem::path file, FilesOf filesOf)
      : file_(std::move(file)), filesOf_(std::move(filesOf)) {
    Look();
  }

  /// True iff something is new since the look before.
  bool Look();
  [[nodiscard]] const FileStamps& Stamps() const { return stamps_; }

 private:
  std::filesystem::path file_;
  FilesOf filesOf_;
  FileStamp read_;  ///< of the file, before it was read last
  std::vector<std::filesystem::path> files_;
  FileStamps stamps_;
};

}  // namespace tarvo
