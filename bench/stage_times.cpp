#include "bench/stage_times.h"

#include <window_system.h>

#include "bench/measure.h"
#include "plugin/entry/entry_point.h"

namespace bench {
namespace {

// The plug-in calls a plain function, so its state is global.
StageTimes gTimes;
double gSince = 0.0;

void Stop(plugin::FrameStage stage) {
  glFinish();
  const double now = ProcessorMilliseconds();
  gTimes[stage] += now - gSince;
  gSince = now;
}

}  // namespace

PF_Err StoppedRender(PF_Cmd command, PF_InData* in, PF_OutData* out, PF_ParamDef* params[],
                     PF_LayerDef* output, void* extra) {
  gTimes.clear();
  gSince = ProcessorMilliseconds();
  plugin::gStageWatch = Stop;
  const PF_Err result = EntryPointFunc(command, in, out, params, output, extra);
  plugin::gStageWatch = nullptr;
  return result;
}

const StageTimes& LatestStageTimes() { return gTimes; }

}  // namespace bench
