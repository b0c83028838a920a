#include "host/host_memory.h"

#include <utility>

namespace tarvo {

HostMemory::HostMemory(SuiteHandler& suites, A_HandleSize bytes)
    : memory_(suites.Get<PF_HandleSuite1>()), handle_(memory_.host_new_handle(bytes)) {}

HostMemory::~HostMemory() {
  if (handle_ == nullptr) return;
  try {
    Unlock();
    memory_.host_dispose_handle(handle_);
  } catch (...) {  // a host that throws here keeps the block
  }
}

void* HostMemory::Lock() {
  void* const bytes = memory_.host_lock_handle(handle_);
  locked_ = true;
  return bytes;
}

void HostMemory::Unlock() {
  if (std::exchange(locked_, false)) memory_.host_unlock_handle(handle_);
}

PF_Handle HostMemory::Release() {
  Unlock();
  return std::exchange(handle_, nullptr);
}

void DisposeHandle(SuiteHandler& suites, PF_Handle handle) {
  suites.Get<PF_HandleSuite1>().host_dispose_handle(handle);
}

}  // namespace tarvo
