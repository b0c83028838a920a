#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <vector>

namespace standin {

/// When files were last saved and how long they are: two of these differ once one of the files was
/// saved, came or went.
class FileStamps {
 public:
  explicit FileStamps(const std::vector<std::filesystem::path>& files);

  bool operator==(const FileStamps&) const = default;

 private:
  struct Stamp {
    std::filesystem::file_time_type saved;
    std::uintmax_t bytes = 0;

    bool operator==(const Stamp&) const = default;
  };

  std::map<std::filesystem::path, Stamp> stamps_;
};

}  // namespace standin
