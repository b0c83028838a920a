#pragma once

#include <array>
#include <cstddef>
#include <map>

#include "plugin/render/stage_watch.h"
#include "sdk/effect.h"

namespace bench {

struct StageName {
  plugin::FrameStage stage;
  const char* name;
};
inline constexpr std::array<StageName, 7> kStageNames{
    {{plugin::FrameStage::kWorlds, "worlds"},
     {plugin::FrameStage::kUpload, "upload"},
     {plugin::FrameStage::kDrawList, "draw list"},
     {plugin::FrameStage::kMaps, "maps"},
     {plugin::FrameStage::kPasses, "passes"},
     {plugin::FrameStage::kReadBack, "read back"},
     {plugin::FrameStage::kTransfer, "transfer"}}};
static_assert(kStageNames.size() == 1 + static_cast<std::size_t>(plugin::FrameStage::kTransfer));

/// Milliseconds of each stage, in a frame of several tiles those of all tiles together.
using StageTimes = std::map<plugin::FrameStage, double>;

/// Answers the render command as the plug-in does, with a stop at the end of every stage, in which
/// pending OpenGL work is finished. [command under way]
PF_Err StoppedRender(PF_Cmd command, PF_InData* in, PF_OutData* out, PF_ParamDef* params[],
                     PF_LayerDef* output, void* extra);

/// The stages of the latest StoppedRender.
const StageTimes& LatestStageTimes();

}  // namespace bench
