#pragma once

/// \file
/// The window system of Windows: Win32, GDI and WGL, with OpenGL and GLU. The order matters: the GL
/// headers need the types of <windows.h>.

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif

// clang-format off
#include <windows.h>

#include <GL/gl.h>
#include <GL/glext.h>
#include <GL/glu.h>
// clang-format on
