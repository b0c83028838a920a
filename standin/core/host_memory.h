#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "sdk/effect.h"
#include "standin/core/object_tracker.h"

namespace standin {

/// Host handles. A handle points to its master pointer; the memory behind it is the plug-in's to
/// use while the handle is locked, by the plug-in or, during a command, by the host.
class HostMemory {
 public:
  explicit HostMemory(ObjectTracker& tracker);
  HostMemory(const HostMemory&) = delete;
  HostMemory& operator=(const HostMemory&) = delete;
  ~HostMemory();

  /// Whether new memory is filled with a pattern and unlocked memory is watched (they are), or left
  /// as the system and the plug-in give it.
  void Inspect(bool inspects) { inspects_ = inspects; }
  /// A new unlocked handle of that many bytes; null when there is no memory.
  PF_Handle New(A_HandleSize bytes);
  /// A new handle that holds a copy of these bytes.
  PF_Handle NewFrom(const std::vector<std::uint8_t>& bytes);
  /// Locks the handle; its master pointer, or null for a handle that is none.
  void* Lock(PF_Handle handle, std::string_view who);
  void Unlock(PF_Handle handle, std::string_view who);
  void Dispose(PF_Handle handle, std::string_view who);
  A_HandleSize Size(PF_Handle handle, std::string_view who);
  /// Changes the size in place of the handle and keeps what fits; the handle must not be locked.
  PF_Err Resize(A_HandleSize bytes, PF_Handle handle, std::string_view who);

  /// A lock of the host's own around a command, not counted as the plug-in's. The
  /// handle may be null, and may be gone by the time it is unlocked.
  void HostLock(PF_Handle handle);
  void HostUnlock(PF_Handle handle);
  /// The bytes behind a live handle, as saved with a project; empty for null.
  [[nodiscard]] std::vector<std::uint8_t> Bytes(PF_Handle handle) const;
  /// Purges the memory behind a handle: its master pointer is null from now on.
  void Purge(PF_Handle handle);
  /// The plug-in's locks were written off in the tracker.
  void ForgetLocks();
  [[nodiscard]] bool IsLive(PF_Handle handle) const {
    return tracker_.IsLive(Kind::kHandle, handle);
  }
  /// One unlock of a handle whose lock was made to fail is no violation from now on.
  void AllowUnlockOf(PF_Handle handle);

  /// Bytes at the start of an unlocked handle that must not change until it is locked again.
  static constexpr std::size_t kWatchedBytes = std::size_t{64} * 1024;

 private:
  struct Block;

  Block* Find(PF_Handle handle, std::string_view who);
  [[nodiscard]] Block* Living(PF_Handle handle) const;
  void Watch(Block& block) const;
  void CheckWatched(Block& block, std::string_view who);

  ObjectTracker& tracker_;
  std::unordered_map<const void*, std::unique_ptr<Block>> blocks_;
  std::deque<std::unique_ptr<Block>> quarantine_;
  bool inspects_ = true;
};

}  // namespace standin
