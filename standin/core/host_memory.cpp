#include "standin/core/host_memory.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <string>
#include <utility>

namespace standin {
namespace {

// Fresh memory holds no zeros, so that a plug-in that does not clear it is detected.
constexpr std::uint8_t kFresh = 0xA7;

// Handles that are gone keep their place for a while, so that no new one takes over their name.
constexpr std::size_t kQuarantine = 4096;

std::uint64_t Hash(const std::uint8_t* bytes, std::size_t count) {
  std::uint64_t hash = 14695981039346656037U;  // FNV-1a
  for (std::size_t i = 0; i < count; ++i) {
    hash = (hash ^ bytes[i]) * 1099511628211U;
  }
  return hash;
}

}  // namespace

struct HostMemory::Block {
  void* master = nullptr;  // what the handle points to
  std::unique_ptr<std::uint8_t[]> memory;
  std::size_t size = 0;
  std::vector<const void*> locks;  // the plug-in's, by their names in the tracker
  int hostLocks = 0;
  bool mayBeUnlocked = false;  // although it is not locked
  bool watched = false;
  std::uint64_t hash = 0;

  [[nodiscard]] std::size_t WatchedBytes() const { return std::min(size, kWatchedBytes); }
};

HostMemory::HostMemory(ObjectTracker& tracker) : tracker_(tracker) {}

HostMemory::~HostMemory() = default;

PF_Handle HostMemory::New(A_HandleSize bytes) {
  auto block = std::make_unique<Block>();
  block->size = static_cast<std::size_t>(bytes);
  block->memory.reset(new (std::nothrow) std::uint8_t[std::max<std::size_t>(block->size, 1)]);
  if (!block->memory) {
    tracker_.NoteOutOfMemory();
    return nullptr;
  }
  if (inspects_) {
    std::memset(block->memory.get(), kFresh, block->size);
  }
  block->master = block->memory.get();
  PF_Handle handle = &block->master;
  tracker_.Enter(Kind::kHandle, handle, std::to_string(bytes) + " bytes", block.get());
  Watch(*block);
  tracker_.AddBytes(block->size);
  blocks_[handle] = std::move(block);
  return handle;
}

PF_Handle HostMemory::NewFrom(const std::vector<std::uint8_t>& bytes) {
  PF_Handle handle = New(bytes.size());
  if (Block* block = Living(handle)) {
    std::copy(bytes.begin(), bytes.end(), block->memory.get());
    Watch(*block);
  }
  return handle;
}

void* HostMemory::Lock(PF_Handle handle, std::string_view who) {
  Block* block = Find(handle, who);
  if (block == nullptr) {
    return nullptr;
  }
  CheckWatched(*block, who);
  block->locks.push_back(
      tracker_.Issue(Kind::kLock, "of " + tracker_.Describe(static_cast<void*>(handle)), block));
  return block->master;
}

void HostMemory::Unlock(PF_Handle handle, std::string_view who) {
  Block* block = Find(handle, who);
  if (block == nullptr) {
    return;
  }
  if (block->locks.empty()) {
    if (std::exchange(block->mayBeUnlocked, false)) {
      return;
    }
    tracker_.ReportViolation(std::string(who) + " was given " +
                             tracker_.Describe(static_cast<void*>(handle)) +
                             ", which is not locked; a locked one was expected");
    return;
  }
  tracker_.Remove(Kind::kLock, block->locks.back(), who);
  block->locks.pop_back();
  if (block->locks.empty() && block->hostLocks == 0) {
    Watch(*block);
  }
}

void HostMemory::Dispose(PF_Handle handle, std::string_view who) {
  Block* block = Find(handle, who);
  if (block == nullptr) {
    return;
  }
  CheckWatched(*block, who);
  if (!block->locks.empty()) {
    tracker_.ReportViolation(std::string(who) + " was given " +
                             tracker_.Describe(static_cast<void*>(handle)) + " with " +
                             std::to_string(block->locks.size()) +
                             " lock(s) on it; an unlocked one was expected");
    for (const void* lock : block->locks) {
      tracker_.Remove(Kind::kLock, lock, who);
    }
  }
  tracker_.Remove(Kind::kHandle, handle, who);
  tracker_.SubtractBytes(block->size);
  block->memory.reset();
  block->master = nullptr;
  if (auto node = blocks_.extract(handle)) {
    quarantine_.push_back(std::move(node.mapped()));
  }
  if (quarantine_.size() > kQuarantine) {
    quarantine_.pop_front();
  }
}

A_HandleSize HostMemory::Size(PF_Handle handle, std::string_view who) {
  const Block* block = Find(handle, who);
  return block == nullptr ? 0 : block->size;
}

PF_Err HostMemory::Resize(A_HandleSize bytes, PF_Handle handle, std::string_view who) {
  Block* block = Find(handle, who);
  if (block == nullptr || !block->locks.empty()) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  const auto size = static_cast<std::size_t>(bytes);
  std::unique_ptr<std::uint8_t[]> memory(new (std::nothrow)
                                             std::uint8_t[std::max<std::size_t>(size, 1)]);
  if (!memory) {
    tracker_.NoteOutOfMemory();
    return PF_Err_OUT_OF_MEMORY;
  }
  std::memset(memory.get(), kFresh, size);
  std::memcpy(memory.get(), block->memory.get(), std::min(size, block->size));
  block->memory = std::move(memory);
  block->master = block->memory.get();
  tracker_.SubtractBytes(block->size);
  tracker_.AddBytes(size);
  block->size = size;
  Watch(*block);
  return PF_Err_NONE;
}

void HostMemory::HostLock(PF_Handle handle) {
  if (Block* block = Living(handle)) {
    CheckWatched(*block, "the host");
    ++block->hostLocks;
  }
}

void HostMemory::HostUnlock(PF_Handle handle) {
  Block* block = Living(handle);
  if (block != nullptr && block->hostLocks > 0 && --block->hostLocks == 0 && block->locks.empty()) {
    Watch(*block);
  }
}

std::vector<std::uint8_t> HostMemory::Bytes(PF_Handle handle) const {
  const Block* block = Living(handle);
  if (block == nullptr || block->master == nullptr) {
    return {};
  }
  return {block->memory.get(), block->memory.get() + block->size};
}

void HostMemory::Purge(PF_Handle handle) {
  if (Block* block = Living(handle)) {
    block->memory.reset();
    block->master = nullptr;
    tracker_.SubtractBytes(block->size);
    block->size = 0;
    block->watched = false;
  }
}

void HostMemory::AllowUnlockOf(PF_Handle handle) {
  if (Block* block = Living(handle)) {
    block->mayBeUnlocked = true;
  }
}

void HostMemory::ForgetLocks() {
  for (auto& [handle, block] : blocks_) {
    block->locks.clear();
    block->mayBeUnlocked = false;
  }
}

HostMemory::Block* HostMemory::Find(PF_Handle handle, std::string_view who) {
  return tracker_.Find<Block>(Kind::kHandle, handle, who);
}

HostMemory::Block* HostMemory::Living(PF_Handle handle) const {
  const auto found = blocks_.find(handle);
  return found == blocks_.end() ? nullptr : found->second.get();
}

void HostMemory::Watch(Block& block) const {
  if (!inspects_) {
    return;
  }
  block.watched = true;
  block.hash = Hash(block.memory.get(), block.WatchedBytes());
}

void HostMemory::CheckWatched(Block& block, std::string_view who) {
  if (block.watched && block.hash != Hash(block.memory.get(), block.WatchedBytes())) {
    tracker_.ReportViolation(tracker_.Describe(static_cast<void*>(&block.master)) +
                             " was written while it was not locked (found by " + std::string(who) +
                             ")");
  }
  block.watched = false;
}

}  // namespace standin
