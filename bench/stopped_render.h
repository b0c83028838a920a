#pragma once

#include <array>
#include <cstddef>

#include "sdk/effect.h"

namespace bench {

/// The stages of a frame, in their order.
enum FrameStage : std::size_t {
  kWorlds,    ///< the output's fill and the scratch world
  kUpload,    ///< new images
  kDrawList,  ///< depths and their order
  kMaps,      ///< which piece owns each pixel; nothing in a fast frame
  kPasses,    ///< the two colour passes
  kReadBack,  ///< into the scratch world
  kTransfer,  ///< straight colour, and the copy into the output
  kFrameStages,
};
inline constexpr std::array<const char*, kFrameStages> kFrameStageNames{
    "worlds", "upload", "draw list", "maps", "passes", "read back", "transfer"};

using StageTimes = std::array<double, kFrameStages>;

/// Answers the render command in the plug-in's place, stage by stage with a stop between them, in
/// which what OpenGL was told to do is waited for. For outputs of one tile. [command under way]
PF_Err StoppedRender(PF_Cmd command, PF_InData* in, PF_OutData* out, PF_ParamDef* params[],
                     PF_LayerDef* output, void* extra);

/// Milliseconds of each stage in the latest StoppedRender.
const StageTimes& LatestStageTimes();

}  // namespace bench
