#include "tests/support/render_target.h"

#include "gl/framework.h"

namespace support {

using namespace AESDK_OpenGL;  // NOLINT(google-build-using-namespace): its operations, by name

void ResizeRenderTarget(std::uint16_t width, std::uint16_t height) {
  AESDK_OpenGL_SaveCurrentContext(gState);
  AESDK_OpenGL_MakeCurrent(gState.deviceContext, gState.renderContext);
  AESDK_OpenGL_DeleteRenderTarget(gState);
  gState.targetWidth = 0;  // preparing never makes it smaller
  gState.targetHeight = 0;
  AESDK_OpenGL_PrepareRenderTarget(gState, width, height);
  AESDK_OpenGL_MakeCurrent(gState.savedDeviceContext, gState.savedRenderContext);
}

}  // namespace support
