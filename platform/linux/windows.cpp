#include <algorithm>
#include <bit>
#include <cstddef>
#include <string>
#include <string_view>

#include <window_system.h>

#include "platform/linux/window_registry.h"
#include "platform/linux/window_system_faults.h"

using plugin::window_system::Display;
using plugin::window_system::NextHandleNumber;
using plugin::window_system::Registry;
using plugin::window_system::Window;
using plugin::window_system::WindowRegistry;

namespace {

constexpr std::size_t kLongestClassName = 256;
constexpr ATOM kClassAtom = 0xC000;

// Class names differ in more than case. An absent name becomes the empty one, which no class has.
std::string Folded(LPCSTR name) {
  std::string folded(name == nullptr ? "" : name);
  std::ranges::transform(folded, folded.begin(), [](char character) {
    const bool upper = character >= 'A' && character <= 'Z';
    return upper ? static_cast<char>(character - 'A' + 'a') : character;
  });
  return folded;
}

bool HasWindow(const WindowRegistry& registry, std::string_view className) {
  return std::ranges::any_of(registry.windows, [className](const auto& entry) {
    return entry.second.className == className;
  });
}

}  // namespace

ATOM RegisterClassExA(const WNDCLASSEXA* windowClass) {
  if (gWindowSystemFaults.classRefused || windowClass == nullptr) {
    return 0;
  }
  if (windowClass->cbSize != sizeof(WNDCLASSEXA)) {
    return 0;
  }
  const std::string name = Folded(windowClass->lpszClassName);
  if (name.empty() || name.size() > kLongestClassName) {
    return 0;
  }

  WindowRegistry& registry = Registry();
  const std::scoped_lock lock(registry.mutex);
  return registry.classes.insert(name).second ? kClassAtom : ATOM{0};
}

BOOL UnregisterClassA(LPCSTR className, HINSTANCE /*module*/) {
  const std::string name = Folded(className);
  WindowRegistry& registry = Registry();
  const std::scoped_lock lock(registry.mutex);
  if (HasWindow(registry, name)) {
    return FALSE;
  }
  return registry.classes.erase(name) == 1 ? TRUE : FALSE;
}

HWND CreateWindowExA(DWORD /*extendedStyle*/, LPCSTR className, LPCSTR /*title*/, DWORD /*style*/,
                     int /*x*/, int /*y*/, int width, int height, HWND /*parent*/, HMENU /*menu*/,
                     HINSTANCE /*module*/, LPVOID /*parameter*/) {
  if (gWindowSystemFaults.windowRefused) {
    return nullptr;
  }
  const std::string name = Folded(className);
  WindowRegistry& registry = Registry();
  const std::scoped_lock lock(registry.mutex);
  if (!registry.classes.contains(name)) {
    return nullptr;
  }

  HWND handle = std::bit_cast<HWND>(NextHandleNumber());
  Window& window = registry.windows[handle];
  window.className = name;
  window.maker = std::this_thread::get_id();
  window.width = std::max(width, 1);
  window.height = std::max(height, 1);
  return handle;
}

BOOL DestroyWindow(HWND window) {
  WindowRegistry& registry = Registry();
  const std::scoped_lock lock(registry.mutex);
  const Window* const found = registry.Find(window);
  if (found == nullptr || found->maker != std::this_thread::get_id()) {
    return FALSE;
  }
  // EGL keeps a surface that is current until it no longer is.
  if (found->surface != EGL_NO_SURFACE) {
    eglDestroySurface(Display(), found->surface);
  }
  registry.windows.erase(window);
  return TRUE;
}

HDC GetDC(HWND window) {
  if (gWindowSystemFaults.deviceContextRefused) {
    return nullptr;
  }
  WindowRegistry& registry = Registry();
  const std::scoped_lock lock(registry.mutex);
  Window* const found = registry.Find(window);
  if (found == nullptr) {
    return nullptr;
  }
  if (found->deviceContextUses++ == 0) {
    found->deviceContext = std::bit_cast<HDC>(NextHandleNumber());
  }
  return found->deviceContext;
}

int ReleaseDC(HWND window, HDC deviceContext) {
  WindowRegistry& registry = Registry();
  const std::scoped_lock lock(registry.mutex);
  Window* const found = registry.Find(window);
  if (found == nullptr || deviceContext == nullptr) {
    return 0;
  }
  if (found->deviceContext != deviceContext) {
    return 0;
  }
  if (--found->deviceContextUses == 0) {
    found->deviceContext = nullptr;
  }
  return 1;
}
