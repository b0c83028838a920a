#include <array>
#include <cmath>
#include <limits>

#include "tests/gl/framework_fixture.h"

namespace AESDK_OpenGL {
namespace {

class ShaderProgram : public StartedFramework {
 protected:
  void SetUp() override {
    StartedFramework::SetUp();
    AESDK_OpenGL_UseProgram(gState);
  }

  // What the program holds, by an entry point that the framework does without.
  static GLfloat FirstValueOf(const char* uniform) {
    const auto getUniform = reinterpret_cast<PFNGLGETUNIFORMFVARBPROC>(
        reinterpret_cast<void (*)()>(wglGetProcAddress("glGetUniformfvARB")));
    std::array<GLfloat, 4> values = {};
    getUniform(gState.program, gEntryPoints.glGetUniformLocationARB(gState.program, uniform),
               values.data());
    return values[0];
  }

  static GLuint Get(GLenum name) {
    GLint value = 0;
    glGetIntegerv(name, &value);
    return static_cast<GLuint>(value);
  }
};

TEST_F(ShaderProgram, IsRefusedUntilItCompilesAndLinksAndIsBuiltOnce) {
  const AESDK_OpenGL_EntryPoints working = gEntryPoints;
  gState.shadersReady = false;
  gEntryPoints.glCompileShaderARB = [](GLhandleARB) {};
  EXPECT_EQ(AESDK_OpenGL_InitShaders(gState, "", ""), AESDK_OpenGL_Err_Shader);

  gEntryPoints = working;
  gEntryPoints.glLinkProgramARB = [](GLhandleARB) {};
  EXPECT_EQ(AESDK_OpenGL_InitShaders(gState, "", ""), AESDK_OpenGL_Err_Shader);

  gEntryPoints = working;
  EXPECT_FALSE(gState.shadersReady);
  EXPECT_EQ(AESDK_OpenGL_InitShaders(gState, "", ""), AESDK_OpenGL_Err_None);
  const GLuint program = gState.program;
  EXPECT_EQ(AESDK_OpenGL_InitShaders(gState, "/nowhere/a.vert", ""), AESDK_OpenGL_Err_None);
  EXPECT_EQ(gState.program, program);
}

TEST_F(ShaderProgram, RefusesAVectorThatBeginsWithMinusOne) {
  const auto set = [](GLfloat x) {
    return AESDK_OpenGL_SetUniform4(gState, x, 0, 0, 0, "dataFromAE");
  };
  EXPECT_EQ(set(3), AESDK_OpenGL_Err_None);
  EXPECT_EQ(set(-1), AESDK_OpenGL_Err_Shader);
  EXPECT_EQ(FirstValueOf("dataFromAE"), 3.0F);
  EXPECT_EQ(set(-0.999F), AESDK_OpenGL_Err_None);
  EXPECT_EQ(FirstValueOf("dataFromAE"), -0.999F);
  EXPECT_EQ(set(std::numeric_limits<GLfloat>::quiet_NaN()), AESDK_OpenGL_Err_None);
  EXPECT_TRUE(std::isnan(FirstValueOf("dataFromAE")));
  AESDK_OpenGL_SetUniform4Unchecked(gState, -1, 0, 0, 0, "dataFromAE");
  EXPECT_EQ(FirstValueOf("dataFromAE"), -1.0F);
  EXPECT_EQ(AESDK_OpenGL_SetUniform4(gState, 1, 0, 0, 0, "noSuchName"), AESDK_OpenGL_Err_None);
}

TEST_F(ShaderProgram, BindsSamplersToTheFirstThreeUnitsOnly) {
  GLuint texture = 0;
  glGenTextures(1, &texture);
  EXPECT_EQ(AESDK_OpenGL_BindSampler(gState, texture, "coordTextureH", 1), AESDK_OpenGL_Err_None);
  EXPECT_EQ(Get(GL_ACTIVE_TEXTURE), GLuint{GL_TEXTURE1});
  EXPECT_EQ(FirstValueOf("coordTextureH"), 1.0F);
  // On any other unit the texture goes to the active one, the number to the sampler.
  EXPECT_EQ(AESDK_OpenGL_BindSampler(gState, texture, "videoTexture", 3), AESDK_OpenGL_Err_None);
  EXPECT_EQ(AESDK_OpenGL_BindSampler(gState, 0xFFFFFFFF, "videoTexture", 0),
            AESDK_OpenGL_Err_Shader);
  EXPECT_EQ(Get(GL_ACTIVE_TEXTURE), GLuint{GL_TEXTURE1});
  EXPECT_EQ(Get(GL_TEXTURE_BINDING_RECTANGLE_ARB), texture);
  EXPECT_EQ(FirstValueOf("videoTexture"), 3.0F);
  glDeleteTextures(1, &texture);
}

}  // namespace
}  // namespace AESDK_OpenGL
