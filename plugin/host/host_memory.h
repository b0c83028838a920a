#pragma once

#include "plugin/host/suite_handler.h"
#include "sdk/effect.h"

namespace plugin {

/// A block of host memory for the length of a scope: (Lock Unlock?)? Release?.
///
/// Whatever is still held is unlocked and disposed of when the scope ends.
class HostMemory {
 public:
  /// Asks the host for `bytes`. Throws PF_Err_BAD_CALLBACK_PARAM without the handle suite.
  HostMemory(SuiteHandler& suites, A_HandleSize bytes);
  ~HostMemory();
  HostMemory(const HostMemory&) = delete;
  HostMemory& operator=(const HostMemory&) = delete;

  /// False iff the host had no memory.
  explicit operator bool() const { return handle_ != nullptr; }

  /// The first byte, valid until Unlock; null if the lock failed, and then neither the destructor
  /// nor Release unlocks anything.
  void* Lock();
  /// Calls host_unlock_handle, whether or not Lock succeeded.
  void Unlock();

  /// Hands the block over to the caller, unlocked.
  PF_Handle Release();

 private:
  const PF_HandleSuite1& memory_;
  PF_Handle handle_;
  bool locked_ = false;
};

/// Gives a handle back to the host. Throws PF_Err_BAD_CALLBACK_PARAM without the handle suite.
void DisposeHandle(SuiteHandler& suites, PF_Handle handle);

}  // namespace plugin
