#include <cstring>

#include "sdk/basic_suite.h"
#include "sdk/effect.h"
#include "sdk/effect_suites.h"

/// \file
/// Plug-ins that must be found out, one for each value of BAD_PLUGIN: 1 answers the render with an
/// error, 2 never gives back a suite and a handle, 3 exports another function than
/// the entry point.

namespace {

PF_Err FailToRender(PF_OutData* out) {
  std::strcpy(out->return_msg, "no paint left");
  return 512;
}

PF_Err KeepAHandle(const PF_InData* in) {
  const void* suite = nullptr;
  in->pica_basicP->AcquireSuite("PF Handle Suite", 2, &suite);
  static_cast<const PF_HandleSuite1*>(suite)->host_new_handle(4);
  return PF_Err_NONE;
}

}  // namespace

#if BAD_PLUGIN == 3
#define EntryPointFunc AnotherFunc
#endif

extern "C" __attribute__((visibility("default"))) PF_Err EntryPointFunc(
    PF_Cmd command, PF_InData* in, PF_OutData* out, PF_ParamDef** /*params*/,
    PF_LayerDef* /*output*/, void* /*extra*/) {
  if (command == PF_Cmd_PARAMS_SETUP) {
    out->num_params = 1;
  }
  if (command == PF_Cmd_RENDER && BAD_PLUGIN == 1) {
    return FailToRender(out);
  }
  return command == PF_Cmd_RENDER && BAD_PLUGIN == 2 ? KeepAHandle(in) : PF_Err_NONE;
}
