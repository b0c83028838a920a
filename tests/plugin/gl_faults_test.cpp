// Machines whose OpenGL lacks something: the host gets a message, nothing leaks (the fixture
// looks), and the next start goes well.

#include <array>
#include <string>
#include <vector>

#include "check/support/failed_render_test.h"
#include "check/support/host_test.h"
#include "plugin/gl/framework.h"

namespace {

using AESDK_OpenGL::gLookUp;
using standin::RenderResult;

using GlRenderFaultsTest = check::FailedRenderTest;

class GlFaultsTest : public check::HostTest {
 protected:
  void TearDown() override {
    gLookUp = whole_;
    HostTest::TearDown();
  }

  /// A start with the look-up as it has been made.
  void ExpectRefusal(const std::string& message) {
    standin::Host& host = MakeHost();
    const standin::CommandResult result = host.GlobalSetup();
    EXPECT_EQ(result.code, PF_Err_INTERNAL_STRUCT_DAMAGED);
    EXPECT_EQ(result.message, message);
    EXPECT_NE(host.GlobalData(), nullptr);
    EndHost();
    gLookUp = whole_;
    StartHost();
    EndHost();
  }

 private:
  const AESDK_OpenGL::AESDK_OpenGL_LookUp whole_ = gLookUp;
};

/// All the extensions that start-up asks for, but one; and none at all.
TEST_F(GlFaultsTest, AMissingExtensionIsToldInWords) {
  static std::string offered;
  const std::array names{"EXT_framebuffer_object",     "GL_EXT_blend_equation_separate",
                         "GL_EXT_blend_func_separate", "GL_ARB_shading_language_100",
                         "GL_ARB_shader_objects",      ""};
  for (const std::string missing : names) {
    SCOPED_TRACE(missing);
    offered.clear();
    for (const std::string name : names) {
      if (name != missing && !missing.empty()) {
        offered += "GL_" + name + " ";
      }
    }
    gLookUp.extensions = []() -> const char* { return offered.c_str(); };
    ExpectRefusal(missing == "GL_ARB_shading_language_100"
                      ? "Shader Error!"
                      : "Appropriate OpenGL extensions not found!");
  }
  gLookUp.extensions = []() -> const char* { return nullptr; };
  ExpectRefusal("OS specific calls failed!");
}

TEST_F(GlFaultsTest, EachEntryPointIsNeeded) {
  static std::vector<std::string> asked;
  static std::string missing;
  static PROC none = nullptr;
  gLookUp.entryPoint = [](const char* name) -> PROC {
    asked.emplace_back(name);
    return name == missing ? none : wglGetProcAddress(name);
  };
  const auto lookUp = gLookUp;
  StartHost();
  EndHost();
  const std::vector<std::string> names = asked;
  EXPECT_EQ(names.size(), 33U);
  for (const std::string& name : names) {
    SCOPED_TRACE(name);
    missing = name;
    gLookUp = lookUp;
    ExpectRefusal("Appropriate OpenGL extensions not found!");
  }
  for (const std::intptr_t saysNone : {1, 3, -1}) {
    // What drivers return instead of null.
    none = reinterpret_cast<PROC>(saysNone);
    gLookUp = lookUp;
    ExpectRefusal("Appropriate OpenGL extensions not found!");
  }
}

/// While it exists, the framebuffer reports complete for a number of status checks, then the given
/// status.
class FramebufferBecomesIncomplete {
 public:
  FramebufferBecomesIncomplete(int completeChecks, GLenum status)
      : real_(AESDK_OpenGL::gEntryPoints.glCheckFramebufferStatusEXT) {
    checksLeft = completeChecks;
    statusThen = status;
    AESDK_OpenGL::gEntryPoints.glCheckFramebufferStatusEXT = Answer;
  }
  ~FramebufferBecomesIncomplete() {
    AESDK_OpenGL::gEntryPoints.glCheckFramebufferStatusEXT = real_;
  }
  FramebufferBecomesIncomplete(const FramebufferBecomesIncomplete&) = delete;
  FramebufferBecomesIncomplete& operator=(const FramebufferBecomesIncomplete&) = delete;

 private:
  static GLenum APIENTRY Answer(GLenum) {
    return checksLeft-- > 0 ? GL_FRAMEBUFFER_COMPLETE_EXT : statusThen;
  }

  static inline int checksLeft = 0;
  static inline GLenum statusThen = 0;
  PFNGLCHECKFRAMEBUFFERSTATUSEXTPROC real_;
};

TEST_F(GlRenderFaultsTest, FramebufferThatIsNotCompleteIsToldInWords) {
  struct Incomplete {
    int completeChecks;
    GLenum status;
    const char* message;
  };
  for (const Incomplete& incomplete :
       {Incomplete{0, GL_FRAMEBUFFER_UNSUPPORTED_EXT, "OpenGL resources failed to load!"},
        Incomplete{1, GL_FRAMEBUFFER_INCOMPLETE_MISSING_ATTACHMENT_EXT,
                   "Framebuffer incomplete, missing attachment!"},
        Incomplete{1, 0x8CD8, "Unknown error!"}}) {
    SCOPED_TRACE(incomplete.message);
    SendImages();
    {
      const FramebufferBecomesIncomplete fault(incomplete.completeChecks, incomplete.status);
      const RenderResult result = RenderWithFailure();
      EXPECT_EQ(result.command.code, PF_Err_INTERNAL_STRUCT_DAMAGED);
      EXPECT_EQ(result.command.message, incomplete.message);
      EXPECT_TRUE(result.command.displayMessage);
      EXPECT_TRUE(IsTransparent(result.picture));
    }
    // Pending images are kept.
    EXPECT_EQ(rig.Render().picture, good);
  }
}

}  // namespace
