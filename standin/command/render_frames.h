#pragma once

#include <vector>

#include "standin/animation.h"
#include "standin/command/command.h"
#include "standin/command/render_options.h"

namespace standin {

/// Renders frames of an animation into files, a movie or standard output, and says what it made.
/// Throws Unfinished when it was interrupted or a frame's file is not as it should be at the end,
/// and what everybody else throws; whatever the reason, missing files are listed.
void RenderFrames(const RenderOptions& options, const RenderWishes& wishes,
                  const Animation& animation, const std::vector<int>& frames,
                  const Console& console);

}  // namespace standin
