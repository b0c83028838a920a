#pragma once

#include <array>

#include "plugin/gl/framework.h"

namespace AESDK_OpenGL {

/// The shaders of all programs, zero-terminated. They carry no version and no extension directive:
/// their language is the first one.
extern const char* const kVertexSource;

/// What all fragment shaders have in common, behind a head that says which job it does.
extern const char* const kFragmentSource;
extern const char* const kGeneralHead;
extern const std::array<const char*, kAESDK_OpenGL_JobCount> kJobHeads;

}  // namespace AESDK_OpenGL
