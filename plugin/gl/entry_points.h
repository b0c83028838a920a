#pragma once

#include "plugin/gl/framework.h"

namespace AESDK_OpenGL {

/// Checks the extensions and fills `gEntryPoints`. Throws an `AESDK_OpenGL_Fault` at the first that
/// is missing. [context current]
void LoadEntryPoints(const AESDK_OpenGL_LookUp& lookUp);

}  // namespace AESDK_OpenGL
