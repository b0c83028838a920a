#pragma once

#include <cstdint>

namespace AESDK_OpenGL {

/// Starts the sequence that class names are drawn from: equal seeds give equal names.
void AESDK_OpenGL_SeedClassNames(std::uint32_t seed);

}  // namespace AESDK_OpenGL
