#include "standin/file_stamps.h"

#include <system_error>

namespace standin {

FileStamps::FileStamps(const std::vector<std::filesystem::path>& files) {
  for (const std::filesystem::path& file : files) {
    // What cannot be asked keeps the value that the library gives for it.
    std::error_code ignored;
    stamps_[file] = {std::filesystem::last_write_time(file, ignored),
                     std::filesystem::file_size(file, ignored)};
  }
}

}  // namespace standin
