#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <optional>
#include <vector>

#include <window_system.h>

#include "platform/linux/window_registry.h"
#include "platform/linux/window_system_faults.h"

using plugin::window_system::Bind;
using plugin::window_system::Binding;
using plugin::window_system::CurrentBinding;
using plugin::window_system::Display;
using plugin::window_system::Drawable;
using plugin::window_system::OpenGlApiScope;
using plugin::window_system::Registry;
using plugin::window_system::Window;
using plugin::window_system::WindowRegistry;

namespace {

// Colours without alpha; a descriptor's 32 bits mean these 24 as well.
constexpr int kMostColorBits = 24;

std::vector<EGLConfig> MatchingConfigs(const std::vector<EGLint>& attributes) {
  EGLint count = 0;
  if (eglChooseConfig(Display(), attributes.data(), nullptr, 0, &count) != EGL_TRUE) {
    return {};
  }
  std::vector<EGLConfig> configs(static_cast<std::size_t>(count));
  if (eglChooseConfig(Display(), attributes.data(), configs.data(), count, &count) != EGL_TRUE) {
    return {};
  }
  configs.resize(static_cast<std::size_t>(count));
  return configs;
}

int Attribute(EGLConfig config, EGLint name) {
  EGLint value = 0;
  eglGetConfigAttrib(Display(), config, name, &value);
  return value;
}

int ColorBits(EGLConfig config) {
  return Attribute(config, EGL_RED_SIZE) + Attribute(config, EGL_GREEN_SIZE) +
         Attribute(config, EGL_BLUE_SIZE);
}

// A pixel format's number is its EGL configuration's.
std::optional<EGLConfig> ConfigOf(int pixelFormat) {
  if (pixelFormat <= 0) {
    return std::nullopt;
  }
  const auto configs = MatchingConfigs({EGL_CONFIG_ID, pixelFormat, EGL_NONE});
  if (configs.empty()) {
    return std::nullopt;
  }
  return configs.front();
}

bool IsUsable(const PIXELFORMATDESCRIPTOR* descriptor) {
  return descriptor != nullptr && descriptor->nSize == sizeof(PIXELFORMATDESCRIPTOR) &&
         descriptor->nVersion == 1 && descriptor->iPixelType == PFD_TYPE_RGBA;
}

int ClosestPixelFormat(const PIXELFORMATDESCRIPTOR& wanted) {
  const auto configs = MatchingConfigs({EGL_SURFACE_TYPE, EGL_PBUFFER_BIT,      //
                                        EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT,    //
                                        EGL_ALPHA_SIZE, wanted.cAlphaBits,      //
                                        EGL_DEPTH_SIZE, wanted.cDepthBits,      //
                                        EGL_STENCIL_SIZE, wanted.cStencilBits,  //
                                        EGL_NONE});
  const int bits = std::min<int>(wanted.cColorBits, kMostColorBits);
  const auto closest = std::ranges::min_element(
      configs, {}, [bits](EGLConfig config) { return std::abs(ColorBits(config) - bits); });
  return closest == configs.end() ? 0 : Attribute(*closest, EGL_CONFIG_ID);
}

std::optional<Drawable> DrawableOf(HDC deviceContext) {
  WindowRegistry& registry = Registry();
  const std::scoped_lock lock(registry.mutex);
  const Window* const window = registry.FindByDeviceContext(deviceContext);
  if (window == nullptr) {
    return registry.foreign.Find(deviceContext);
  }
  if (window->surface == EGL_NO_SURFACE) {
    return std::nullopt;
  }
  return Drawable{Display(), window->surface, window->surface};
}

// EGL would put the deletion off until the other thread lets go; only an attempt to bind shows it.
bool IsCurrentOnAnotherThread(EGLContext context) {
  const Binding before = CurrentBinding();
  const bool bound = Bind({{Display(), EGL_NO_SURFACE, EGL_NO_SURFACE}, context});
  const bool refused = !bound && eglGetError() == EGL_BAD_ACCESS;
  Bind(before);
  return refused;
}

}  // namespace

int ChoosePixelFormat(HDC deviceContext, const PIXELFORMATDESCRIPTOR* descriptor) {
  if (gWindowSystemFaults.pixelFormatNotFound || !IsUsable(descriptor)) {
    return 0;
  }
  WindowRegistry& registry = Registry();
  const std::scoped_lock lock(registry.mutex);
  if (registry.FindByDeviceContext(deviceContext) == nullptr) {
    return 0;
  }
  return ClosestPixelFormat(*descriptor);
}

BOOL SetPixelFormat(HDC deviceContext, int format, const PIXELFORMATDESCRIPTOR* /*descriptor*/) {
  if (gWindowSystemFaults.pixelFormatRefused) {
    return FALSE;
  }
  WindowRegistry& registry = Registry();
  const std::scoped_lock lock(registry.mutex);
  Window* const window = registry.FindByDeviceContext(deviceContext);
  if (window == nullptr) {
    return FALSE;
  }
  if (window->pixelFormat != 0) {
    return window->pixelFormat == format ? TRUE : FALSE;
  }

  const std::optional<EGLConfig> config = ConfigOf(format);
  if (!config) {
    return FALSE;
  }
  const std::array<EGLint, 5> size = {EGL_WIDTH, window->width, EGL_HEIGHT, window->height,
                                      EGL_NONE};
  window->surface = eglCreatePbufferSurface(Display(), *config, size.data());
  if (window->surface == EGL_NO_SURFACE) {
    return FALSE;
  }
  window->pixelFormat = format;
  return TRUE;
}

HGLRC wglCreateContext(HDC deviceContext) {
  if (gWindowSystemFaults.contextRefused) {
    return nullptr;
  }
  WindowRegistry& registry = Registry();
  const std::scoped_lock lock(registry.mutex);
  const Window* const window = registry.FindByDeviceContext(deviceContext);
  const std::optional<EGLConfig> config = ConfigOf(window == nullptr ? 0 : window->pixelFormat);
  if (!config) {
    return nullptr;
  }
  const OpenGlApiScope openGl;
  return static_cast<HGLRC>(eglCreateContext(Display(), *config, EGL_NO_CONTEXT, nullptr));
}

BOOL wglDeleteContext(HGLRC context) {
  if (context == nullptr) {
    return FALSE;
  }
  if (eglGetCurrentContext() == context) {
    Bind({});
  }
  if (IsCurrentOnAnotherThread(context)) {
    return FALSE;
  }
  return eglDestroyContext(Display(), context) == EGL_TRUE ? TRUE : FALSE;
}

BOOL wglMakeCurrent(HDC deviceContext, HGLRC context) {
  if (context == nullptr) {
    const bool nothingToRelease =
        deviceContext == nullptr && eglGetCurrentContext() == EGL_NO_CONTEXT;
    return !nothingToRelease && Bind({}) ? TRUE : FALSE;
  }
  const std::optional<Drawable> drawable = DrawableOf(deviceContext);
  const auto refused = gWindowSystemFaults.makeCurrentRefused;
  const bool allowed = refused == nullptr || !refused(context);
  if (drawable && allowed && Bind({*drawable, context})) {
    return TRUE;
  }
  Bind({});
  return FALSE;
}

HGLRC wglGetCurrentContext() { return static_cast<HGLRC>(eglGetCurrentContext()); }

HDC wglGetCurrentDC() {
  const Binding current = CurrentBinding();
  if (current.context == EGL_NO_CONTEXT) {
    return nullptr;
  }

  WindowRegistry& registry = Registry();
  const std::scoped_lock lock(registry.mutex);
  for (const auto& [handle, window] : registry.windows) {
    if (window.deviceContext == nullptr || window.surface == EGL_NO_SURFACE) {
      continue;
    }
    if (current.drawable == Drawable{Display(), window.surface, window.surface}) {
      return window.deviceContext;
    }
  }
  return registry.foreign.DeviceContextOf(current.drawable);
}

PROC wglGetProcAddress(LPCSTR name) {
  if (name == nullptr || eglGetCurrentContext() == EGL_NO_CONTEXT) {
    return nullptr;
  }
  return eglGetProcAddress(name);
}
