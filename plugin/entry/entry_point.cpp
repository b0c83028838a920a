#include "plugin/entry/entry_point.h"

#include "plugin/companion/idle_hook.h"
#include "plugin/companion/parameter_change.h"
#include "plugin/companion/parameter_ui.h"
#include "plugin/entry/about.h"
#include "plugin/entry/global_lifecycle.h"
#include "plugin/entry/parameter_setup.h"
#include "plugin/entry/sequence_lifecycle.h"
#include "plugin/gl/framework.h"
#include "plugin/host/host_calls.h"
#include "plugin/host/process.h"
#include "plugin/render/render.h"
#include "plugin/scene/intake.h"
#include "plugin/scene/output_extent.h"

namespace plugin {

using AESDK_OpenGL::AESDK_OpenGL_DeleteRenderTarget;
using AESDK_OpenGL::AESDK_OpenGL_MakeCurrent;
using AESDK_OpenGL::AESDK_OpenGL_SaveCurrentContext;
using AESDK_OpenGL::gState;

namespace {

/// The records of one call, as the host passed them.
struct Call {
  PF_InData& in;
  PF_OutData* out;
  PF_ParamDef** params;
  PF_LayerDef* output;
  void* extra;
};

/// True iff all records that the command's handler dereferences are present.
bool HasRecords(PF_Cmd command, const Call& call) {
  switch (command) {
    case PF_Cmd_ABOUT:
    case PF_Cmd_SEQUENCE_SETDOWN:
    case PF_Cmd_FRAME_SETUP:
      return call.out != nullptr;
    case PF_Cmd_GLOBAL_SETUP:
    case PF_Cmd_GLOBAL_SETDOWN:
    case PF_Cmd_PARAMS_SETUP:
    case PF_Cmd_SEQUENCE_SETUP:
    case PF_Cmd_SEQUENCE_RESETUP:
      return call.out != nullptr && call.in.utils != nullptr;
    case PF_Cmd_RENDER:
      return call.out != nullptr && call.in.utils != nullptr && call.params != nullptr &&
             call.output != nullptr;
    case PF_Cmd_COMPLETELY_GENERAL:
      return call.in.utils != nullptr;
    case PF_Cmd_UPDATE_PARAMS_UI:
      return call.params != nullptr;
    case PF_Cmd_USER_CHANGED_PARAM:
      return call.extra != nullptr;
    default:
      return true;
  }
}

bool TouchesOpenGl(PF_Cmd command) {
  switch (command) {
    case PF_Cmd_GLOBAL_SETUP:
    case PF_Cmd_GLOBAL_SETDOWN:
    case PF_Cmd_SEQUENCE_SETUP:
    case PF_Cmd_SEQUENCE_RESETUP:
    case PF_Cmd_SEQUENCE_SETDOWN:
    case PF_Cmd_RENDER:
    case PF_Cmd_COMPLETELY_GENERAL:
      return true;
    default:
      return false;
  }
}

/// The framework's context in place of the host's, for the length of a scope. Scopes nest: a
/// companion may send its message from within a call that the host makes while it answers us, and
/// the pair that the outer command saved must outlast that.
class OpenGlBracket {
 public:
  explicit OpenGlBracket(bool needed) : needed_(needed) {
    if (!needed_) {
      return;
    }
    AESDK_OpenGL_SaveCurrentContext(gState);
    AESDK_OpenGL_MakeCurrent(gState.deviceContext, gState.renderContext);
    isNested_ = depth_++ > 0;  // last: what throws above ends no bracket
  }
  ~OpenGlBracket() {
    if (!needed_) {
      return;
    }
    --depth_;
    AESDK_OpenGL_MakeCurrent(gState.savedDeviceContext, gState.savedRenderContext);
    if (!isNested_) {
      return;
    }
    gState.savedDeviceContext = outerDeviceContext_;
    gState.savedRenderContext = outerRenderContext_;
  }
  OpenGlBracket(const OpenGlBracket&) = delete;
  OpenGlBracket& operator=(const OpenGlBracket&) = delete;

 private:
  static inline int depth_ = 0;

  bool needed_;
  bool isNested_ = false;
  HDC outerDeviceContext_ = gState.savedDeviceContext;
  HGLRC outerRenderContext_ = gState.savedRenderContext;
};

PF_Err RegisterIdleHook(const PF_InData& in) {
  HostCalls host(in.pica_basicP);
  host.Run(&AEGP_RegisterSuite5::AEGP_RegisterIdleHook, gPluginId, IdleHook, nullptr);
  return host.Code();
}

/// Best effort: what goes wrong here does not replace the code that is being reported.
void ReportNoIdleHook(const PF_InData& in) {
  IgnoreErrors([&] {
    HostCalls host(in.pica_basicP);
    host.Run(&AEGP_UtilitySuite3::AEGP_ReportInfo, gPluginId,
             "QEZ_Tarvo_overlaps_manager: Could not register command hook.");
  });
}

/// Without its idle hook the plug-in works, but new instances stay as the host made them: the user
/// is told, whether global set-up or the registration failed (unless a suite that they need is
/// missing: that ends the command).
PF_Err SetUpAndRegister(PF_InData& in, PF_OutData& out) {
  PF_Err result = GlobalSetup(in, out);
  if (result == PF_Err_NONE) {
    result = RegisterIdleHook(in);
  }
  if (result != PF_Err_NONE) {
    ReportNoIdleHook(in);
  }
  return result;
}

PF_Err DeleteTargetAndSetDown(PF_InData& in, PF_OutData& out) {
  AESDK_OpenGL_DeleteRenderTarget(gState);
  return GlobalSetdown(in, out);
}

/// Commands that are not listed need no answer.
PF_Err Dispatch(PF_Cmd command, const Call& call) {
  switch (command) {
    case PF_Cmd_ABOUT:
      return About(call.in, *call.out);
    case PF_Cmd_GLOBAL_SETUP:
      return SetUpAndRegister(call.in, *call.out);
    case PF_Cmd_GLOBAL_SETDOWN:
      return DeleteTargetAndSetDown(call.in, *call.out);
    case PF_Cmd_PARAMS_SETUP:
      return ParamsSetup(call.in, *call.out);
    case PF_Cmd_SEQUENCE_SETUP:
      return SequenceSetup(call.in, *call.out);
    case PF_Cmd_SEQUENCE_RESETUP:
      return SequenceResetup(call.in, *call.out);
    case PF_Cmd_SEQUENCE_SETDOWN:
      return SequenceSetdown(call.in, *call.out);
    case PF_Cmd_FRAME_SETUP:
      return FrameSetup(call.in, *call.out);
    case PF_Cmd_RENDER:
      return Render(call.in, *call.out, call.params, *call.output);
    case PF_Cmd_USER_CHANGED_PARAM:
      return UserChangedParam(call.in, *static_cast<const PF_UserChangedParamExtra*>(call.extra));
    case PF_Cmd_UPDATE_PARAMS_UI:
      return UpdateParamsUI(call.in, call.params);
    case PF_Cmd_COMPLETELY_GENERAL:
      return CompletelyGeneral(call.in, call.extra);
    default:
      return PF_Err_NONE;
  }
}

/// A code that a handler lets through means that it could not reach the host.
PF_Err NothingThrown(PF_Cmd command, const Call& call) {
  try {
    const OpenGlBracket bracket(TouchesOpenGl(command));
    return Dispatch(command, call);
  } catch (const PF_Err) {
    return PF_Err_BAD_CALLBACK_PARAM;
  } catch (...) {
    return CodeOfCurrentException();
  }
}

}  // namespace
}  // namespace plugin

PF_Err EntryPointFunc(PF_Cmd cmd, PF_InData* in_data, PF_OutData* out_data, PF_ParamDef* params[],
                      PF_LayerDef* output, void* extra) {
  if (in_data == nullptr) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  plugin::gBasicSuite = in_data->pica_basicP;
  const plugin::Call call{*in_data, out_data, params, output, extra};
  if (!plugin::HasRecords(cmd, call)) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  return plugin::NothingThrown(cmd, call);
}
