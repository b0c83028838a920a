#pragma once

/// \file
/// The offscreen OpenGL framework: a hidden window, a rendering context, one render target and the
/// shader programs, all process-wide. Nothing here is ever drawn in a context of the host's.
///
/// Operations return failures as codes. The only exception that leaves one is std::bad_alloc, from
/// the window layer for Linux. A tag at the end of a comment says when an operation may be called:
/// - `[context current]`: the framework's own context is current on the calling thread
/// - `[started]`: that, and start-up has succeeded (AESDK_OpenGL_IsCurrent)

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include <window_system.h>

namespace AESDK_OpenGL {

enum AESDK_OpenGL_Err : std::int32_t {
  AESDK_OpenGL_Err_None = 0,
  AESDK_OpenGL_Err_OSCalls = 1,
  AESDK_OpenGL_Err_OSUnload = 2,
  AESDK_OpenGL_Err_ResourceLoad = 3,
  AESDK_OpenGL_Err_ResourceUnload = 4,
  AESDK_OpenGL_Err_Extensions = 5,
  AESDK_OpenGL_Err_Shader = 6,
  AESDK_OpenGL_Err_Unknown = 7,
};

/// A failure inside an operation of the framework, which turns it into its result.
struct AESDK_OpenGL_Fault {
  explicit AESDK_OpenGL_Fault(AESDK_OpenGL_Err faultCode) : code(faultCode) {}

  AESDK_OpenGL_Err code;
};

/// One job of the shader program, which has a program of its own beside the general one. There the
/// uniform `dataFromAE` and what the normal's third component chooses are constants: what other
/// jobs need costs nothing, which matters to a software renderer.
enum AESDK_OpenGL_Job : std::uint8_t {
  AESDK_OpenGL_Job_Color,         ///< `dataFromAE` (1, 0, 0, 0): the colour pass, nothing dropped
  AESDK_OpenGL_Job_VisibleColor,  ///< (1, 1, 1, 0): without transparent texels
  AESDK_OpenGL_Job_OwnedColor,    ///< (1, 1, 0, 0): without those, and with the ownership test
  AESDK_OpenGL_Job_CoordinateW,   ///< (0, 0, 0, 0): the coordinate pass, horizontal coordinate
  AESDK_OpenGL_Job_CoordinateH,   ///< (0, 0, 0, 0): the coordinate pass, vertical coordinate
};
inline constexpr std::size_t kAESDK_OpenGL_JobCount = 5;

/// The framework's one record. Names and handles are 0 or null while what they name does not exist.
struct AESDK_OpenGL_State {
  /// Start-up has completed; counts only while `renderContext` exists.
  bool started;
  /// 32 characters and a zero.
  std::array<char, 33> className;
  GLuint framebuffer;
  GLuint depthRenderbuffer;
  /// Never created; deleted with the others.
  GLuint spareRenderbuffer;
  GLuint colorTexture;
  /// Size of the render target in pixels; 65535 between global set-up and the first preparation.
  std::uint16_t targetWidth;
  std::uint16_t targetHeight;
  /// The general program, its two shaders, and those of each job, which share the vertex shader.
  GLuint program;
  GLuint vertexShader;
  GLuint fragmentShader;
  std::array<GLuint, kAESDK_OpenGL_JobCount> jobFragmentShaders;
  std::array<GLuint, kAESDK_OpenGL_JobCount> jobPrograms;
  /// All programs have linked.
  bool shadersReady;
  /// The program that was made the one in use last, whose uniforms are set.
  GLuint programInUse;
  HWND window;
  HDC deviceContext;
  HGLRC renderContext;
  /// What was current on the calling thread when the running command began.
  HDC savedDeviceContext;
  HGLRC savedRenderContext;
};

/// The process-wide record, zero at load.
extern AESDK_OpenGL_State gState;

/// The extension entry points, in the order in which start-up fetches them; all 33 are required.
struct AESDK_OpenGL_EntryPoints {
  // Framebuffer.
  PFNGLISRENDERBUFFEREXTPROC glIsRenderbufferEXT;
  PFNGLBINDRENDERBUFFEREXTPROC glBindRenderbufferEXT;
  PFNGLDELETERENDERBUFFERSEXTPROC glDeleteRenderbuffersEXT;
  PFNGLGENRENDERBUFFERSEXTPROC glGenRenderbuffersEXT;
  PFNGLRENDERBUFFERSTORAGEEXTPROC glRenderbufferStorageEXT;
  PFNGLGETRENDERBUFFERPARAMETERIVEXTPROC glGetRenderbufferParameterivEXT;
  PFNGLISFRAMEBUFFEREXTPROC glIsFramebufferEXT;
  PFNGLBINDFRAMEBUFFEREXTPROC glBindFramebufferEXT;
  PFNGLDELETEFRAMEBUFFERSEXTPROC glDeleteFramebuffersEXT;
  PFNGLGENFRAMEBUFFERSEXTPROC glGenFramebuffersEXT;
  PFNGLCHECKFRAMEBUFFERSTATUSEXTPROC glCheckFramebufferStatusEXT;
  PFNGLFRAMEBUFFERTEXTURE1DEXTPROC glFramebufferTexture1DEXT;
  PFNGLFRAMEBUFFERTEXTURE2DEXTPROC glFramebufferTexture2DEXT;
  PFNGLFRAMEBUFFERTEXTURE3DEXTPROC glFramebufferTexture3DEXT;
  PFNGLFRAMEBUFFERRENDERBUFFEREXTPROC glFramebufferRenderbufferEXT;
  PFNGLGETFRAMEBUFFERATTACHMENTPARAMETERIVEXTPROC glGetFramebufferAttachmentParameterivEXT;
  PFNGLGENERATEMIPMAPEXTPROC glGenerateMipmapEXT;
  PFNGLACTIVETEXTUREPROC glActiveTexture;
  // Blend equation.
  PFNGLBLENDEQUATIONSEPARATEEXTPROC glBlendEquationSeparateEXT;
  // Blend function.
  PFNGLBLENDFUNCSEPARATEEXTPROC glBlendFuncSeparateEXT;
  // Shader objects.
  PFNGLCREATEPROGRAMOBJECTARBPROC glCreateProgramObjectARB;
  PFNGLDELETEOBJECTARBPROC glDeleteObjectARB;
  PFNGLUSEPROGRAMOBJECTARBPROC glUseProgramObjectARB;
  PFNGLCREATESHADEROBJECTARBPROC glCreateShaderObjectARB;
  PFNGLSHADERSOURCEARBPROC glShaderSourceARB;
  PFNGLCOMPILESHADERARBPROC glCompileShaderARB;
  PFNGLGETOBJECTPARAMETERIVARBPROC glGetObjectParameterivARB;
  PFNGLATTACHOBJECTARBPROC glAttachObjectARB;
  PFNGLGETINFOLOGARBPROC glGetInfoLogARB;
  PFNGLLINKPROGRAMARBPROC glLinkProgramARB;
  PFNGLGETUNIFORMLOCATIONARBPROC glGetUniformLocationARB;
  PFNGLUNIFORM4FARBPROC glUniform4fARB;
  PFNGLUNIFORM1IARBPROC glUniform1iARB;
};

/// The process-wide table: null at load, filled by start-up, never cleared. After a start-up that
/// failed it holds what was fetched before the failure.
extern AESDK_OpenGL_EntryPoints gEntryPoints;

/// How start-up queries the current context.
struct AESDK_OpenGL_LookUp {
  /// Returns the extension string, or null if no context is current.
  const char* (*extensions)();
  /// Returns the entry point of that name, or null if the context has none.
  PROC (*entryPoint)(const char* name);
};

/// What start-up uses unless it is given another: the current context itself. A test may replace
/// it.
extern AESDK_OpenGL_LookUp gLookUp;

// ---- Context. Order of use over a load: (StartUp ShutDown)*, with
// (SaveCurrentContext MakeCurrent … MakeCurrent) around each command of the host.

/// Creates the hidden window and the rendering context, makes it current on the calling thread and
/// fetches the entry points. Does nothing if that is done and the context still exists. A new
/// context starts without shader objects and texture names. Returns
/// - `AESDK_OpenGL_Err_OSCalls` if the window or a current context could not be had,
/// - `AESDK_OpenGL_Err_Shader` if "GL_ARB_shading_language_100" is missing,
/// - `AESDK_OpenGL_Err_Extensions` if another extension or any entry point is missing;
/// what was created before the failure stays in the state, for shutdown to release.
AESDK_OpenGL_Err AESDK_OpenGL_StartUp(AESDK_OpenGL_State& state,
                                      const AESDK_OpenGL_LookUp& lookUp = gLookUp);

/// Releases all that start-up and shader building made, whatever of it exists; no context is
/// current after the framework's own was deleted. Always returns `AESDK_OpenGL_Err_None`. [context
/// current, if there is one]
AESDK_OpenGL_Err AESDK_OpenGL_ShutDown(AESDK_OpenGL_State& state);

/// Stores in the state what is current on the calling thread, null handles included.
void AESDK_OpenGL_SaveCurrentContext(AESDK_OpenGL_State& state);

/// Makes the pair current on the calling thread; returns what `wglMakeCurrent` does.
BOOL AESDK_OpenGL_MakeCurrent(HDC deviceContext, HGLRC renderContext);

/// Returns true iff the framework is started and its context is current on the calling thread. Only
/// then do names of its objects mean what they say (a context of the host's has textures under the
/// same names), and only then may an entry point be called: their addresses lead straight into the
/// driver, which need not look whether it has a context when the window system refused to make this
/// one current.
bool AESDK_OpenGL_IsCurrent(const AESDK_OpenGL_State& state);

/// Writes `length` alphanumeric characters and a zero. `buffer` has room for `length` + 1.
void AESDK_OpenGL_MakeClassName(char* buffer, std::int32_t length);

/// Returns the first occurrence of `name` in the extension string, also within a longer name;
/// null if there is none.
const char* AESDK_OpenGL_HasExtension(const char* extensions, const char* name);

// ---- Render target. Order of use: (PrepareRenderTarget+ BindRenderTarget* DeleteRenderTarget)*.

/// Makes the render target unless there is one of at least this size in pixels, which grows to what
/// was asked for, at most what the implementation allows. A width of 0 asks for a square of a
/// quarter of the largest render buffer, at most 4096. Leaves the target bound if it made it.
/// Always returns `AESDK_OpenGL_Err_None`, also if it could make none because the framework is not
/// started or its context not current: whether there is a usable target shows when it is bound.
AESDK_OpenGL_Err AESDK_OpenGL_PrepareRenderTarget(AESDK_OpenGL_State& state, std::uint16_t width,
                                                  std::uint16_t height);

/// Deletes the render target; its size stays in the state. Always returns `AESDK_OpenGL_Err_None`.
/// Safe after a start-up that failed. [context current, if there is one]
AESDK_OpenGL_Err AESDK_OpenGL_DeleteRenderTarget(AESDK_OpenGL_State& state);

/// Directs all drawing to the render target. Returns `AESDK_OpenGL_Err_ResourceLoad` if there is
/// none, if it is not complete, or if the framework is not started or its context not current.
AESDK_OpenGL_Err AESDK_OpenGL_BindRenderTarget(const AESDK_OpenGL_State& state);

/// Sets the blend equations; `GL_ADD` means `GL_FUNC_ADD`. Always returns `AESDK_OpenGL_Err_None`.
/// [started]
AESDK_OpenGL_Err AESDK_OpenGL_SetBlendEquation(GLenum rgb, GLenum alpha);

/// Sets the blend factors; `GL_ADD` means `GL_FUNC_ADD`. Always returns `AESDK_OpenGL_Err_None`.
/// [started]
AESDK_OpenGL_Err AESDK_OpenGL_SetBlendFunction(GLenum sourceRgb, GLenum destinationRgb,
                                               GLenum sourceAlpha, GLenum destinationAlpha);

// ---- Shader programs. Order of use: InitShaders ((UseProgram | UseJobProgram) (BindSampler |
// SetUniform4)*)+ UseNoProgram, and again from the first use on.

/// Builds the general program and those of the jobs, once. The paths are accepted and not opened:
/// the sources are built in. Returns `AESDK_OpenGL_Err_Shader` if a source does not compile, a
/// program does not link, or the framework is not started or its context not current when there is
/// something to build.
AESDK_OpenGL_Err AESDK_OpenGL_InitShaders(AESDK_OpenGL_State& state, std::string_view vertexPath,
                                          std::string_view fragmentPath);

/// Makes the general program the one in use. [started]
void AESDK_OpenGL_UseProgram(AESDK_OpenGL_State& state);

/// Makes the program of a job the one in use. [started]
void AESDK_OpenGL_UseJobProgram(AESDK_OpenGL_State& state, AESDK_OpenGL_Job job);

/// Makes the fixed functions the ones in use. [started]
void AESDK_OpenGL_UseNoProgram();

/// Binds a rectangle texture to a texture unit, 0 to 2, and the unit to the sampler of that name in
/// the program in use; for any other unit the texture goes to the unit that is active. Returns
/// `AESDK_OpenGL_Err_Shader`, without a call of OpenGL, for the texture 0xFFFFFFFF.
/// [started, program in use]
AESDK_OpenGL_Err AESDK_OpenGL_BindSampler(const AESDK_OpenGL_State& state, GLuint texture,
                                          const char* name, GLuint unit);

/// Sets the `vec4` of that name in the program in use. Returns `AESDK_OpenGL_Err_Shader`, without a
/// call of OpenGL, if `x` is exactly -1. [started, program in use]
AESDK_OpenGL_Err AESDK_OpenGL_SetUniform4(const AESDK_OpenGL_State& state, GLfloat x, GLfloat y,
                                          GLfloat z, GLfloat w, const char* name);

/// As `AESDK_OpenGL_SetUniform4`, for any `x`. Always returns `AESDK_OpenGL_Err_None`.
/// [started, program in use]
AESDK_OpenGL_Err AESDK_OpenGL_SetUniform4Unchecked(const AESDK_OpenGL_State& state, GLfloat x,
                                                   GLfloat y, GLfloat z, GLfloat w,
                                                   const char* name);

// ---- Texts.

/// Returns the text of a code, which may be any 32-bit value. No text contains a percent sign: it
/// may be passed where the host expects a format. Static, zero-terminated; nothing is allocated, so
/// that a failure for want of memory can be reported.
const char* AESDK_OpenGL_ErrorText(AESDK_OpenGL_Err code);

/// Returns "OK" if the framebuffer that is bound in the current context is complete, else what it
/// lacks. As the texts of codes, static and without a percent sign. [started]
const char* AESDK_OpenGL_FramebufferStatusText();

}  // namespace AESDK_OpenGL
