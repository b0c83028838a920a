#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "tests/gl/framework_fixture.h"

namespace AESDK_OpenGL {
namespace {

using Texel = std::array<GLfloat, 4>;   // Red, green, blue, alpha.
using Pixel = std::array<GLubyte, 4>;   // The same, as read back.
using Values = std::array<GLfloat, 4>;  // dataFromAE.

constexpr Pixel kUntouched = {10, 20, 30, 40};
constexpr Texel kOpaque = {1, 1, 1, 1};
constexpr GLfloat kTolerance = 1.0F / 524288.0F;

// What a piece hands to the shader, the same at all its corners.
struct Piece {
  GLfloat s = 0.5F;
  GLfloat t = 0.5F;
  std::array<GLfloat, 3> normal = {1, 1, 0};
  Texel color = {1, 1, 1, 1};
};

constexpr Values kCoordinates = {0, 0, 0, 0};
constexpr Values kPlainColors = {1, 0, 0, 0};
constexpr Values kOwnedColors = {1, 1, 0, 0};
constexpr Values kVisibleColors = {1, 1, 1, 0};

/// What a job's program has as constants; the third component of the normal counts in coordinate
/// passes alone.
struct Job {
  AESDK_OpenGL_Job job;
  Values values;
  GLfloat third = 0;
};
constexpr std::array<Job, 5> kJobs{{{AESDK_OpenGL_Job_Color, kPlainColors},
                                    {AESDK_OpenGL_Job_VisibleColor, kVisibleColors},
                                    {AESDK_OpenGL_Job_OwnedColor, kOwnedColors},
                                    {AESDK_OpenGL_Job_CoordinateW, kCoordinates, 0},
                                    {AESDK_OpenGL_Job_CoordinateH, kCoordinates, 1}}};

// Draws pieces over two pixels, with an image and maps of floats, so that a threshold can be hit to
// the last bit.
class ShaderPass : public StartedFramework {
 protected:
  void SetUp() override {
    StartedFramework::SetUp();
    AESDK_OpenGL_PrepareRenderTarget(gState, 2, 1);
    ASSERT_EQ(AESDK_OpenGL_BindRenderTarget(gState), AESDK_OpenGL_Err_None);
    glViewport(0, 0, 2, 1);
    glDisable(GL_DEPTH_TEST);
    AESDK_OpenGL_UseProgram(gState);
    SetTexture("videoTexture", 0, {kOpaque});
    SetTexture("coordTextureW", 1, {{}, {}});
    SetTexture("coordTextureH", 2, {{}, {}});
  }

  void TearDown() override {
    glDeleteTextures(static_cast<GLsizei>(textures_.size()), textures_.data());
    StartedFramework::TearDown();
  }

  void SetSamplers() {
    for (const GLuint unit : {0U, 1U, 2U}) {
      constexpr std::array kNames{"videoTexture", "coordTextureW", "coordTextureH"};
      AESDK_OpenGL_BindSampler(gState, textures_[unit], kNames[unit], unit);
    }
  }

  void SetTexture(const char* name, GLuint unit, const std::vector<Texel>& row) {
    GLuint& texture = textures_.at(unit);
    if (texture == 0) {
      glGenTextures(1, &texture);
    }
    EXPECT_EQ(AESDK_OpenGL_BindSampler(gState, texture, name, unit), AESDK_OpenGL_Err_None);
    glTexImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, GL_RGBA32F_ARB, static_cast<GLsizei>(row.size()), 1,
                 0, GL_RGBA, GL_FLOAT, row.data());
    glTexParameteri(GL_TEXTURE_RECTANGLE_ARB, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_RECTANGLE_ARB, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
  }

  /// By the general program, and the same by that of the job, if there is one.
  std::array<Pixel, 2> Draw(const Values& values, const Piece& piece) {
    AESDK_OpenGL_UseProgram(gState);
    AESDK_OpenGL_SetUniform4(gState, values[0], values[1], values[2], values[3], "dataFromAE");
    const std::array<Pixel, 2> pixels = DrawWithProgramInUse(piece);
    for (const Job& job : kJobs) {
      const bool isIts =
          values == job.values && (values[0] == 1.0F || piece.normal[2] == job.third);
      if (isIts) {
        AESDK_OpenGL_UseJobProgram(gState, job.job);
        SetSamplers();
        EXPECT_EQ(DrawWithProgramInUse(piece), pixels) << "job " << job.job;
      }
    }
    AESDK_OpenGL_UseProgram(gState);
    return pixels;
  }

  static std::array<Pixel, 2> DrawWithProgramInUse(const Piece& piece) {
    glClearColor(10 / 255.0F, 20 / 255.0F, 30 / 255.0F, 40 / 255.0F);
    glClear(GL_COLOR_BUFFER_BIT);
    glColor4fv(piece.color.data());
    glNormal3fv(piece.normal.data());
    glTexCoord2f(piece.s, piece.t);
    glRectf(-1, -1, 1, 1);
    std::array<Pixel, 2> pixels = {};
    glReadPixels(0, 0, 2, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
    return pixels;
  }

  Pixel First(const Values& values, const Piece& piece = {}) { return Draw(values, piece)[0]; }

  std::array<GLuint, 3> textures_ = {};
};

TEST_F(ShaderPass, CoordinatesArePackedIntoThreeDigitsToTheBase255) {
  // 0.25 × 255 = 63.75; 0.75 × 255 = 191.25; 0.25 × 255 = 63.75: the digits 63, 191, 63.
  // 0.5 × 255 = 127.5, and so on: 127 three times. Of 1 only the fraction is kept.
  const Pixel quarter = {63, 191, 63, 255};
  const Pixel half = {127, 127, 127, 255};
  const Pixel zero = {0, 0, 0, 255};
  // The second coordinate is written for any third component of the normal but 0.
  EXPECT_EQ(First(kCoordinates, {0.5F, 0.5F, {2, 1, 0}}), quarter);
  EXPECT_EQ(First(kCoordinates, {0.5F, 0.5F, {2, 1, 0.25F}}), half);
  EXPECT_EQ(First(kCoordinates, {1.0F, 0.5F, {1, 1, 0}}), zero);
  // Any first value but 1 selects this pass.
  EXPECT_EQ(First({0.999F, 1, 1, 0}, {0.5F, 0.5F, {1, 1, 0}}), half);
}

TEST_F(ShaderPass, CoordinatesAreWrittenFromHalfOpaqueTexelsOn) {
  SetTexture("videoTexture", 0, {{0, 0, 0, 0.5F}});
  EXPECT_NE(First(kCoordinates), kUntouched);
  SetTexture("videoTexture", 0, {{1, 1, 1, std::nextafter(0.5F, 0.0F)}});
  EXPECT_EQ(First(kCoordinates), kUntouched);
}

TEST_F(ShaderPass, ColorsArePremultipliedAfterTheOpacity) {
  SetTexture("videoTexture", 0, {{1.0F, 0.5F, 0.2F, 0.8F}});
  const Piece piece = {.color = {1, 1, 1, 0.5F}};
  // Alpha 0.8 × 0.5 = 0.4, which multiplies the colours: 0.4, 0.2, 0.08.
  EXPECT_EQ(First(kPlainColors, piece), (Pixel{102, 51, 20, 102}));
}

TEST_F(ShaderPass, TransparentTexelsAreDroppedOnlyOnDemand) {
  SetTexture("videoTexture", 0, {{1, 1, 1, 0}});
  EXPECT_EQ(First(kPlainColors), (Pixel{0, 0, 0, 0}));
  EXPECT_EQ(First(kVisibleColors), kUntouched);
  EXPECT_EQ(First(kOwnedColors), kUntouched);
  SetTexture("videoTexture", 0, {{1, 1, 1, 1e-6F}});
  EXPECT_NE(First(kVisibleColors), kUntouched);
}

TEST_F(ShaderPass, AFragmentIsKeptWithinTheToleranceOfBothMaps) {
  const Texel ownedX = {0, 0, 0.25F, 1};        // One digit alone: 0.25.
  const Texel ownedY = {0, 127.5F, 0, 0.001F};  // The second digit: 127.5 / 255 = 0.5.
  SetTexture("coordTextureW", 1, {ownedX, ownedX});
  SetTexture("coordTextureH", 2, {ownedY, ownedY});
  struct Case {
    GLfloat x;
    GLfloat y;
    bool kept;
  };
  const Case cases[] = {{0.25F, 0.5F, true},
                        {0.25F + kTolerance, 0.5F, true},
                        {0.25F - kTolerance, 0.5F, true},
                        {0.25F + 1.25F * kTolerance, 0.5F, false},
                        {0.25F - 1.25F * kTolerance, 0.5F, false},
                        {0.25F, 0.5F + 0.75F * kTolerance, true},
                        {0.25F, 0.5F + 1.25F * kTolerance, false}};
  for (const auto& [x, y, kept] : cases) {
    const Piece piece = {.s = x * 16, .t = y * 8, .normal = {16, 8, 0}};
    EXPECT_EQ(First(kOwnedColors, piece) != kUntouched, kept) << x << ", " << y;
    EXPECT_NE(First(kVisibleColors, piece), kUntouched) << "no test is made";
    EXPECT_NE(First(kPlainColors, piece), kUntouched) << "no test is made";
  }
}

TEST_F(ShaderPass, MapsAreReadWhereTheFragmentIsAndCountWhereBothAreFilled) {
  const Texel own = {0, 0, 0.5F, 1};
  const Texel others = {0, 0, 0.75F, 1};
  const Texel empty = {0, 0, 0.75F, 0};
  struct Case {
    std::vector<Texel> w;
    std::vector<Texel> h;
    std::array<bool, 2> kept;
  };
  const Case cases[] = {{{own, others}, {own, own}, {true, false}},
                        {{own, own}, {others, own}, {false, true}},
                        {{empty, others}, {own, own}, {true, false}},
                        {{others, others}, {own, empty}, {false, true}}};
  for (const auto& [w, h, kept] : cases) {
    SetTexture("coordTextureW", 1, w);
    SetTexture("coordTextureH", 2, h);
    const auto pixels = Draw(kOwnedColors, {});
    EXPECT_EQ(pixels[0] != kUntouched, kept[0]);
    EXPECT_EQ(pixels[1] != kUntouched, kept[1]);
  }
}

TEST_F(ShaderPass, WhatTheCoordinatePassPacksTheColorPassUnpacks) {
  for (const GLfloat value : {0.0F, 1.0F / 3, 0.1F, 0.123456F, 0.5F, 0.75F, 0.996F}) {
    const Pixel packed = First(kCoordinates, {.s = value});
    Texel map = {};
    std::ranges::transform(packed, map.begin(),
                           [](GLubyte byte) { return static_cast<GLfloat>(byte) / 255.0F; });
    SetTexture("coordTextureW", 1, {map});
    SetTexture("coordTextureH", 2, {map});
    EXPECT_NE(First(kOwnedColors, {value, value}), kUntouched) << value;
    EXPECT_EQ(First(kOwnedColors, {value + 3 * kTolerance, value}), kUntouched) << value;
  }
}

}  // namespace
}  // namespace AESDK_OpenGL
