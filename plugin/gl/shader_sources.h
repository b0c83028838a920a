#pragma once

namespace AESDK_OpenGL {

/// The two shaders of the program, zero-terminated. They carry no version and no extension
/// directive: their language is the first one.
extern const char* const kVertexSource;
extern const char* const kFragmentSource;

}  // namespace AESDK_OpenGL
