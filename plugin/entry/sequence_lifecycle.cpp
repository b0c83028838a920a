#include "plugin/entry/sequence_lifecycle.h"

#include <cstring>
#include <new>

#include "plugin/entry/global_lifecycle.h"
#include "plugin/gl/framework.h"
#include "plugin/host/error_chain.h"
#include "plugin/host/host_memory.h"
#include "plugin/host/process.h"
#include "plugin/host/report.h"
#include "plugin/scene/scene_store.h"

namespace plugin {

using AESDK_OpenGL::AESDK_OpenGL_ErrorText;
using AESDK_OpenGL::AESDK_OpenGL_PrepareRenderTarget;
using AESDK_OpenGL::gState;

namespace {

/// Instance numbers run from 0 to 9999 and start over.
constexpr A_long kInstanceNumbers = 10'000;

/// Null if global set-up had no memory for it. The host keeps the handle locked during a command.
GlobalData* GlobalDataOf(const PF_InData& in) {
  return in.global_data == nullptr ? nullptr : static_cast<GlobalData*>(*in.global_data);
}

A_long NextInstanceNumber(const PF_InData& in) {
  GlobalData* const data = GlobalDataOf(in);
  if (data == nullptr) {
    return 0;
  }
  const A_long number = data->instanceCounter % kInstanceNumbers;
  data->instanceCounter = (data->instanceCounter + 1) % kInstanceNumbers;
  return number;
}

/// Makes an empty store in `memory` and hands it to the host. False if there is no lock on it.
bool HandOverStore(HostMemory& memory, const PF_InData& in, PF_OutData& out) {
  void* const bytes = memory.Lock();
  if (bytes == nullptr) {
    return false;
  }
  std::memset(bytes, 0, sizeof(SceneStore));
  new (bytes) SceneStore{.instanceNumber = NextInstanceNumber(in), .scene = nullptr};
  out.sequence_data = memory.Release();
  return true;
}

/// Replaces the store in a handle that has bytes. Without memory the old handle stays.
PF_Err ReplaceStore(SuiteHandler& suites, PF_InData& in, PF_OutData& out) {
  HostMemory memory(suites, sizeof(SceneStore));
  if (!memory) {
    return PF_Err_NONE;
  }
  if (!HandOverStore(memory, in, out)) {
    memory.Unlock();  // only this command unlocks after a failed lock; hosts rely on it
    return PF_Err_INTERNAL_STRUCT_DAMAGED;
  }
  gScenes.Release(in.sequence_data, suites, in.effect_ref);
  DisposeHandle(suites, in.sequence_data);
  in.sequence_data = nullptr;
  return PF_Err_NONE;
}

/// Prepares the render target and arms the idle hook. Returns `result`, or what went wrong here.
PF_Err Prepared(PF_InData& in, PF_OutData& out, PF_Err result) {
  const PF_Err failed = CodeOf([&] {
    Require(in, out, AESDK_OpenGL_PrepareRenderTarget(gState, 0, 0), AESDK_OpenGL_ErrorText,
            Display::kYes);
    return PF_Err_NONE;
  });
  gIdleTicks = 0;
  return failed != PF_Err_NONE ? failed : result;
}

}  // namespace

PF_Err SequenceSetup(PF_InData& in, PF_OutData& out) {
  SuiteHandler suites(in.pica_basicP);
  HostMemory memory(suites, sizeof(SceneStore));
  if (!memory) {
    return PF_Err_OUT_OF_MEMORY;
  }
  HandOverStore(memory, in, out);
  return Prepared(in, out, PF_Err_NONE);
}

PF_Err SequenceResetup(PF_InData& in, PF_OutData& out) {
  SuiteHandler suites(in.pica_basicP);
  PF_Err result = PF_Err_NONE;
  if (in.sequence_data != nullptr && *in.sequence_data != nullptr) {
    result = ReplaceStore(suites, in, out);
  } else if (in.sequence_data != nullptr) {
    gScenes.Release(in.sequence_data, suites, in.effect_ref);
    result = SequenceSetup(in, out);
  }
  return Prepared(in, out, result);
}

PF_Err SequenceSetdown(PF_InData& in, PF_OutData& out) {
  if (in.sequence_data != nullptr) {
    SuiteHandler suites(in.pica_basicP);
    suites.Get<PF_HandleSuite1>();  // first: without it the instance stays, and keeps its scene
    gScenes.Release(in.sequence_data, suites, in.effect_ref);
    DisposeHandle(suites, in.sequence_data);
  }
  in.sequence_data = nullptr;
  out.sequence_data = nullptr;
  if (GlobalData* const data = GlobalDataOf(in); data != nullptr) {
    --data->instanceCounter;
  }
  return PF_Err_NONE;
}

}  // namespace plugin
