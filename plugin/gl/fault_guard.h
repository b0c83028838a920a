#pragma once

#include "plugin/gl/framework.h"

namespace AESDK_OpenGL {

/// Runs the body of an operation; returns the code of the fault that ended it, or none.
template <typename Body>
AESDK_OpenGL_Err ResultOf(const Body& body) {
  try {
    body();
  } catch (const AESDK_OpenGL_Fault& fault) {
    return fault.code;
  }
  return AESDK_OpenGL_Err_None;
}

/// Ends the operation with the code unless the condition holds.
inline void Require(bool condition, AESDK_OpenGL_Err code) {
  if (!condition) {
    throw AESDK_OpenGL_Fault(code);
  }
}

/// Returns true iff start-up has completed and its context still exists: only then are there entry
/// points and objects.
inline bool IsRunning(const AESDK_OpenGL_State& state) {
  return state.started && state.renderContext != nullptr;
}

}  // namespace AESDK_OpenGL
