#include "standin/core/gl_context.h"

#include <array>
#include <stdexcept>

namespace standin {
namespace {

constexpr const char* kClassName = "tarvo stand-in host";

// Odd values that no drawing leaves behind by chance.
constexpr std::array<GLint, 4> kViewport = {3, 5, 7, 11};
constexpr std::array<GLfloat, 4> kClearColour = {0.125F, 0.25F, 0.5F, 0.75F};

void RegisterClassOnce() {
  static const bool kRegistered = [] {
    WNDCLASSEXA windowClass{};
    windowClass.cbSize = sizeof windowClass;
    windowClass.lpfnWndProc = DefWindowProcA;
    windowClass.lpszClassName = kClassName;
    return RegisterClassExA(&windowClass) != 0;
  }();
  if (!kRegistered) {
    throw std::runtime_error("the host's window class could not be registered");
  }
}

PIXELFORMATDESCRIPTOR Descriptor() {
  PIXELFORMATDESCRIPTOR descriptor{};
  descriptor.nSize = sizeof descriptor;
  descriptor.nVersion = 1;
  descriptor.dwFlags = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_DOUBLEBUFFER;
  descriptor.iPixelType = PFD_TYPE_RGBA;
  descriptor.cColorBits = 32;
  return descriptor;
}

}  // namespace

GlContext::GlContext() {
  RegisterClassOnce();
  window_ = CreateWindowExA(0, kClassName, "stand-in host", 0, 0, 0, 16, 16, nullptr, nullptr,
                            nullptr, nullptr);
  deviceContext_ = GetDC(window_);
  const PIXELFORMATDESCRIPTOR descriptor = Descriptor();
  SetPixelFormat(deviceContext_, ChoosePixelFormat(deviceContext_, &descriptor), &descriptor);
  renderContext_ = wglCreateContext(deviceContext_);
  if (renderContext_ == nullptr) {
    Release();
    throw std::runtime_error("the host could not make an OpenGL context of its own");
  }
}

GlContext::~GlContext() { Release(); }

void GlContext::Release() {
  if (renderContext_ != nullptr && wglGetCurrentContext() == renderContext_) {
    MakeNoContextCurrent();
  }
  if (renderContext_ != nullptr) {
    wglDeleteContext(renderContext_);
  }
  ReleaseDC(window_, deviceContext_);
  DestroyWindow(window_);
}

void GlContext::MakeCurrent() const {
  if (wglMakeCurrent(deviceContext_, renderContext_) == FALSE) {
    throw std::runtime_error("the host's OpenGL context could not be made current");
  }
  glViewport(kViewport[0], kViewport[1], kViewport[2], kViewport[3]);
  glClearColor(kClearColour[0], kClearColour[1], kClearColour[2], kClearColour[3]);
}

bool GlContext::IsCurrent() const {
  return wglGetCurrentContext() == renderContext_ && wglGetCurrentDC() == deviceContext_;
}

bool GlContext::IsUntouched() {
  std::array<GLint, 4> viewport{};
  std::array<GLfloat, 4> clearColour{};
  glGetIntegerv(GL_VIEWPORT, viewport.data());
  glGetFloatv(GL_COLOR_CLEAR_VALUE, clearColour.data());
  return viewport == kViewport && clearColour == kClearColour && glGetError() == GL_NO_ERROR;
}

void MakeNoContextCurrent() { wglMakeCurrent(nullptr, nullptr); }

bool NoContextIsCurrent() { return wglGetCurrentContext() == nullptr; }

}  // namespace standin
