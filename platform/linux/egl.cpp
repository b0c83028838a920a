#include "platform/linux/egl.h"

#include <EGL/eglext.h>

namespace plugin::window_system {

namespace {

EGLDisplay InitializedDisplay() {
  EGLDisplay display =
      eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
  return eglInitialize(display, nullptr, nullptr) == EGL_TRUE ? display : EGL_NO_DISPLAY;
}

}  // namespace

EGLDisplay Display() {
  static EGLDisplay display = InitializedDisplay();
  return display;
}

Binding CurrentBinding() {
  return {{eglGetCurrentDisplay(), eglGetCurrentSurface(EGL_DRAW), eglGetCurrentSurface(EGL_READ)},
          eglGetCurrentContext()};
}

bool Bind(const Binding& binding) {
  if (binding.context == EGL_NO_CONTEXT) {
    // The release goes to the display of what is current, which need not be ours.
    EGLDisplay current = eglGetCurrentDisplay();
    return current == EGL_NO_DISPLAY ||
           eglMakeCurrent(current, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT) == EGL_TRUE;
  }
  const Drawable& drawable = binding.drawable;
  return eglMakeCurrent(drawable.display, drawable.draw, drawable.read, binding.context) ==
         EGL_TRUE;
}

}  // namespace plugin::window_system
