#include "sdk/effect_suites.h"
#include "standin/core/operation.h"
#include "standin/suites/families.h"

namespace standin {
namespace {

PF_Handle NewHandle(Core& core, A_HandleSize size) { return core.memory.New(size); }

void* Lock(Core& core, PF_Handle handle) { return core.memory.Lock(handle, "host_lock_handle"); }

/// At a resetup alone the plug-in unlocks its new handle also if the lock was made to fail.
void* LockHandle(PF_Handle handle) {
  void* const bytes = Operation<"host_lock_handle", Lock>::Call(handle);
  Core* const core = ActiveCore();
  if (bytes == nullptr && core != nullptr &&
      core->currentCommand == CommandName(PF_Cmd_SEQUENCE_RESETUP)) {
    core->memory.AllowUnlockOf(handle);
  }
  return bytes;
}

void UnlockHandle(Core& core, PF_Handle handle) {
  core.memory.Unlock(handle, "host_unlock_handle");
}

void DisposeHandle(Core& core, PF_Handle handle) {
  core.memory.Dispose(handle, "host_dispose_handle");
}

A_HandleSize HandleSize(Core& core, PF_Handle handle) {
  return core.memory.Size(handle, "host_get_handle_size");
}

PF_Err ResizeHandle(Core& core, A_HandleSize size, PF_Handle* handle) {
  return handle == nullptr ? core.Refuse("host_resize_handle", "null")
                           : core.memory.Resize(size, *handle, "host_resize_handle");
}

}  // namespace

void AddHandleSuite(Core& core) {
  auto& suite = core.suites.Add<PF_HandleSuite1>("PF Handle Suite", 2);
  suite.host_new_handle = Operation<"host_new_handle", NewHandle>::Call;
  suite.host_lock_handle = LockHandle;
  suite.host_unlock_handle =
      Operation<"host_unlock_handle", UnlockHandle, FailurePoint::kThrowOnly>::Call;
  suite.host_dispose_handle =
      Operation<"host_dispose_handle", DisposeHandle, FailurePoint::kThrowOnly>::Call;
  suite.host_get_handle_size = Operation<"host_get_handle_size", HandleSize>::Call;
  suite.host_resize_handle = Operation<"host_resize_handle", ResizeHandle>::Call;
}

}  // namespace standin
