#include "tests/support/render_target.h"

#include "plugin/gl/framework.h"

namespace check {

using namespace AESDK_OpenGL;  // NOLINT(google-build-using-namespace): its operations, by name

namespace {

template <class Work>
void WithOwnContext(Work work) {
  AESDK_OpenGL_SaveCurrentContext(gState);
  AESDK_OpenGL_MakeCurrent(gState.deviceContext, gState.renderContext);
  work();
  AESDK_OpenGL_MakeCurrent(gState.savedDeviceContext, gState.savedRenderContext);
}

}  // namespace

void ResizeRenderTarget(std::uint16_t width, std::uint16_t height) {
  WithOwnContext([&] {
    AESDK_OpenGL_DeleteRenderTarget(gState);
    gState.targetWidth = 0;  // preparing never makes it smaller
    gState.targetHeight = 0;
    AESDK_OpenGL_PrepareRenderTarget(gState, width, height);
  });
}

void FillRenderTarget() {
  WithOwnContext([] {
    AESDK_OpenGL_BindRenderTarget(gState);
    glDisable(GL_SCISSOR_TEST);
    glClearColor(0.2F, 0.8F, 0.4F, 1.0F);
    glClear(GL_COLOR_BUFFER_BIT);
  });
}

}  // namespace check
