#include "plugin/gl/entry_points.h"

#include <cstdint>
#include <cstring>
#include <type_traits>

#include "plugin/gl/fault_guard.h"

namespace AESDK_OpenGL {

AESDK_OpenGL_EntryPoints gEntryPoints;

namespace {

const char* CurrentExtensions() {
  const GLubyte* const extensions = glGetString(GL_EXTENSIONS);
  return reinterpret_cast<const char*>(extensions);
}

PROC CurrentEntryPoint(const char* name) { return wglGetProcAddress(name); }

enum class Group { kFramebuffer, kBlendEquation, kBlendFunction, kShaderObjects };

// One row of the table: fetching sets the member of `gEntryPoints` and returns true iff it is
// there.
struct EntryPoint {
  const char* name;
  Group group;
  bool (*store)(PROC address);
};

// Some drivers say 1, 2, 3 or -1 for "none".
bool IsFunction(PROC address) {
  const auto value = reinterpret_cast<std::intptr_t>(address);
  return value < -1 || value > 3;
}

template <auto member>
bool Store(PROC address) {
  auto& entryPoint = gEntryPoints.*member;
  using Pointer = std::remove_reference_t<decltype(entryPoint)>;
  entryPoint = IsFunction(address)
                   ? reinterpret_cast<Pointer>(reinterpret_cast<void (*)()>(address))
                   : nullptr;
  return entryPoint != nullptr;
}

using Table = AESDK_OpenGL_EntryPoints;
using enum Group;

constexpr EntryPoint kEntryPoints[] = {
    {"glIsRenderbufferEXT", kFramebuffer, Store<&Table::glIsRenderbufferEXT>},
    {"glBindRenderbufferEXT", kFramebuffer, Store<&Table::glBindRenderbufferEXT>},
    {"glDeleteRenderbuffersEXT", kFramebuffer, Store<&Table::glDeleteRenderbuffersEXT>},
    {"glGenRenderbuffersEXT", kFramebuffer, Store<&Table::glGenRenderbuffersEXT>},
    {"glRenderbufferStorageEXT", kFramebuffer, Store<&Table::glRenderbufferStorageEXT>},
    {"glGetRenderbufferParameterivEXT", kFramebuffer,
     Store<&Table::glGetRenderbufferParameterivEXT>},
    {"glIsFramebufferEXT", kFramebuffer, Store<&Table::glIsFramebufferEXT>},
    {"glBindFramebufferEXT", kFramebuffer, Store<&Table::glBindFramebufferEXT>},
    {"glDeleteFramebuffersEXT", kFramebuffer, Store<&Table::glDeleteFramebuffersEXT>},
    {"glGenFramebuffersEXT", kFramebuffer, Store<&Table::glGenFramebuffersEXT>},
    {"glCheckFramebufferStatusEXT", kFramebuffer, Store<&Table::glCheckFramebufferStatusEXT>},
    {"glFramebufferTexture1DEXT", kFramebuffer, Store<&Table::glFramebufferTexture1DEXT>},
    {"glFramebufferTexture2DEXT", kFramebuffer, Store<&Table::glFramebufferTexture2DEXT>},
    {"glFramebufferTexture3DEXT", kFramebuffer, Store<&Table::glFramebufferTexture3DEXT>},
    {"glFramebufferRenderbufferEXT", kFramebuffer, Store<&Table::glFramebufferRenderbufferEXT>},
    {"glGetFramebufferAttachmentParameterivEXT", kFramebuffer,
     Store<&Table::glGetFramebufferAttachmentParameterivEXT>},
    {"glGenerateMipmapEXT", kFramebuffer, Store<&Table::glGenerateMipmapEXT>},
    {"glActiveTexture", kFramebuffer, Store<&Table::glActiveTexture>},
    {"glBlendEquationSeparateEXT", kBlendEquation, Store<&Table::glBlendEquationSeparateEXT>},
    {"glBlendFuncSeparateEXT", kBlendFunction, Store<&Table::glBlendFuncSeparateEXT>},
    {"glCreateProgramObjectARB", kShaderObjects, Store<&Table::glCreateProgramObjectARB>},
    {"glDeleteObjectARB", kShaderObjects, Store<&Table::glDeleteObjectARB>},
    {"glUseProgramObjectARB", kShaderObjects, Store<&Table::glUseProgramObjectARB>},
    {"glCreateShaderObjectARB", kShaderObjects, Store<&Table::glCreateShaderObjectARB>},
    {"glShaderSourceARB", kShaderObjects, Store<&Table::glShaderSourceARB>},
    {"glCompileShaderARB", kShaderObjects, Store<&Table::glCompileShaderARB>},
    {"glGetObjectParameterivARB", kShaderObjects, Store<&Table::glGetObjectParameterivARB>},
    {"glAttachObjectARB", kShaderObjects, Store<&Table::glAttachObjectARB>},
    {"glGetInfoLogARB", kShaderObjects, Store<&Table::glGetInfoLogARB>},
    {"glLinkProgramARB", kShaderObjects, Store<&Table::glLinkProgramARB>},
    {"glGetUniformLocationARB", kShaderObjects, Store<&Table::glGetUniformLocationARB>},
    {"glUniform4fARB", kShaderObjects, Store<&Table::glUniform4fARB>},
    {"glUniform1iARB", kShaderObjects, Store<&Table::glUniform1iARB>},
};

const char* Extensions(const AESDK_OpenGL_LookUp& lookUp) {
  const char* const extensions = lookUp.extensions();
  // No context is current: its window, pixel format or context could not be had.
  Require(extensions != nullptr, AESDK_OpenGL_Err_OSCalls);
  return extensions;
}

void RequireExtension(const char* extensions, const char* name, AESDK_OpenGL_Err otherwise) {
  Require(AESDK_OpenGL_HasExtension(extensions, name) != nullptr, otherwise);
}

// Fetches the whole group before a missing member of it counts.
void Fetch(Group group, const AESDK_OpenGL_LookUp& lookUp) {
  bool complete = true;
  for (const EntryPoint& entryPoint : kEntryPoints) {
    if (entryPoint.group != group) {
      continue;
    }
    if (!entryPoint.store(lookUp.entryPoint(entryPoint.name))) {
      complete = false;
    }
  }
  Require(complete, AESDK_OpenGL_Err_Extensions);
}

}  // namespace

AESDK_OpenGL_LookUp gLookUp = {CurrentExtensions, CurrentEntryPoint};

const char* AESDK_OpenGL_HasExtension(const char* extensions, const char* name) {
  return std::strstr(extensions, name);
}

void LoadEntryPoints(const AESDK_OpenGL_LookUp& lookUp) {
  const char* extensions = Extensions(lookUp);
  RequireExtension(extensions, "EXT_framebuffer_object", AESDK_OpenGL_Err_Extensions);
  Fetch(kFramebuffer, lookUp);

  extensions = Extensions(lookUp);
  RequireExtension(extensions, "GL_EXT_blend_equation_separate", AESDK_OpenGL_Err_Extensions);
  Fetch(kBlendEquation, lookUp);
  RequireExtension(extensions, "GL_EXT_blend_func_separate", AESDK_OpenGL_Err_Extensions);
  Fetch(kBlendFunction, lookUp);

  extensions = Extensions(lookUp);
  RequireExtension(extensions, "GL_ARB_shading_language_100", AESDK_OpenGL_Err_Shader);
  RequireExtension(extensions, "GL_ARB_shader_objects", AESDK_OpenGL_Err_Extensions);
  Fetch(kShaderObjects, lookUp);
}

}  // namespace AESDK_OpenGL
