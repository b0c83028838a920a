#include "base/files/watched_files.h"

namespace tarvo {

FileStamps StampsOf(const std::vector<std::filesystem::path>& files) {
  FileStamps stamps;
  for (const std::filesystem::path& file : files) {
    stamps.emplace(file, StampOf(file));
  }
  return stamps;
}

bool WatchedFiles::Look() {
  // Before the file is read: what is saved meanwhile is found at the next look.
  const FileStamp now = StampOf(file_);
  if (files_.empty() || now != read_) {
    read_ = now;
    files_ = filesOf_(file_);
  }
  const FileStamps before = std::exchange(stamps_, StampsOf(files_));
  return stamps_ != before;
}

}  // namespace tarvo
