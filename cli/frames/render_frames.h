#pragma once

#include <vector>

#include "cli/frames/render_options.h"
#include "cli/process/console.h"
#include "tool/rig/animation.h"

namespace standin {

/// Renders frames of an animation into files, a movie or standard output, and says what it made.
/// Throws Unfinished when it was interrupted or a frame's file is not as it should be at the end,
/// and what everybody else throws; whatever the reason, missing files are listed.
void RenderFrames(const RenderOptions& options, const RenderWishes& wishes,
                  const Animation& animation, const std::vector<int>& frames,
                  const Console& console);

}  // namespace standin
