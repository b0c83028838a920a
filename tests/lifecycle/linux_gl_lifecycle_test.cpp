// Lifecycle scenarios in which OpenGL or the window system fails. The linker redirects three OpenGL
// functions to this file (CMakeLists.txt), so that their results can be chosen.

#include <algorithm>
#include <cstdint>
#include <functional>
#include <iostream>
#include <string>
#include <string_view>
#include <utility>

#include <window_system.h>

#include "base/image/compare.h"
#include "check/support/lifecycle_scenario.h"
#include "check/support/pieces.h"
#include "check/support/rig.h"
#include "platform/linux/window_system_faults.h"
#include "plugin/gl/framework.h"
#include "tests/support/render_target.h"

namespace {

/// Makes one call of an operation fail, chosen by its number.
class SingleFailure {
 public:
  /// The call after `before` others will fail.
  void Plan(int before) {
    left_ = before;
    happened_ = false;
  }
  void Clear() { left_ = -1; }
  [[nodiscard]] bool Happened() const { return happened_; }

  /// Counts a call; true iff it is the one that fails.
  bool FailsNow() {
    if (left_ < 0) {
      return false;
    }
    happened_ = left_-- == 0;
    return happened_;
  }

 private:
  int left_ = -1;
  bool happened_ = false;
};

SingleFailure gMakeCurrent;   ///< of the plug-in's context: no context is current then
SingleFailure gCompleteness;  ///< the framebuffer is reported as unsupported

/// Textures were deleted while no context was current.
bool gDeletedWithoutContext = false;

/// The largest render buffer that OpenGL claims to have, in pixels a side; 0 is the true one.
GLint gLargest = 0;
/// The largest viewport that OpenGL claims to have, in pixels a side; 0 is the true one.
GLint gLargestViewport = 0;
/// How many more textures get memory; below 0 all of them.
int gTexturesLeft = -1;

}  // namespace

extern "C" {

// NOLINTBEGIN(bugprone-reserved-identifier): the linker's names
void __real_glGetIntegerv(GLenum name, GLint* values);
void __real_glTexImage2D(GLenum target, GLint level, GLint format, GLsizei width, GLsizei height,
                         GLint border, GLenum pixelFormat, GLenum type, const void* pixels);

[[gnu::visibility("default")]] void __wrap_glGetIntegerv(GLenum name, GLint* values);
void __wrap_glGetIntegerv(GLenum name, GLint* values) {
  __real_glGetIntegerv(name, values);
  if (name == GL_MAX_RENDERBUFFER_SIZE_EXT && gLargest != 0) {
    *values = gLargest;
  }
  if (name == GL_MAX_VIEWPORT_DIMS && gLargestViewport != 0) {
    values[0] = values[1] = gLargestViewport;
  }
}

void __real_glDeleteTextures(GLsizei count, const GLuint* textures);
[[gnu::visibility("default")]] void __wrap_glDeleteTextures(GLsizei count, const GLuint* textures);
void __wrap_glDeleteTextures(GLsizei count, const GLuint* textures) {
  if (wglGetCurrentContext() == nullptr) {
    gDeletedWithoutContext = true;
  }
  __real_glDeleteTextures(count, textures);
}

[[gnu::visibility("default")]] void __wrap_glTexImage2D(GLenum target, GLint level, GLint format,
                                                        GLsizei width, GLsizei height, GLint border,
                                                        GLenum pixelFormat, GLenum type,
                                                        const void* pixels);
void __wrap_glTexImage2D(GLenum target, GLint level, GLint format, GLsizei width, GLsizei height,
                         GLint border, GLenum pixelFormat, GLenum type, const void* pixels) {
  if (gTexturesLeft == 0) {  // without memory the texture keeps what it had
    return;
  }
  gTexturesLeft = std::max(gTexturesLeft - 1, -1);
  __real_glTexImage2D(target, level, format, width, height, border, pixelFormat, type, pixels);
}
// NOLINTEND(bugprone-reserved-identifier)

}  // extern "C"

namespace {

using check::LifecycleScenario;
using standin::PluginState;

/// OpenGL's own entry points of the names below.
AESDK_OpenGL::AESDK_OpenGL_EntryPoints gTrue;

/// Other drivers than this machine's may crash without a current context.
void ExpectContext() { EXPECT_NE(wglGetCurrentContext(), nullptr) << "an entry point was called"; }

GLenum APIENTRY Status(GLenum target) {
  ExpectContext();
  if (gCompleteness.FailsNow()) {
    return GL_FRAMEBUFFER_UNSUPPORTED_EXT;
  }
  return gTrue.glCheckFramebufferStatusEXT(target);
}

void APIENTRY DeleteFramebuffers(GLsizei count, const GLuint* names) {
  ExpectContext();
  gTrue.glDeleteFramebuffersEXT(count, names);
}

void APIENTRY DeleteObject(GLhandleARB object) {
  ExpectContext();
  gTrue.glDeleteObjectARB(object);
}

/// Keeps `found` for `own`, which takes its place.
template <typename Function>
PROC InPlaceOf(PROC found, Function& kept, Function own) {
  kept = reinterpret_cast<Function>(found);
  return reinterpret_cast<PROC>(own);
}

/// Finds the operations above in place of OpenGL's own.
PROC FindWatched(const char* name) {
  const PROC found = wglGetProcAddress(name);
  const std::string_view wanted = name;
  if (wanted == "glCheckFramebufferStatusEXT") {
    return InPlaceOf(found, gTrue.glCheckFramebufferStatusEXT, Status);
  }
  if (wanted == "glDeleteFramebuffersEXT") {
    return InPlaceOf(found, gTrue.glDeleteFramebuffersEXT, DeleteFramebuffers);
  }
  if (wanted == "glDeleteObjectARB") {
    return InPlaceOf(found, gTrue.glDeleteObjectARB, DeleteObject);
  }
  return found;
}

/// From now on no call fails and all limits are the true ones.
void ClearFaults() {
  gMakeCurrent.Clear();
  gCompleteness.Clear();
  gLargest = 0;
  gLargestViewport = 0;
  gTexturesLeft = -1;
  gWindowSystemFaults = {};
}

class GlLifecycle : public ::testing::Test {
 protected:
  void TearDown() override { ClearFaults(); }

  /// Runs a whole scenario with a fault set before it starts. Steps may fail with 512 and a message
  /// only; nothing leaks, textures are deleted with a current context alone, and at the end the
  /// host's context is current. Returns the number of failed steps.
  static long RunScenarioWithFault(const std::function<void()>& injectFault) {
    LifecycleScenario scenario;
    injectFault();
    scenario.Begin();
    scenario.End();
    ClearFaults();
    const long failed = std::ranges::count_if(
        scenario.steps, [](const check::Step& step) { return !step.result.Ok(); });
    for (const check::Step& step : scenario.steps) {
      if (!step.result.Ok()) {
        EXPECT_EQ(step.result.code, PF_Err_INTERNAL_STRUCT_DAMAGED) << step.name;
        EXPECT_NE(step.result.message, "") << step.name;
      }
    }
    EXPECT_FALSE(std::exchange(gDeletedWithoutContext, false));
    EXPECT_TRUE(scenario.host.ContextIsCurrent());
    check::EndHostInOrder(scenario.host);
    return failed;
  }

  /// The next scenario succeeds.
  static void ExpectRecovery() {
    EXPECT_EQ(RunScenarioWithFault([] {}), 0);
  }
};

TEST_F(GlLifecycle, GoesOnWithSmallerTargets) {
  for (const GLint largest : {8192, 4096}) {  // targets of 2048 and of 1024
    const long failed = RunScenarioWithFault([&] { gLargest = largest; });
    EXPECT_EQ(failed, 0) << largest;
    EXPECT_EQ(AESDK_OpenGL::gState.targetWidth, largest / 4);
  }
}

/// The first texture is the render target's; then come the images'. What is drawn without one is
/// undefined, but nothing else fails.
TEST_F(GlLifecycle, ToleratesTexturesWithoutMemory) {
  long refused = 0;
  constexpr int kMost = 60;
  for (int textures = 0; textures < kMost; textures += 3) {
    SCOPED_TRACE(textures);
    refused += RunScenarioWithFault([&] { gTexturesLeft = textures; }) > 0 ? 1 : 0;
  }
  EXPECT_GE(refused, 1);  // without a target no frame is drawn
  ExpectRecovery();
}

/// While it exists, plug-ins that start find the watched entry points.
class EntryPointsAreWatched {
 public:
  EntryPointsAreWatched() { AESDK_OpenGL::gLookUp.entryPoint = FindWatched; }
  ~EntryPointsAreWatched() { AESDK_OpenGL::gLookUp = saved_; }
  EntryPointsAreWatched(const EntryPointsAreWatched&) = delete;
  EntryPointsAreWatched& operator=(const EntryPointsAreWatched&) = delete;

 private:
  const AESDK_OpenGL::AESDK_OpenGL_LookUp saved_ = AESDK_OpenGL::gLookUp;
};

TEST_F(GlLifecycle, ToleratesEachSingleFailure) {
  constexpr int kMost = 500;
  const EntryPointsAreWatched watched;
  for (SingleFailure* const failure : {&gMakeCurrent, &gCompleteness}) {
    long scenarios = 0;
    long failed = 0;
    for (; scenarios < kMost; ++scenarios) {
      SCOPED_TRACE(scenarios);
      failed += RunScenarioWithFault([&] {
        failure->Plan(static_cast<int>(scenarios));
        gWindowSystemFaults.makeCurrentRefused = [](HGLRC context) {
          return context == AESDK_OpenGL::gState.renderContext && gMakeCurrent.FailsNow();
        };
      });
      if (!failure->Happened()) {
        break;
      }
    }
    EXPECT_LT(scenarios, kMost);
    EXPECT_GE(failed, 3);  // every frame's are among them
    ExpectRecovery();
    std::cout << scenarios << " scenarios with one failure each, " << failed << " steps failed\n";
  }
}

TEST_F(GlLifecycle, ToleratesAFailingWindowSystem) {
  using Faults = WindowSystemFaults;
  for (const auto fault :
       {&Faults::classRefused, &Faults::windowRefused, &Faults::deviceContextRefused,
        &Faults::pixelFormatNotFound, &Faults::pixelFormatRefused, &Faults::contextRefused}) {
    EXPECT_EQ(RunScenarioWithFault([&] { gWindowSystemFaults.*fault = true; }), 1);  // the start
    ExpectRecovery();
  }
}

class GlViewport : public check::RigTest {
 protected:
  void TearDown() override {
    ClearFaults();
    check::RigTest::TearDown();
  }
};

/// An output beyond the largest one is magnified tile by tile in the projection, which may move
/// what lies on a piece's very edge.
TEST_F(GlViewport, IsNoLimitOfAnOutput) {
  for (int i = 0; i < 4; ++i) {
    const check::Box box{.left = 45.0 * i, .top = 27.0 * i, .width = 90, .height = 70};
    rig.AddBone(check::Pattern(64, 48, 7 + static_cast<std::uint32_t>(i), 220),
                {check::Piece(box, {.left = 3, .top = 3, .width = 58, .height = 42}, 0.5)});
  }
  rig.Send();
  check::ResizeRenderTarget(50, 70);
  for (const bool exact : {false, true}) {
    rig.SetFast(!exact);
    gLargestViewport = 0;
    const tarvo::Picture usual = rig.Render().picture;
    gLargestViewport = 100;
    const tarvo::Picture beyond = rig.Render().picture;
    const auto comparison = tarvo::Compare(beyond, usual, 1);
    EXPECT_LE(comparison.beyond, comparison.compared / 500) << comparison.Text();
  }
}

}  // namespace
