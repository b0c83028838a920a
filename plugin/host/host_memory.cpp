#include "plugin/host/host_memory.h"

#include <utility>

#include "plugin/host/error_chain.h"

namespace plugin {

HostMemory::HostMemory(SuiteHandler& suites, A_HandleSize bytes)
    : memory_(suites.Get<PF_HandleSuite1>()), handle_(memory_.host_new_handle(bytes)) {}

HostMemory::~HostMemory() {
  if (handle_ == nullptr) {
    return;
  }
  // Separately: a host that throws at the first must still get the second call.
  if (locked_) {
    IgnoreErrors([&] { memory_.host_unlock_handle(handle_); });
  }
  IgnoreErrors([&] { memory_.host_dispose_handle(handle_); });
}

void* HostMemory::Lock() {
  void* const bytes = memory_.host_lock_handle(handle_);
  locked_ = bytes != nullptr;
  return bytes;
}

void HostMemory::Unlock() {
  locked_ = false;
  memory_.host_unlock_handle(handle_);
}

PF_Handle HostMemory::Release() {
  if (locked_) {
    Unlock();
  }
  return std::exchange(handle_, nullptr);
}

void DisposeHandle(SuiteHandler& suites, PF_Handle handle) {
  suites.Get<PF_HandleSuite1>().host_dispose_handle(handle);
}

}  // namespace plugin
