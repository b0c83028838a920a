#pragma once

#include "standin/command/command.h"
#include "standin/command/render_options.h"

namespace standin {

/// Carries out `tarvo render`: one picture, which is written only once everything went well, or
/// what RenderFrames makes. Throws what a Work throws.
void Render(const RenderOptions& options, const Console& console);

}  // namespace standin
