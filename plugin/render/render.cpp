#include "plugin/render/render.h"

#include <cstdint>
#include <optional>
#include <string_view>

#include "plugin/host/report.h"
#include "plugin/render/camera.h"
#include "plugin/render/colour_passes.h"
#include "plugin/render/contested_pieces.h"
#include "plugin/render/draw_list.h"
#include "plugin/render/frame.h"
#include "plugin/render/ownership_maps.h"
#include "plugin/render/piece_upload.h"
#include "plugin/render/readback.h"
#include "plugin/render/stage_watch.h"
#include "plugin/scene/output_extent.h"
#include "plugin/scene/scene_store.h"
#include "plugin/scene/scoped_flag.h"

namespace plugin {

using AESDK_OpenGL::AESDK_OpenGL_BindRenderTarget;
using AESDK_OpenGL::AESDK_OpenGL_FramebufferStatusText;
using AESDK_OpenGL::AESDK_OpenGL_UseNoProgram;
using AESDK_OpenGL::gState;

namespace {

/// The smallest side of a frame that is copied into the output, in pixels.
constexpr A_long kSmallestSide = 4;

/// Tells the stage watch, if there is one, that a stage is over.
void EndStage(FrameStage stage) {
  if (gStageWatch != nullptr) {
    gStageWatch(stage);
  }
}

/// Null stands for all fields of the fill, and for transparent black.
void ClearOutput(HostCalls& host, PF_InData& in, PF_EffectWorld& output) {
  host.Run(in.utils->fill, in.effect_ref, nullptr, nullptr, &output);
}

/// Everything that the stages rely on and none of them sets. Each selects its own program.
void SetFixedState() {
  glEnable(GL_TEXTURE_RECTANGLE_ARB);
  glDisable(GL_ALPHA_TEST);
  glDisable(GL_DEPTH_TEST);
  glEnable(GL_BLEND);
  glDisable(GL_LIGHTING);
  glPolygonMode(GL_FRONT, GL_FILL);
}

/// False if the tile could not be read back.
bool RenderTile(Frame& frame, const Tile& tile) {
  AimCamera(frame, tile);
  const OwnershipMaps maps = RenderOwnershipMaps(frame, tile);
  EndStage(FrameStage::kMaps);
  RenderColourPasses(frame, tile, maps);
  EndStage(FrameStage::kPasses);
  const bool isRead = ReadBack(frame, tile);
  EndStage(FrameStage::kReadBack);
  return isRead;
}

/// False if a part could not be read back, or if the output is too large to be copied; rendering
/// its tiles could take minutes.
bool RenderTiles(Frame& frame) {
  if (frame.outWidth > kLargestSide || frame.outHeight > kLargestSide) {
    return false;
  }
  bool whole = true;
  for (const Tile& tile :
       TilesOf(frame.outWidth, frame.outHeight, gState.targetWidth, gState.targetHeight)) {
    whole = RenderTile(frame, tile) && whole;
  }
  return whole;
}

/// A framebuffer that became incomplete during the passes holds no frame.
void RequireCompleteFramebuffer(Frame& frame) {
  const char* const status = AESDK_OpenGL_FramebufferStatusText();
  if (status == std::string_view("OK")) {
    return;
  }
  WriteMessage(frame.in, frame.out, status, Display::kYes);
  throw PF_Err{PF_Err_INTERNAL_STRUCT_DAMAGED};
}

bool IsCopied(const PF_Rect& area) {
  const auto fits = [](A_long low, A_long high) {
    const std::int64_t side = std::int64_t{high} - low;
    return side >= kSmallestSide && side <= kLargestSide;
  };
  return fits(area.left, area.right) && fits(area.top, area.bottom);
}

/// Turns the frame into straight colour and copies it into the output.
void Transfer(Frame& frame) {
  if (!frame.scratchWorld.Made()) {
    return;
  }
  PF_EffectWorld& world = frame.scratchWorld.Get();
  frame.host.Run(&PF_FillMatteSuite2::premultiply, frame.in.effect_ref, A_long{0}, &world);
  PF_Rect area = world.extent_hint;
  if (!IsCopied(area)) {
    return;
  }
  frame.host.Run(frame.in.utils->copy, frame.in.effect_ref, &world, &frame.output, nullptr, &area);
}

void RenderFrame(Frame& frame) {
  frame.scratchWorld.Make(frame.outWidth, frame.outHeight);
  EndStage(FrameStage::kWorlds);
  RequireFramework(frame, AESDK_OpenGL_BindRenderTarget(gState));
  SetFixedState();
  UploadPieceImages(frame);
  EndStage(FrameStage::kUpload);
  frame.drawList = BuildDrawList(frame.scene, frame.params);
  if (!frame.fastTransparency) {
    GLint subpixelBits = 0;
    glGetIntegerv(GL_SUBPIXEL_BITS, &subpixelBits);
    MarkContestedPieces(frame, subpixelBits);
  }
  EndStage(FrameStage::kDrawList);
  const bool whole = RenderTiles(frame);
  glFlush();
  AESDK_OpenGL_UseNoProgram();
  RequireCompleteFramebuffer(frame);
  if (whole) {
    Transfer(frame);
  }
}

/// One frame at a time: another one, requested from within a host call, would be drawn into the
/// same target.
bool gFrameIsUnderWay = false;

/// Runs `work` and returns the host code that it was stopped with, or 0. What is no code of the
/// host's (memory that ran out, say) stops it too, and leaves the result to the host calls so far.
template <class Work>
PF_Err StoppedWith(Work work) {
  try {
    work();
  } catch (const PF_Err thrown) {
    return thrown;
  } catch (...) {
    return PF_Err_NONE;
  }
  return PF_Err_NONE;
}

}  // namespace

PF_Err Render(PF_InData& in, PF_OutData& out, PF_ParamDef* const* params, PF_EffectWorld& output) {
  HostCalls host(in.pica_basicP);
  Scene* const scene = gScenes.Reach(in.sequence_data);
  if (gFrameIsUnderWay || (scene != nullptr && scene->isInUse)) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  const ScopedFlag underWay(gFrameIsUnderWay);
  std::optional<ScopedFlag> use;
  if (scene != nullptr) {
    use.emplace(scene->isInUse);
  }
  const PF_Err stopped = StoppedWith([&] {
    ClearOutput(host, in, output);
    if (scene == nullptr) {
      return;
    }
    Frame frame(in, out, params, output, host, *scene);
    RenderFrame(frame);
  });
  EndStage(FrameStage::kTransfer);
  return stopped != PF_Err_NONE ? stopped : host.Code();
}

}  // namespace plugin
