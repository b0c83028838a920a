#pragma once

#include <window_system.h>

/// Makes operations of the window system fail on demand, for tests that link it statically.
struct WindowSystemFaults {
  bool classRefused = false;          ///< RegisterClassExA returns 0.
  bool windowRefused = false;         ///< CreateWindowExA returns null.
  bool deviceContextRefused = false;  ///< GetDC returns null.
  bool pixelFormatNotFound = false;   ///< ChoosePixelFormat returns 0.
  bool pixelFormatRefused = false;    ///< SetPixelFormat returns FALSE.
  bool contextRefused = false;        ///< wglCreateContext returns null.
  /// Where this returns true, wglMakeCurrent binds nothing and returns FALSE.
  bool (*makeCurrentRefused)(HGLRC context) = nullptr;
};

/// The process-wide switches; all off at load.
extern WindowSystemFaults gWindowSystemFaults;
