#include "plugin/gl/class_name.h"
#include "plugin/gl/entry_points.h"
#include "plugin/gl/fault_guard.h"
#include "plugin/gl/framework.h"

namespace AESDK_OpenGL {

AESDK_OpenGL_State gState;

namespace {

constexpr int kWindowSide = 50;  // Pixels; never seen.

std::uint32_t SeedFromClock() {
  SYSTEMTIME time{};
  GetSystemTime(&time);
  return std::uint32_t{time.wSecond} * 1000 + time.wMilliseconds;
}

void RegisterWindowClass(AESDK_OpenGL_State& state) {
  AESDK_OpenGL_SeedClassNames(SeedFromClock());
  AESDK_OpenGL_MakeClassName(state.className.data(),
                             static_cast<std::int32_t>(state.className.size() - 1));
  WNDCLASSEXA windowClass{};
  windowClass.cbSize = sizeof(windowClass);
  windowClass.style = CS_HREDRAW | CS_VREDRAW;
  windowClass.lpfnWndProc = DefWindowProcA;
  windowClass.hCursor = LoadCursorA(nullptr, IDC_ARROW);
  windowClass.hbrBackground = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
  windowClass.lpszClassName = state.className.data();
  Require(RegisterClassExA(&windowClass) != 0, AESDK_OpenGL_Err_OSCalls);
}

void CreateHiddenWindow(AESDK_OpenGL_State& state) {
  state.window = CreateWindowExA(0, state.className.data(), "OpenGL-using FBOs in AE", 0, 0, 0,
                                 kWindowSide, kWindowSide, nullptr, nullptr, nullptr, nullptr);
  Require(state.window != nullptr, AESDK_OpenGL_Err_OSCalls);
}

// Objects of an earlier context were deleted with it.
void ForgetObjects(AESDK_OpenGL_State& state) {
  state.framebuffer = 0;
  state.depthRenderbuffer = 0;
  state.spareRenderbuffer = 0;
  state.colorTexture = 0;
  state.program = 0;
  state.vertexShader = 0;
  state.fragmentShader = 0;
  state.jobFragmentShaders = {};
  state.jobPrograms = {};
  state.shadersReady = false;
  state.programInUse = 0;
}

// Failures here show as a missing extension string.
void CreateContext(AESDK_OpenGL_State& state) {
  PIXELFORMATDESCRIPTOR descriptor{};
  descriptor.nSize = sizeof(descriptor);
  descriptor.nVersion = 1;
  descriptor.dwFlags = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_DOUBLEBUFFER;
  descriptor.iPixelType = PFD_TYPE_RGBA;
  descriptor.cColorBits = 32;
  descriptor.cDepthBits = 8;

  state.deviceContext = GetDC(state.window);
  const int format = ChoosePixelFormat(state.deviceContext, &descriptor);
  SetPixelFormat(state.deviceContext, format, &descriptor);
  state.renderContext = wglCreateContext(state.deviceContext);
  AESDK_OpenGL_MakeCurrent(state.deviceContext, state.renderContext);
  ForgetObjects(state);
}

void DeleteShaderObjects(const AESDK_OpenGL_State& state) {
  if (!AESDK_OpenGL_IsCurrent(state)) {  // the context takes its objects with it
    return;
  }
  gEntryPoints.glDeleteObjectARB(state.vertexShader);
  gEntryPoints.glDeleteObjectARB(state.fragmentShader);
  gEntryPoints.glDeleteObjectARB(state.program);
  for (std::size_t job = 0; job < kAESDK_OpenGL_JobCount; ++job) {
    gEntryPoints.glDeleteObjectARB(state.jobFragmentShaders[job]);
    gEntryPoints.glDeleteObjectARB(state.jobPrograms[job]);
  }
}

void DeleteContext(AESDK_OpenGL_State& state) {
  if (state.renderContext == nullptr) {
    return;
  }
  AESDK_OpenGL_MakeCurrent(nullptr, nullptr);
  wglDeleteContext(state.renderContext);
  state.renderContext = nullptr;
}

void ReleaseDeviceContext(AESDK_OpenGL_State& state) {
  if (state.deviceContext == nullptr) {
    return;
  }
  ReleaseDC(state.window, state.deviceContext);
  state.deviceContext = nullptr;
}

// NOTE: before its class, which cannot be unregistered while it has a window.
void DestroyHiddenWindow(AESDK_OpenGL_State& state) {
  if (state.window == nullptr) {
    return;
  }
  DestroyWindow(state.window);
  state.window = nullptr;
}

}  // namespace

AESDK_OpenGL_Err AESDK_OpenGL_StartUp(AESDK_OpenGL_State& state,
                                      const AESDK_OpenGL_LookUp& lookUp) {
  if (IsRunning(state)) {
    return AESDK_OpenGL_Err_None;
  }
  // A start-up that failed has left a class, perhaps with a window, which this one would put out of
  // reach.
  if (state.className.front() != '\0') {
    AESDK_OpenGL_ShutDown(state);
  }
  const AESDK_OpenGL_Err result = ResultOf([&] {
    RegisterWindowClass(state);
    CreateHiddenWindow(state);
    CreateContext(state);
    LoadEntryPoints(lookUp);
  });
  state.started = result == AESDK_OpenGL_Err_None;
  return result;
}

AESDK_OpenGL_Err AESDK_OpenGL_ShutDown(AESDK_OpenGL_State& state) {
  return ResultOf([&] {
    DeleteShaderObjects(state);
    DeleteContext(state);
    ReleaseDeviceContext(state);
    DestroyHiddenWindow(state);
    UnregisterClassA(state.className.data(), nullptr);
  });
}

void AESDK_OpenGL_SaveCurrentContext(AESDK_OpenGL_State& state) {
  state.savedRenderContext = wglGetCurrentContext();
  state.savedDeviceContext = wglGetCurrentDC();
}

BOOL AESDK_OpenGL_MakeCurrent(HDC deviceContext, HGLRC renderContext) {
  return wglMakeCurrent(deviceContext, renderContext);
}

bool AESDK_OpenGL_IsCurrent(const AESDK_OpenGL_State& state) {
  return IsRunning(state) && wglGetCurrentContext() == state.renderContext;
}

}  // namespace AESDK_OpenGL
