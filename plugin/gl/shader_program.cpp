#include <array>

#include "plugin/gl/fault_guard.h"
#include "plugin/gl/framework.h"
#include "plugin/gl/shader_sources.h"

namespace AESDK_OpenGL {

namespace {

constexpr GLuint kNoTexture = 0xFFFFFFFF;
constexpr GLfloat kNoValue = -1.0F;
constexpr GLuint kTextureUnits = 3;
constexpr GLsizei kLogCharacters = 4096;

bool Succeeded(GLhandleARB object, GLenum status) {
  GLint result = 0;
  gEntryPoints.glGetObjectParameterivARB(object, status, &result);
  return result != 0;
}

// For a debugger; the log is not shown to users.
void ReadLog(GLhandleARB object) {
  std::array<GLcharARB, kLogCharacters> log{};
  gEntryPoints.glGetInfoLogARB(object, kLogCharacters, nullptr, log.data());
}

/// Compiles the texts, joined, as one shader.
template <std::size_t count>
void BuildShader(GLenum type, std::array<const char*, count> texts, GLuint& shader) {
  shader = gEntryPoints.glCreateShaderObjectARB(type);
  gEntryPoints.glShaderSourceARB(shader, count, texts.data(), nullptr);
  gEntryPoints.glCompileShaderARB(shader);
  if (Succeeded(shader, GL_OBJECT_COMPILE_STATUS_ARB)) {
    return;
  }
  ReadLog(shader);
  throw AESDK_OpenGL_Fault(AESDK_OpenGL_Err_Shader);
}

/// Compiles what one job does and links it with the vertex shader.
void BuildProgram(GLuint vertexShader, const char* head, GLuint& fragmentShader, GLuint& program) {
  BuildShader<2>(GL_FRAGMENT_SHADER_ARB, {head, kFragmentSource}, fragmentShader);
  program = gEntryPoints.glCreateProgramObjectARB();
  gEntryPoints.glAttachObjectARB(program, vertexShader);
  gEntryPoints.glAttachObjectARB(program, fragmentShader);
  gEntryPoints.glLinkProgramARB(program);
  Require(Succeeded(program, GL_OBJECT_LINK_STATUS_ARB), AESDK_OpenGL_Err_Shader);
}

void Use(AESDK_OpenGL_State& state, GLuint program) {
  gEntryPoints.glUseProgramObjectARB(program);
  state.programInUse = program;
}

GLint UniformLocation(const AESDK_OpenGL_State& state, const char* name) {
  return gEntryPoints.glGetUniformLocationARB(state.programInUse, name);
}

}  // namespace

AESDK_OpenGL_Err AESDK_OpenGL_InitShaders(AESDK_OpenGL_State& state,
                                          std::string_view /*vertexPath*/,
                                          std::string_view /*fragmentPath*/) {
  if (state.shadersReady) {
    return AESDK_OpenGL_Err_None;
  }
  return ResultOf([&] {
    Require(AESDK_OpenGL_IsCurrent(state), AESDK_OpenGL_Err_Shader);
    BuildShader<1>(GL_VERTEX_SHADER_ARB, {kVertexSource}, state.vertexShader);
    BuildProgram(state.vertexShader, kGeneralHead, state.fragmentShader, state.program);
    for (std::size_t job = 0; job < kAESDK_OpenGL_JobCount; ++job) {
      BuildProgram(state.vertexShader, kJobHeads[job], state.jobFragmentShaders[job],
                   state.jobPrograms[job]);
    }
    state.shadersReady = true;
  });
}

void AESDK_OpenGL_UseProgram(AESDK_OpenGL_State& state) { Use(state, state.program); }

void AESDK_OpenGL_UseJobProgram(AESDK_OpenGL_State& state, AESDK_OpenGL_Job job) {
  Use(state, state.jobPrograms[job]);
}

void AESDK_OpenGL_UseNoProgram() { gEntryPoints.glUseProgramObjectARB(0); }

AESDK_OpenGL_Err AESDK_OpenGL_BindSampler(const AESDK_OpenGL_State& state, GLuint texture,
                                          const char* name, GLuint unit) {
  if (texture == kNoTexture) {
    return AESDK_OpenGL_Err_Shader;
  }
  if (unit < kTextureUnits) {
    gEntryPoints.glActiveTexture(GL_TEXTURE0 + unit);
  }
  glBindTexture(GL_TEXTURE_RECTANGLE_ARB, texture);
  gEntryPoints.glUniform1iARB(UniformLocation(state, name), static_cast<GLint>(unit));
  return AESDK_OpenGL_Err_None;
}

AESDK_OpenGL_Err AESDK_OpenGL_SetUniform4(const AESDK_OpenGL_State& state, GLfloat x, GLfloat y,
                                          GLfloat z, GLfloat w, const char* name) {
  if (x == kNoValue) {
    return AESDK_OpenGL_Err_Shader;
  }
  return AESDK_OpenGL_SetUniform4Unchecked(state, x, y, z, w, name);
}

AESDK_OpenGL_Err AESDK_OpenGL_SetUniform4Unchecked(const AESDK_OpenGL_State& state, GLfloat x,
                                                   GLfloat y, GLfloat z, GLfloat w,
                                                   const char* name) {
  gEntryPoints.glUniform4fARB(UniformLocation(state, name), x, y, z, w);
  return AESDK_OpenGL_Err_None;
}

}  // namespace AESDK_OpenGL
