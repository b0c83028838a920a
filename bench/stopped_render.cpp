#include "bench/stopped_render.h"

#include <optional>

#include "bench/measure.h"
#include "gl/framework.h"
#include "render/camera.h"
#include "render/colour_passes.h"
#include "render/draw_list.h"
#include "render/frame.h"
#include "render/ownership_maps.h"
#include "render/piece_upload.h"
#include "scene/scene_store.h"

namespace bench {
namespace {

using namespace AESDK_OpenGL;  // NOLINT(google-build-using-namespace): its operations, by name

StageTimes gTimes{};

template <class Work>
void Stop(FrameStage stage, Work work) {
  gTimes[stage] = Milliseconds([&] {
    work();
    glFinish();
  });
}

/// The framework's context in place of the host's, for the length of a scope.
class OwnContext {
 public:
  OwnContext() {
    AESDK_OpenGL_SaveCurrentContext(gState);
    AESDK_OpenGL_MakeCurrent(gState.deviceContext, gState.renderContext);
  }
  OwnContext(const OwnContext&) = delete;
  OwnContext& operator=(const OwnContext&) = delete;
  ~OwnContext() {
    AESDK_OpenGL_UseNoProgram();
    AESDK_OpenGL_MakeCurrent(gState.savedDeviceContext, gState.savedRenderContext);
  }
};

}  // namespace

PF_Err StoppedRender(PF_Cmd /*command*/, PF_InData* in, PF_OutData* out, PF_ParamDef* params[],
                     PF_LayerDef* output, void* /*extra*/) {
  const OwnContext current;
  tarvo::HostCalls host(in->pica_basicP);
  tarvo::Frame frame(*in, *out, params, *output, host, *tarvo::gScenes.Reach(in->sequence_data));
  const tarvo::Tile whole{.x = 0, .y = 0, .width = output->width, .height = output->height};
  Stop(kWorlds, [&] {
    host.Run(in->utils->fill, in->effect_ref, nullptr, nullptr, output);
    frame.scratchWorld.Make(frame.outWidth, frame.outHeight);
  });
  AESDK_OpenGL_BindRenderTarget(gState);
  AESDK_OpenGL_UseProgram(gState);  // further state is as the plug-in's own frames left it
  Stop(kUpload, [&] { tarvo::UploadPieceImages(frame); });
  Stop(kDrawList, [&] { frame.drawList = tarvo::BuildDrawList(frame.scene, params); });
  tarvo::AimCamera(frame, whole);
  std::optional<tarvo::OwnershipMaps> maps;
  Stop(kMaps, [&] { maps.emplace(tarvo::RenderOwnershipMaps(frame, whole)); });
  Stop(kPasses, [&] { tarvo::RenderColourPasses(frame, whole, *maps); });
  Stop(kReadBack, [&] { tarvo::ReadBack(frame, whole); });
  Stop(kTransfer, [&] {
    PF_EffectWorld& world = frame.scratchWorld.Get();
    PF_Rect area = world.extent_hint;
    host.Run(&PF_FillMatteSuite2::premultiply, in->effect_ref, A_long{0}, &world);
    host.Run(in->utils->copy, in->effect_ref, &world, output, nullptr, &area);
    frame.scratchWorld.Dispose();
  });
  return host.Code();
}

const StageTimes& LatestStageTimes() { return gTimes; }

}  // namespace bench
