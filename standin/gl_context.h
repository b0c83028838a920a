#pragma once

#include <window_system.h>

namespace standin {

/// The host's own OpenGL context, behind a window that is never shown. It carries marks, so that a
/// plug-in that draws in it, and not in one of its own, is found out.
///
///   (MakeCurrent (IsCurrent | IsUntouched)*)*
class GlContext {
 public:
  /// Throws std::runtime_error when the system gives no OpenGL context.
  GlContext();
  GlContext(const GlContext&) = delete;
  GlContext& operator=(const GlContext&) = delete;
  ~GlContext();

  /// Binds it to this thread and sets its marks.
  void MakeCurrent() const;
  /// True iff this thread has exactly this context and device context bound.
  [[nodiscard]] bool IsCurrent() const;
  /// True iff the marks are as MakeCurrent left them. REQUIRES: IsCurrent.
  [[nodiscard]] static bool IsUntouched();

 private:
  void Release();

  HWND window_ = nullptr;
  HDC deviceContext_ = nullptr;
  HGLRC renderContext_ = nullptr;
};

/// Leaves this thread without an OpenGL context.
void MakeNoContextCurrent();
/// True iff this thread has none.
bool NoContextIsCurrent();

}  // namespace standin
