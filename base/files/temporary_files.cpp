#include "base/files/temporary_files.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <thread>

#ifndef _WIN32
#include <unistd.h>
#endif

namespace tarvo {
namespace {

using Path = std::filesystem::path;

/// More than there are threads that write files; a file beyond them is not removed on an interrupt.
constexpr std::size_t kSlots = 1024;
constexpr std::size_t kNoSlot = kSlots;

std::array<std::atomic<const Path*>, kSlots> gFiles{};
std::atomic<bool> gIsEnding = false;

/// A path must remain valid while RemoveTemporaryFiles reads it, and no new file may appear after
/// it: threads stop here until the process has ended.
void StopIfEnding() {
  while (gIsEnding) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
}

#ifdef _WIN32
/// Removes a file. One that another thread has open cannot be removed on Windows: it is tried again
/// until that thread has closed it.
void Remove(const Path& file) {
  constexpr int kTries = 200;
  for (int i = 0; i < kTries && _wremove(file.c_str()) != 0 && errno == EACCES; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
}
#else
void Remove(const Path& file) { unlink(file.c_str()); }
#endif

}  // namespace

TemporaryFileEntry::TemporaryFileEntry(const std::filesystem::path& file)
    : file_(file), slot_(kNoSlot) {
  for (std::size_t slot = 0; slot < kSlots; ++slot) {
    const Path* unused = nullptr;
    if (gFiles[slot].compare_exchange_strong(unused, &file)) {
      slot_ = slot;
      break;
    }
  }
  StopIfEnding();
}

TemporaryFileEntry::~TemporaryFileEntry() {
  if (slot_ != kNoSlot) {
    gFiles[slot_] = nullptr;
  }
  StopIfEnding();
}

void TemporaryFileEntry::NoteMade() const {
  if (gIsEnding) {
    Remove(file_);
  }
  StopIfEnding();
}

void RemoveTemporaryFiles() {
  gIsEnding = true;
  for (const std::atomic<const Path*>& entry : gFiles) {
    if (const Path* const file = entry) {
      Remove(*file);
    }
  }
}

}  // namespace tarvo
