#pragma once

#include "cli/frames/render_options.h"
#include "cli/process/console.h"

namespace tarvo {

/// Carries out `tarvo render`: one picture, which is written only once everything went well, or
/// what RenderFrames makes. Throws what a Work throws.
void Render(const RenderOptions& options, const Console& console);

}  // namespace tarvo
