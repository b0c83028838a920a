#pragma once

#include <cstdint>

namespace check {

/// Gives the statically linked plug-in a render target of this size in pixels in place of its own,
/// so that small outputs are drawn in many tiles. [between commands, after a sequence setup]
void ResizeRenderTarget(std::uint16_t width, std::uint16_t height);

/// Paints all of the statically linked plug-in's render target, opaque. [as above]
void FillRenderTarget();

}  // namespace check
