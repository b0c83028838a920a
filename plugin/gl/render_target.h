#pragma once

#include <cstdint>

#include "plugin/gl/framework.h"

namespace AESDK_OpenGL {

/// Returns the side in pixels of the target that is made when no size is asked for, where render
/// buffers may be this large.
std::uint16_t DefaultTargetSide(GLint largestRenderbuffer);

}  // namespace AESDK_OpenGL
