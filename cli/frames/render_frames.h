#pragma once

#include <vector>

#include "cli/frames/frame_workers.h"
#include "cli/frames/picture_composer.h"
#include "cli/frames/render_settings.h"
#include "cli/process/console.h"

namespace tarvo {

/// Renders frames of an animation, `rate` of them a second, into files, a movie or standard output,
/// and says what it made. Throws CommandExit when it was interrupted or a frame's file is not as it
/// should be at the end, and what its parts throw; whatever the reason, missing files are listed.
/// REQUIRES: the workers have read the scene and were not started.
void RenderFrames(const RenderSettings& settings, const PictureComposer& composer, double rate,
                  const std::vector<int>& frames, FrameWorkers& workers, const Console& console);

}  // namespace tarvo
