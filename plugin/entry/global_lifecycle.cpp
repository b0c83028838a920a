#include "plugin/entry/global_lifecycle.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "plugin/entry/identity.h"
#include "plugin/entry/plugin_folder.h"
#include "plugin/gl/framework.h"
#include "plugin/host/host_calls.h"
#include "plugin/host/host_memory.h"
#include "plugin/host/match_name.h"
#include "plugin/host/process.h"
#include "plugin/host/report.h"
#include "plugin/render/ownership_maps.h"
#include "plugin/scene/scene_store.h"

namespace plugin {

using AESDK_OpenGL::AESDK_OpenGL_DeleteRenderTarget;
using AESDK_OpenGL::AESDK_OpenGL_ErrorText;
using AESDK_OpenGL::AESDK_OpenGL_InitShaders;
using AESDK_OpenGL::AESDK_OpenGL_ShutDown;
using AESDK_OpenGL::AESDK_OpenGL_StartUp;
using AESDK_OpenGL::gState;

namespace {

/// Hosts before this version draw with OpenGL themselves, in a way that does not go with ours.
constexpr A_short kFirstMajorThatSharesOpenGl = 11;
constexpr std::uint16_t kNoTargetYet = 65535;

/// The global data of the latest set-up that has not been set down.
PF_Handle gGlobalData = nullptr;

void ReportIdentity(PF_OutData& out) {
  out.my_version = kVersion;
  out.out_flags = kGlobalFlags;
  out.out_flags2 = kGlobalFlags2;
}

/// Switches the host's own OpenGL off where it has such a preference; never creates it.
PF_Err SwitchHostOpenGlOff(HostCalls& host) {
  AEGP_PersistentBlobH preferences = nullptr;
  A_Boolean exists = 0;
  host.Run(&AEGP_PersistentDataSuite3::AEGP_GetApplicationBlob, &preferences);
  host.Run(&AEGP_PersistentDataSuite3::AEGP_DoesKeyExist, preferences, "AE_OpenGL", "Enabled2",
           &exists);
  if (exists != 0) {
    host.Run(&AEGP_PersistentDataSuite3::AEGP_SetLong, preferences, "AE_OpenGL", "Enabled2",
             A_long{0});
  }
  return host.Code();
}

PF_Err StartFramework(PF_InData& in, PF_OutData& out) {
  Require(in, out, AESDK_OpenGL_StartUp(gState), AESDK_OpenGL_ErrorText);
  const std::string folder = PluginFolder(in);
  Require(in, out,
          AESDK_OpenGL_InitShaders(gState, folder + "\\vertex_shader_Tarvo_renderer.vert",
                                   folder + "\\fragment_shader_Tarvo_renderer.frag"),
          AESDK_OpenGL_ErrorText);
  return PF_Err_NONE;
}

PF_Err MakeGlobalData(SuiteHandler& suites, PF_OutData& out) {
  HostMemory memory(suites, sizeof(GlobalData));
  if (!memory) {
    return PF_Err_OUT_OF_MEMORY;
  }
  auto* const data = static_cast<GlobalData*>(memory.Lock());
  if (data == nullptr) {
    return PF_Err_NONE;
  }
  data->instanceCounter = 1;
  out.global_data = gGlobalData = memory.Release();
  return PF_Err_NONE;
}

/// Best effort: no failure keeps the framework from being stopped.
void ReleaseScenes(PF_InData& in) {
  ReleaseMapTextures();
  std::optional<SuiteHandler> suites;
  if (in.pica_basicP != nullptr) {
    suites.emplace(in.pica_basicP);
  }
  gScenes.ReleaseAll(suites ? &*suites : nullptr, in.effect_ref);
}

/// Releases what an earlier set-up made if no set-down released it. Otherwise it would leak, and
/// the old render target would be taken to be kNoTargetYet pixels wide: outputs larger than it
/// would no longer be cut into tiles. Errors are ignored.
void ReleaseEarlierSetup(PF_InData& in, PF_OutData& out, SuiteHandler& suites) {
  IgnoreErrors([&] {
    ReleaseScenes(in);
    AESDK_OpenGL_DeleteRenderTarget(gState);
    if (gState.renderContext != nullptr) {
      AESDK_OpenGL_ShutDown(gState);
    }
  });
  if (gGlobalData == nullptr) {
    return;
  }
  IgnoreErrors([&] {
    DisposeHandle(suites, std::exchange(gGlobalData, nullptr));
    in.global_data = nullptr;
    out.global_data = nullptr;
  });
}

}  // namespace

PF_Err GlobalSetup(PF_InData& in, PF_OutData& out) {
  ReportIdentity(out);
  HostCalls host(in.pica_basicP);
  ReleaseEarlierSetup(in, out, host.Suites());
  host.Run(&AEGP_UtilitySuite5::AEGP_RegisterWithAEGP, nullptr, kOwnMatchName, &gPluginId);
  if (in.version.major < kFirstMajorThatSharesOpenGl) {
    host.Chain().Replace(CodeOf([&] { return SwitchHostOpenGlOff(host); }));
  }
  if (const PF_Err failed = CodeOf([&] { return StartFramework(in, out); }); failed != 0) {
    host.Chain().Replace(failed);
  }
  if (const PF_Err failed = MakeGlobalData(host.Suites(), out); failed != 0) {
    return failed;
  }
  gState.targetWidth = kNoTargetYet;
  gState.targetHeight = kNoTargetYet;
  return host.Code();
}

PF_Err GlobalSetdown(PF_InData& in, PF_OutData& out) {
  // Forgotten even if it cannot be disposed of below: the next set-up may be another host's.
  gGlobalData = nullptr;
  ReleaseScenes(in);  // first: their textures are the context's, which goes next
  const PF_Err result = CodeOf([&] {
    Require(in, out, AESDK_OpenGL_ShutDown(gState), AESDK_OpenGL_ErrorText);
    return PF_Err_NONE;
  });
  if (in.global_data != nullptr) {
    SuiteHandler suites(in.pica_basicP);
    DisposeHandle(suites, in.global_data);
  }
  in.global_data = nullptr;
  out.global_data = nullptr;
  return result;
}

}  // namespace plugin
