#pragma once

#include <cstddef>
#include <filesystem>

namespace tarvo {

/// Registers a temporary file for the time of a scope, so that an interrupt removes it. Can be used
/// by several threads. Removing the file in all other cases is the caller's.
class TemporaryFileEntry {
 public:
  /// REQUIRES: the path outlives this object and does not change.
  explicit TemporaryFileEntry(const std::filesystem::path& file);
  TemporaryFileEntry(const TemporaryFileEntry&) = delete;
  TemporaryFileEntry& operator=(const TemporaryFileEntry&) = delete;
  ~TemporaryFileEntry();

  /// To be called once the file is made: an interrupt in between has found none to remove.
  void NoteMade() const;

 private:
  const std::filesystem::path& file_;
  std::size_t slot_;
};

/// Removes all registered files. For the end of the process alone, and safe in a signal handler:
/// threads that register a file, make it or end a registration from now on stop there.
void RemoveTemporaryFiles();

}  // namespace tarvo
