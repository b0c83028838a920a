// Whole lives on machines whose OpenGL refuses, one refusal each. The linker turns two operations
// of OpenGL itself to this file (CMakeLists.txt), so that what they answer can be chosen.

#include <algorithm>
#include <functional>
#include <string>

#include <window_system.h>

#include "check/support/life.h"
#include "check/support/rig.h"
#include "gl/framework.h"
#include "platform/linux/window_system_faults.h"

namespace {

/// The largest render buffer that OpenGL claims to have, in pixels a side; 0 is the true one.
GLint gLargest = 0;
/// Textures that still find memory; below 0 all of them.
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
  if (name == GL_MAX_RENDERBUFFER_SIZE_EXT && gLargest != 0) *values = gLargest;
}

[[gnu::visibility("default")]] void __wrap_glTexImage2D(GLenum target, GLint level, GLint format,
                                                        GLsizei width, GLsizei height, GLint border,
                                                        GLenum pixelFormat, GLenum type,
                                                        const void* pixels);
void __wrap_glTexImage2D(GLenum target, GLint level, GLint format, GLsizei width, GLsizei height,
                         GLint border, GLenum pixelFormat, GLenum type, const void* pixels) {
  if (gTexturesLeft == 0) return;  // without memory the texture keeps what it had
  gTexturesLeft = std::max(gTexturesLeft - 1, -1);
  __real_glTexImage2D(target, level, format, width, height, border, pixelFormat, type, pixels);
}
// NOLINTEND(bugprone-reserved-identifier)

}  // extern "C"

namespace {

using check::Life;
using standin::LifeCycle;

/// Everything as it is.
void Mend() {
  gLargest = 0;
  gTexturesLeft = -1;
  gWindowSystemFaults = {};
}

class GlLife : public ::testing::Test {
 protected:
  void TearDown() override { Mend(); }

  /// A life in which something is broken after its `step`: no step may fail with another code than
  /// 512, nothing is lost and no context mixed up. Returns the number of steps that failed.
  static long LiveWith(const std::function<void()>& breakSomething) {
    Life life;
    breakSomething();
    life.Begin();
    Mend();
    life.End();
    const long failed = std::ranges::count_if(
        life.steps, [](const check::Step& step) { return !step.result.Ok(); });
    for (const check::Step& step : life.steps) {
      if (!step.result.Ok()) {
        EXPECT_EQ(step.result.code, PF_Err_INTERNAL_STRUCT_DAMAGED) << step.name;
        EXPECT_NE(step.result.message, "") << step.name;
      }
    }
    EXPECT_TRUE(life.host.ContextIsCurrent());
    check::ExpectBalanced(life.host);
    return failed;
  }

  /// The next life is as good as any.
  static void ExpectRecovery() {
    EXPECT_EQ(LiveWith([] {}), 0);
  }
};

TEST_F(GlLife, GoesOnWithSmallerTargets) {
  for (const GLint largest : {8192, 4096}) {  // targets of 2048 and of 1024
    const long failed = LiveWith([&] { gLargest = largest; });
    EXPECT_EQ(failed, 0) << largest;
    EXPECT_EQ(AESDK_OpenGL::gState.targetWidth, largest / 4);
  }
}

/// The first texture is the render target's; then come the images'. What is drawn without one is
/// undefined, but nothing else is lost.
TEST_F(GlLife, OutlivesTexturesWithoutMemory) {
  long refused = 0;
  constexpr int kMost = 60;
  for (int textures = 0; textures < kMost; textures += 3) {
    SCOPED_TRACE(textures);
    refused += LiveWith([&] { gTexturesLeft = textures; }) > 0 ? 1 : 0;
  }
  EXPECT_GE(refused, 1);  // without a target no frame is drawn
  ExpectRecovery();
}

TEST_F(GlLife, OutlivesAWindowSystemThatRefuses) {
  using Faults = WindowSystemFaults;
  for (const auto fault :
       {&Faults::classRefused, &Faults::windowRefused, &Faults::deviceContextRefused,
        &Faults::pixelFormatNotFound, &Faults::pixelFormatRefused, &Faults::contextRefused}) {
    EXPECT_EQ(LiveWith([&] { gWindowSystemFaults.*fault = true; }), 1);  // the start
    ExpectRecovery();
  }
}

}  // namespace
