#include "platform/linux/window_registry.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstddef>

namespace plugin::window_system {

namespace {

constexpr std::size_t kMostForeignDrawables = 256;

// Above the numbers of cursors and stock objects.
constexpr std::uintptr_t kFirstHandleNumber = 0x20000;

}  // namespace

HDC ForeignDrawables::DeviceContextOf(const Drawable& drawable) {
  const auto found = std::ranges::find(entries_, drawable, &std::pair<HDC, Drawable>::second);
  if (found != entries_.end()) {
    std::rotate(found, found + 1, entries_.end());
    return entries_.back().first;
  }
  if (entries_.size() == kMostForeignDrawables) {
    entries_.erase(entries_.begin());
  }
  return entries_.emplace_back(std::bit_cast<HDC>(NextHandleNumber()), drawable).first;
}

std::optional<Drawable> ForeignDrawables::Find(HDC deviceContext) const {
  const auto found = std::ranges::find(entries_, deviceContext, &std::pair<HDC, Drawable>::first);
  if (found == entries_.end()) {
    return std::nullopt;
  }
  return found->second;
}

Window* WindowRegistry::Find(HWND window) {
  const auto found = windows.find(window);
  return found == windows.end() ? nullptr : &found->second;
}

Window* WindowRegistry::FindByDeviceContext(HDC deviceContext) {
  if (deviceContext == nullptr) {
    return nullptr;
  }
  const auto found = std::ranges::find_if(windows, [deviceContext](const auto& entry) {
    return entry.second.deviceContext == deviceContext;
  });
  return found == windows.end() ? nullptr : &found->second;
}

WindowRegistry& Registry() {
  static WindowRegistry registry;
  return registry;
}

std::uintptr_t NextHandleNumber() {
  static std::atomic<std::uintptr_t> next = kFirstHandleNumber;
  return next++;
}

}  // namespace plugin::window_system
