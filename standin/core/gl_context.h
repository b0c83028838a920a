#pragma once

#include <thread>

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

  /// True iff this is the thread that made it: the one that it serves.
  [[nodiscard]] bool IsOfThisThread() const { return std::this_thread::get_id() == thread_; }
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
  const std::thread::id thread_ = std::this_thread::get_id();
};

/// Leaves this thread without an OpenGL context.
void MakeNoContextCurrent();
/// True iff this thread has none.
bool NoContextIsCurrent();

}  // namespace standin
