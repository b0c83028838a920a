#pragma once

#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <window_system.h>

#include "platform/linux/egl.h"

namespace plugin::window_system {

/// One window. It draws into a surface of its own once it has a pixel format.
struct Window {
  std::string className;
  std::thread::id maker;
  EGLint width = 0;
  EGLint height = 0;
  HDC deviceContext = nullptr;
  int deviceContextUses = 0;
  int pixelFormat = 0;
  EGLSurface surface = EGL_NO_SURFACE;
};

/// Device contexts for drawables that are no window's: equal drawables get the same one. Keeps
/// those asked for last and drops the others, so that a host that keeps making new surfaces does
/// not grow the table.
class ForeignDrawables {
 public:
  HDC DeviceContextOf(const Drawable& drawable);
  std::optional<Drawable> Find(HDC deviceContext) const;

 private:
  std::vector<std::pair<HDC, Drawable>> entries_;  // In the order of their last use.
};

/// The window classes, windows and device contexts of this copy of the layer. `mutex` guards the
/// rest; the functions that find something REQUIRE that it is held.
struct WindowRegistry {
  std::mutex mutex;
  std::set<std::string> classes;
  std::map<HWND, Window> windows;
  ForeignDrawables foreign;

  /// Each returns null if the handle is no window's, or no device context that a window has.
  Window* Find(HWND window);
  Window* FindByDeviceContext(HDC deviceContext);
};

WindowRegistry& Registry();

/// Returns a number that no handle had before, of whatever kind.
std::uintptr_t NextHandleNumber();

}  // namespace plugin::window_system
