#pragma once

#include <EGL/egl.h>

namespace plugin::window_system {

/// Returns the surfaceless display, which the whole process shares and must not terminate;
/// EGL_NO_DISPLAY if there is none.
EGLDisplay Display();

/// Where a current context draws and reads.
struct Drawable {
  EGLDisplay display = EGL_NO_DISPLAY;
  EGLSurface draw = EGL_NO_SURFACE;
  EGLSurface read = EGL_NO_SURFACE;

  bool operator==(const Drawable&) const = default;
};

/// What is current on the calling thread. The copy that saw it can make it current again.
struct Binding {
  Drawable drawable;
  EGLContext context = EGL_NO_CONTEXT;
};

/// Returns what is current on the calling thread, whether or not this layer made it so.
Binding CurrentBinding();

/// Makes the binding current on the calling thread, or nothing if it has no context. Returns false,
/// and leaves the thread as it was, if EGL refuses.
bool Bind(const Binding& binding);

/// Binds OpenGL as the thread's API for a scope: it decides what kind of context is created.
class OpenGlApiScope {
 public:
  OpenGlApiScope() : before_(eglQueryAPI()) { eglBindAPI(EGL_OPENGL_API); }
  ~OpenGlApiScope() { eglBindAPI(before_); }
  OpenGlApiScope(const OpenGlApiScope&) = delete;
  OpenGlApiScope& operator=(const OpenGlApiScope&) = delete;

 private:
  EGLenum before_;
};

}  // namespace plugin::window_system
