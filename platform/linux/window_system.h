#pragma once

/// \file
/// The part of Win32, GDI and WGL that an offscreen OpenGL program needs, under its own names, over
/// EGL without a display server. Every operation succeeds and fails as the one of Windows does;
/// what a caller of ours never reads (last error codes, messages, painting) is left out.
///
/// Rules that hold for all of it:
/// - Handles are numbers that are never used twice and never followed, so a null, stale or unknown
///   handle is refused, not crashed on. An HGLRC is the EGL context itself.
/// - What is "current" belongs to EGL, not to this layer: contexts that others made current on the
///   thread are read, saved and restored like the layer's own, by any number of copies of it.
/// - The EGL display is shared with the whole process and never terminated, and the API that
///   the thread has bound is the same after a call as before.
/// - All operations may be called from any thread.

#include <cstdint>

#include <GL/gl.h>
#include <GL/glext.h>
#include <GL/glu.h>

#define WINAPI
#define CALLBACK

using BOOL = int;
using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using ATOM = std::uint16_t;
using DWORD = std::uint32_t;
using UINT = unsigned int;
using LPCSTR = const char*;
using LPVOID = void*;
using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;
using LRESULT = std::intptr_t;

using HDC = struct HDC__*;
using HGLRC = struct HGLRC__*;
using HWND = struct HWND__*;
using HMENU = struct HMENU__*;
using HINSTANCE = struct HINSTANCE__*;
using HICON = struct HICON__*;
using HCURSOR = HICON;
using HBRUSH = struct HBRUSH__*;
using HGDIOBJ = void*;

using PROC = void(WINAPI*)();
using WNDPROC = LRESULT(CALLBACK*)(HWND, UINT, WPARAM, LPARAM);

inline constexpr BOOL FALSE = 0;
inline constexpr BOOL TRUE = 1;

inline constexpr UINT CS_VREDRAW = 0x1;
inline constexpr UINT CS_HREDRAW = 0x2;
inline constexpr int BLACK_BRUSH = 4;
extern const LPCSTR IDC_ARROW;

inline constexpr BYTE PFD_TYPE_RGBA = 0;
inline constexpr BYTE PFD_MAIN_PLANE = 0;
inline constexpr DWORD PFD_DOUBLEBUFFER = 0x1;
inline constexpr DWORD PFD_DRAW_TO_WINDOW = 0x4;
inline constexpr DWORD PFD_SUPPORT_OPENGL = 0x20;

struct SYSTEMTIME {
  WORD wYear;
  WORD wMonth;
  WORD wDayOfWeek;
  WORD wDay;
  WORD wHour;
  WORD wMinute;
  WORD wSecond;
  WORD wMilliseconds;
};

struct WNDCLASSEXA {
  UINT cbSize;
  UINT style;
  WNDPROC lpfnWndProc;
  int cbClsExtra;
  int cbWndExtra;
  HINSTANCE hInstance;
  HICON hIcon;
  HCURSOR hCursor;
  HBRUSH hbrBackground;
  LPCSTR lpszMenuName;
  LPCSTR lpszClassName;
  HICON hIconSm;
};

struct PIXELFORMATDESCRIPTOR {
  WORD nSize;
  WORD nVersion;
  DWORD dwFlags;
  BYTE iPixelType;
  BYTE cColorBits;
  BYTE cRedBits;
  BYTE cRedShift;
  BYTE cGreenBits;
  BYTE cGreenShift;
  BYTE cBlueBits;
  BYTE cBlueShift;
  BYTE cAlphaBits;
  BYTE cAlphaShift;
  BYTE cAccumBits;
  BYTE cAccumRedBits;
  BYTE cAccumGreenBits;
  BYTE cAccumBlueBits;
  BYTE cAccumAlphaBits;
  BYTE cDepthBits;
  BYTE cStencilBits;
  BYTE cAuxBuffers;
  BYTE iLayerType;
  BYTE bReserved;
  DWORD dwLayerMask;
  DWORD dwVisibleMask;
  DWORD dwDamageMask;
};

/// Writes the current time, UTC.
void GetSystemTime(SYSTEMTIME* time);

/// Returns a cursor for `IDC_ARROW` of no module; null for anything else.
HCURSOR LoadCursorA(HINSTANCE module, LPCSTR name);

/// Returns the stock object of that number; null where there is none.
HGDIOBJ GetStockObject(int number);

/// Handles no message: returns 0.
LRESULT CALLBACK DefWindowProcA(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

/// Registers a window class; names differ in more than case. Returns 0 for a record of the wrong
/// size, a missing or empty name, a name of more than 256 characters or one that is registered.
ATOM RegisterClassExA(const WNDCLASSEXA* windowClass);

/// Returns FALSE for a class that is not registered or that still has a window.
BOOL UnregisterClassA(LPCSTR className, HINSTANCE module);

/// Makes a window, which is never shown. Returns null if the class is not registered.
HWND CreateWindowExA(DWORD extendedStyle, LPCSTR className, LPCSTR title, DWORD style, int x, int y,
                     int width, int height, HWND parent, HMENU menu, HINSTANCE module,
                     LPVOID parameter);

/// Returns FALSE for a handle that is no window's, and on another thread than the one that made it.
/// The window's device context is stale afterwards.
BOOL DestroyWindow(HWND window);

/// Returns the device context of a window, the same one until it is released as often as it was
/// got; null for a handle that is no window's. (Windows gives the whole screen's for a null
/// handle.)
HDC GetDC(HWND window);

/// Returns 1 if the device context was the window's, else 0.
int ReleaseDC(HWND window, HDC deviceContext);

/// Returns the number of the pixel format closest to the descriptor; 0 for a handle that is no
/// window's, a descriptor of another size or version or one that asks for no RGBA colours.
int ChoosePixelFormat(HDC deviceContext, const PIXELFORMATDESCRIPTOR* descriptor);

/// Gives a window its pixel format, once: the same format again is TRUE, another one FALSE.
BOOL SetPixelFormat(HDC deviceContext, int format, const PIXELFORMATDESCRIPTOR* descriptor);

/// Makes a context of the compatibility profile. Returns null without a pixel format.
HGLRC wglCreateContext(HDC deviceContext);

/// Deletes a context, after taking it off the calling thread. Returns FALSE for a handle that is no
/// context's and for one that is current on another thread.
BOOL wglDeleteContext(HGLRC context);

/// Binds the pair to the calling thread; a null context leaves it with none, and is FALSE if it had
/// none and the device context is none either. A failure leaves the thread without a context.
BOOL wglMakeCurrent(HDC deviceContext, HGLRC context);

/// Returns the context that is current on the calling thread, made by this layer or not; null if
/// there is none.
HGLRC wglGetCurrentContext();

/// Returns a device context that represents the display and the two surfaces which are current on
/// the calling thread, the same one for the same three; null if no context is current. One that is
/// no window's stays valid until a few hundred others were requested.
HDC wglGetCurrentDC();

/// Returns the entry point of that name; null if no context is current. A name that the
/// implementation does not know may give an address all the same: ask the extension string first.
PROC wglGetProcAddress(LPCSTR name);
