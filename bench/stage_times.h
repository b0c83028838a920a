#pragma once

#include <array>
#include <cstddef>
#include <map>

#include "plugin/render/stage_watch.h"
#include "sdk/effect.h"

namespace bench {

struct StageName {
  tarvo::FrameStage stage;
  const char* name;
};
inline constexpr std::array<StageName, 7> kStageNames{{{tarvo::FrameStage::kWorlds, "worlds"},
                                                       {tarvo::FrameStage::kUpload, "upload"},
                                                       {tarvo::FrameStage::kDrawList, "draw list"},
                                                       {tarvo::FrameStage::kMaps, "maps"},
                                                       {tarvo::FrameStage::kPasses, "passes"},
                                                       {tarvo::FrameStage::kReadBack, "read back"},
                                                       {tarvo::FrameStage::kTransfer, "transfer"}}};
static_assert(kStageNames.size() == 1 + static_cast<std::size_t>(tarvo::FrameStage::kTransfer));

/// Milliseconds of each stage, in a frame of several tiles those of all tiles together.
using StageTimes = std::map<tarvo::FrameStage, double>;

/// Answers the render command as the plug-in does, with a stop at the end of every stage, in which
/// what OpenGL was told to do is waited for. [command under way]
PF_Err StoppedRender(PF_Cmd command, PF_InData* in, PF_OutData* out, PF_ParamDef* params[],
                     PF_LayerDef* output, void* extra);

/// The stages of the latest StoppedRender.
const StageTimes& LatestStageTimes();

}  // namespace bench
