#include <limits>

#include "tests/gl/framework_fixture.h"

namespace AESDK_OpenGL {
namespace {

TEST(ErrorText, OfAnyNumberIsFitForAFormat) {
  for (const std::int32_t unknown : {-1, 8, std::numeric_limits<std::int32_t>::min()}) {
    EXPECT_STREQ(AESDK_OpenGL_ErrorText(AESDK_OpenGL_Err(unknown)), "Unknown Error Code!");
  }
  for (std::int32_t known = 0; known < 8; ++known) {
    const std::string text = AESDK_OpenGL_ErrorText(AESDK_OpenGL_Err(known));
    EXPECT_NE(text, "Unknown Error Code!");
    EXPECT_EQ(text.find('%'), std::string::npos);
  }
}

GLenum gStatus = 0;

TEST(FramebufferStatusText, KnowsNoStatusBetweenTheNamedOnes) {
  gEntryPoints.glCheckFramebufferStatusEXT = [](GLenum) { return gStatus; };
  for (const GLenum status : {0U, 0x8CD4U, 0x8CD8U, 0x8CDEU}) {
    gStatus = status;
    EXPECT_STREQ(AESDK_OpenGL_FramebufferStatusText(), "Unknown error!") << status;
  }
  gStatus = 0x8CD9;
  EXPECT_STREQ(AESDK_OpenGL_FramebufferStatusText(),
               "Framebuffer incomplete, attached images must have same dimensions!");
  gEntryPoints = {};
}

}  // namespace
}  // namespace AESDK_OpenGL
