#include "plugin/gl/framework.h"

namespace AESDK_OpenGL {

const char* AESDK_OpenGL_ErrorText(AESDK_OpenGL_Err code) {
  switch (code) {
    case AESDK_OpenGL_Err_None:
      return "OK";
    case AESDK_OpenGL_Err_OSCalls:
      return "OS specific calls failed!";
    case AESDK_OpenGL_Err_OSUnload:
      return "OS specific unloading error!";
    case AESDK_OpenGL_Err_ResourceLoad:
      return "OpenGL resources failed to load!";
    case AESDK_OpenGL_Err_ResourceUnload:
      return "OpenGL resources failed to un-load!";
    case AESDK_OpenGL_Err_Extensions:
      return "Appropriate OpenGL extensions not found!";
    case AESDK_OpenGL_Err_Shader:
      return "Shader Error!";
    case AESDK_OpenGL_Err_Unknown:
      return "Unknown AESDK_OpenGL error!";
  }
  return "Unknown Error Code!";
}

const char* AESDK_OpenGL_FramebufferStatusText() {
  switch (gEntryPoints.glCheckFramebufferStatusEXT(GL_FRAMEBUFFER_EXT)) {
    case GL_FRAMEBUFFER_COMPLETE_EXT:
      return "OK";
    case GL_FRAMEBUFFER_INCOMPLETE_ATTACHMENT_EXT:
      return "Framebuffer incomplete, incomplete attachment!";
    case GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT_EXT:
      return "Framebuffer incomplete, missing attachment!";
    case GL_FRAMEBUFFER_INCOMPLETE_DIMENSIONS_EXT:
      return "Framebuffer incomplete, attached images must have same dimensions!";
    case GL_FRAMEBUFFER_INCOMPLETE_FORMATS_EXT:
      return "Framebuffer incomplete, attached images must have same format!";
    case GL_FRAMEBUFFER_INCOMPLETE_DRAW_BUFFER_EXT:
      return "Framebuffer incomplete, missing draw buffer!";
    case GL_FRAMEBUFFER_INCOMPLETE_READ_BUFFER_EXT:
      return "Framebuffer incomplete, missing read buffer!";
    case GL_FRAMEBUFFER_UNSUPPORTED_EXT:
      return "Unsupported framebuffer format!";
    default:
      return "Unknown error!";
  }
}

}  // namespace AESDK_OpenGL
