#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "tests/gl/framework_fixture.h"

namespace AESDK_OpenGL {
namespace {

// A look-up that queries the context, hides chosen entry points and records what was requested.
std::vector<std::string> gHidden;
std::vector<std::string> gRequested;

const char* ExtensionsExceptHidden() {
  static std::string extensions;
  extensions = gLookUp.extensions();
  for (const std::string& name : gHidden) {
    for (std::size_t at = 0; (at = extensions.find(name)) != std::string::npos;) {
      extensions.erase(at, name.size());
    }
  }
  return extensions.c_str();
}

PROC EntryPointUnlessHidden(const char* name) {
  gRequested.emplace_back(name);
  return std::ranges::count(gHidden, name) == 0 ? gLookUp.entryPoint(name) : nullptr;
}

class EntryPoints : public CleanProcess {
 protected:
  // From nothing started and nothing fetched.
  static AESDK_OpenGL_Err StartUpWithout(std::vector<std::string> hidden) {
    AESDK_OpenGL_ShutDown(gState);
    gState = {};
    gEntryPoints = {};
    gRequested.clear();
    gHidden = std::move(hidden);
    return AESDK_OpenGL_StartUp(gState, {ExtensionsExceptHidden, EntryPointUnlessHidden});
  }

  void TearDown() override {
    gHidden.clear();
    CleanProcess::TearDown();
  }
};

TEST_F(EntryPoints, AMissingExtensionEndsStartUpAtItsStep) {
  struct Case {
    std::vector<std::string> hidden;
    AESDK_OpenGL_Err code;
    std::size_t requested;
  };
  const Case cases[] = {
      {{}, AESDK_OpenGL_Err_None, 33},
      {{"GL_EXT_framebuffer_object"}, AESDK_OpenGL_Err_Extensions, 0},
      {{"GL_EXT_blend_equation_separate"}, AESDK_OpenGL_Err_Extensions, 18},
      {{"GL_EXT_blend_func_separate"}, AESDK_OpenGL_Err_Extensions, 19},
      {{"GL_ARB_shading_language_100"}, AESDK_OpenGL_Err_Shader, 20},
      {{"GL_ARB_shader_objects"}, AESDK_OpenGL_Err_Extensions, 20},
      {{"GL_ARB_shading_language_100", "blend_func_separate"}, AESDK_OpenGL_Err_Extensions, 19},
  };
  for (const Case& each : cases) {
    SCOPED_TRACE(each.hidden.empty() ? "nothing" : each.hidden.front());
    EXPECT_EQ(StartUpWithout(each.hidden), each.code);
    EXPECT_EQ(gState.started, each.code == AESDK_OpenGL_Err_None);
    // What was fetched before the failure stays, the rest is null.
    EXPECT_EQ(gRequested.size(), each.requested);
    EXPECT_EQ(gEntryPoints.glIsRenderbufferEXT != nullptr, each.requested >= 1);
    EXPECT_EQ(gEntryPoints.glActiveTexture != nullptr, each.requested >= 18);
    EXPECT_EQ(gEntryPoints.glBlendEquationSeparateEXT != nullptr, each.requested >= 19);
    EXPECT_EQ(gEntryPoints.glBlendFuncSeparateEXT != nullptr, each.requested >= 20);
    EXPECT_EQ(gEntryPoints.glCreateProgramObjectARB != nullptr, each.requested >= 21);
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
  }
}

TEST_F(EntryPoints, EveryOneIsRequiredAndItsGroupIsFetchedWhole) {
  ASSERT_EQ(StartUpWithout({}), AESDK_OpenGL_Err_None);
  const std::vector<std::string> names = gRequested;
  const auto endOfGroup = [](std::size_t index) -> std::size_t {
    return index < 18 ? 18 : index < 20 ? index + 1 : 33;
  };
  for (std::size_t index = 0; index < names.size(); ++index) {
    SCOPED_TRACE(names[index]);
    EXPECT_EQ(StartUpWithout({names[index]}), AESDK_OpenGL_Err_Extensions);
    EXPECT_EQ(gRequested.size(), endOfGroup(index));
    EXPECT_TRUE(std::equal(gRequested.begin(), gRequested.end(), names.begin()));
    EXPECT_FALSE(gState.started);
  }
}

TEST_F(EntryPoints, AFailedStartUpCanBeShutDownAndNothingElseCrashes) {
  ASSERT_EQ(StartUpWithout({"glGenFramebuffersEXT"}), AESDK_OpenGL_Err_Extensions);
  EXPECT_EQ(AESDK_OpenGL_InitShaders(gState, "", ""), AESDK_OpenGL_Err_Shader);
  EXPECT_EQ(AESDK_OpenGL_PrepareRenderTarget(gState, 0, 0), AESDK_OpenGL_Err_None);
  EXPECT_EQ(AESDK_OpenGL_BindRenderTarget(gState), AESDK_OpenGL_Err_ResourceLoad);
  EXPECT_EQ(AESDK_OpenGL_DeleteRenderTarget(gState), AESDK_OpenGL_Err_None);
  EXPECT_EQ(AESDK_OpenGL_ShutDown(gState), AESDK_OpenGL_Err_None);
  EXPECT_EQ(gState.renderContext, nullptr);
}

TEST_F(EntryPoints, NoExtensionStringIsAFailureOfTheSystem) {
  const AESDK_OpenGL_LookUp noString = {[]() -> const char* { return nullptr; }, nullptr};
  EXPECT_EQ(AESDK_OpenGL_StartUp(gState, noString), AESDK_OpenGL_Err_OSCalls);
  EXPECT_FALSE(gState.started);
}

TEST(HasExtension, FindsANameWithinALongerOne) {
  const char* const extensions = "GL_EXT_framebuffer_object_more GL_EXT_abgr";
  EXPECT_EQ(AESDK_OpenGL_HasExtension(extensions, "EXT_framebuffer_object"), extensions + 3);
  EXPECT_EQ(AESDK_OpenGL_HasExtension(extensions, ""), extensions);
  EXPECT_EQ(AESDK_OpenGL_HasExtension(extensions, "GL_EXT_abgr2"), nullptr);
}

}  // namespace
}  // namespace AESDK_OpenGL
