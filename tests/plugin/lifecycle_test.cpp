// Global set-up and set-down, the life of instances, and what of it survives saving and copying.

#include <cstring>
#include <string>
#include <utility>

#include "entry/global_lifecycle.h"
#include "entry/plugin_folder.h"
#include "gl/framework.h"
#include "host/process.h"
#include "scene/scene_store.h"
#include "tests/plugin/plugin_fixture.h"
#include "tests/support/pieces.h"

namespace {

using AESDK_OpenGL::gState;
using standin::Host;
using standin::RendererInstance;

constexpr const char* kNoHook = "QEZ_Tarvo_overlaps_manager: Could not register command hook.";

class LifecycleTest : public PluginTest {
 protected:
  static const tarvo::SceneStore& StoreOf(const RendererInstance& renderer) {
    return *static_cast<const tarvo::SceneStore*>(*renderer.sequenceData);
  }

  static A_long CounterOf(const Host& host) {
    return static_cast<tarvo::GlobalData*>(*host.GlobalData())->instanceCounter;
  }

  /// Between commands, when the handle is not locked unless a test does so.
  static void SetCounter(Host& host, A_long value) {
    host.memory.HostLock(host.GlobalData());
    static_cast<tarvo::GlobalData*>(*host.GlobalData())->instanceCounter = value;
    host.memory.HostUnlock(host.GlobalData());
  }

  /// A companion above the renderer, one piece with one image sent.
  standin::Companion& SendOnePiece(Host& host, RendererInstance& renderer) {
    auto& companion = host.AddCompanion(TheLayer(), "Arm", 0);
    companion.pieces = {support::Piece({10, 10, 40, 40}, {1, 1, 6, 6}, 0.5)};
    companion.imageA.Set(support::Pattern(8, 8, 1));
    EXPECT_TRUE(host.Send(companion, renderer).tookA);
    return companion;
  }
};

TEST_F(LifecycleTest, GlobalSetupReportsItselfAndLeavesNumberOneNext) {
  Host& host = StartHost();
  EXPECT_EQ(host.PluginVersion(), 0x00100000U);
  EXPECT_EQ(host.OutFlags(), 0x04001200);
  EXPECT_EQ(host.OutFlags2(), 0);
  EXPECT_EQ(host.memory.Size(host.GlobalData(), "test"), 4U);
  EXPECT_EQ(CounterOf(host), 1);
  EXPECT_EQ(gState.targetWidth, 65535);
  EXPECT_EQ(host.IdleHooks(), 1U);
  EXPECT_TRUE(host.Reports().empty());
}

TEST_F(LifecycleTest, TheHostsOpenGlPreferenceIsSwitchedOffOnlyWhereOldHostsHaveIt) {
  const std::pair<std::string, std::string> key{"AE_OpenGL", "Enabled2"};
  const struct {
    A_short major;
    bool exists;
    bool touched;
  } cases[] = {{10, true, true}, {10, false, false}, {11, true, false}, {13, true, false}};
  for (const auto& [major, exists, touched] : cases) {
    standin::HostOptions options{.versionMajor = major};
    if (exists) options.preferences[key] = 1;
    Host& host = StartHost(options);
    EXPECT_EQ(host.Preferences().count(key), exists ? 1U : 0U) << major;
    if (exists) {
      EXPECT_EQ(host.Preferences().at(key), touched ? 0 : 1) << major;
    }
    EXPECT_EQ(host.gate.Calls("AEGP_GetApplicationBlob"), major < 11 ? 1U : 0U);
    TearDown();
  }
}

/// A failure of the host's does not keep OpenGL from starting nor the global data from being made,
/// but no idle hook is registered and the user is told.
TEST_F(LifecycleTest, HostFailuresAtGlobalSetupAreReportedAndTheRestIsDoneAllTheSame) {
  const char* operations[] = {"AEGP_RegisterWithAEGP", "AEGP_GetApplicationBlob",
                              "AEGP_DoesKeyExist", "AEGP_SetLong"};
  for (const char* operation : operations) {
    Host& host = MakeHost({.versionMajor = 10, .preferences = {{{"AE_OpenGL", "Enabled2"}, 1}}});
    host.gate.FailOperation(operation, 1, {.code = 21});
    EXPECT_EQ(host.GlobalSetup().code, 21) << operation;
    EXPECT_TRUE(gState.started && gState.shadersReady) << operation;
    EXPECT_NE(host.GlobalData(), nullptr) << operation;
    EXPECT_EQ(host.IdleHooks(), 0U);
    EXPECT_EQ(host.Reports(), std::vector<std::string>{kNoHook});
    TearDown();
  }
}

TEST_F(LifecycleTest, ARefusedIdleHookIsTheResultAndIsReported) {
  Host& host = MakeHost();
  host.gate.FailOperation("AEGP_RegisterIdleHook", 1, {.code = 33});
  host.gate.FailOperation("AEGP_ReportInfo", 1, {.code = 34});
  EXPECT_EQ(host.GlobalSetup().code, 33);
  EXPECT_EQ(host.gate.Injected("AEGP_ReportInfo"), 1U);
}

TEST_F(LifecycleTest, WithoutGlobalDataMemoryIsOutWhateverElseFailed) {
  Host& host = MakeHost();
  host.gate.FailOperation("AEGP_RegisterWithAEGP", 1, {.code = 21});
  host.gate.FailOperation("host_new_handle");
  gState.targetWidth = 17;
  EXPECT_EQ(host.GlobalSetup().code, PF_Err_OUT_OF_MEMORY);
  EXPECT_EQ(gState.targetWidth, 17);
}

TEST_F(LifecycleTest, AMissingExtensionIsToldInWordsAndTheNextStartWorks) {
  const auto whole = AESDK_OpenGL::gLookUp;
  const struct {
    const char* (*extensions)();
    const char* message;
  } cases[] = {
      {[]() -> const char* { return ""; }, "Appropriate OpenGL extensions not found!"},
      {[]() -> const char* { return nullptr; }, "OS specific calls failed!"},
      {[]() -> const char* {
         return "GL_EXT_framebuffer_object GL_EXT_blend_equation_separate "
                "GL_EXT_blend_func_separate GL_ARB_shader_objects";
       },
       "Shader Error!"},
  };
  for (const auto& [extensions, message] : cases) {
    AESDK_OpenGL::gLookUp.extensions = extensions;
    Host& host = MakeHost();
    const auto result = host.GlobalSetup();
    EXPECT_EQ(result.code, PF_Err_INTERNAL_STRUCT_DAMAGED);
    EXPECT_EQ(result.message, message);
    EXPECT_NE(host.GlobalData(), nullptr);
    TearDown();
    AESDK_OpenGL::gLookUp = whole;
    StartHost();
    TearDown();
  }
}

TEST_F(LifecycleTest, ANameWithoutAnAddressIsAMissingExtension) {
  const auto whole = AESDK_OpenGL::gLookUp;
  AESDK_OpenGL::gLookUp.entryPoint = [](const char* name) -> PROC {
    return std::string(name) == "glGetUniformLocationARB" ? nullptr : wglGetProcAddress(name);
  };
  const auto result = MakeHost().GlobalSetup();
  AESDK_OpenGL::gLookUp = whole;
  EXPECT_EQ(result.code, PF_Err_INTERNAL_STRUCT_DAMAGED);
  EXPECT_EQ(result.message, "Appropriate OpenGL extensions not found!");
  TearDown();
  StartHost();
}

TEST_F(LifecycleTest, InstancesAreNumberedAndNumbersStartOver) {
  Host& host = StartHost();
  auto& first = host.AddRenderer(TheLayer());
  auto& second = host.AddRenderer(TheLayer());
  EXPECT_EQ(StoreOf(first).instanceNumber, 1);
  EXPECT_EQ(StoreOf(second).instanceNumber, 2);
  EXPECT_EQ(host.memory.Size(first.sequenceData, "test"), sizeof(tarvo::SceneStore));
  SetCounter(host, 9999);
  EXPECT_EQ(StoreOf(host.AddRenderer(TheLayer())).instanceNumber, 9999);
  EXPECT_EQ(StoreOf(host.AddRenderer(TheLayer())).instanceNumber, 0);
  EXPECT_EQ(CounterOf(host), 1);
  host.Remove(second);
  EXPECT_EQ(CounterOf(host), 0);
}

TEST_F(LifecycleTest, SavedAndCopiedBytesAreNeverFollowed) {
  Host& host = StartHost();
  auto& original = host.AddRenderer(TheLayer());
  SendOnePiece(host, original);
  const tarvo::Scene* const scene = StoreOf(original).scene;
  ASSERT_NE(scene, nullptr);

  auto& copy = host.Duplicate(original);
  EXPECT_TRUE(copy.setup.Ok());
  EXPECT_EQ(StoreOf(copy).scene, nullptr);
  EXPECT_EQ(StoreOf(original).scene, scene);
  EXPECT_NE(StoreOf(copy).instanceNumber, StoreOf(original).instanceNumber);

  host.SaveAndReopen();
  EXPECT_EQ(StoreOf(original).scene, nullptr);
  // What has no pieces takes the layer's own size; the piece that was saved is gone.
  EXPECT_EQ(host.FrameSetup(original).width, 200);
}

/// A copy that could not be given a store of its own keeps the original's bytes: they lead nowhere.
TEST_F(LifecycleTest, ACopyWithoutAStoreOfItsOwnDoesNotReachTheOriginals) {
  Host& host = StartHost();
  auto& original = host.AddRenderer(TheLayer());
  SendOnePiece(host, original);
  host.gate.FailOperation("host_new_handle");
  auto& copy = host.Duplicate(original);
  EXPECT_EQ(host.gate.Injected(), 1U);
  CompanionSlot record{};
  EXPECT_EQ(host.SendRecord(copy, &record).code, PF_Err_NONE);
  EXPECT_EQ(StoreOf(original).scene->slots[0].quads.size(), 1U);
}

/// Bytes that look like a store of ours, in a handle that no resetup has seen.
TEST_F(LifecycleTest, AStoreThatNamesAForeignSceneIsAsGoodAsNone) {
  Host& host = StartHost();
  auto& renderer = host.AddRenderer(TheLayer());
  host.memory.HostLock(renderer.sequenceData);
  auto* const store = static_cast<tarvo::SceneStore*>(*renderer.sequenceData);
  store->scene = reinterpret_cast<tarvo::Scene*>(std::uintptr_t{0x1234568});
  host.memory.HostUnlock(renderer.sequenceData);
  EXPECT_TRUE(host.Render(renderer).command.Ok());
  CompanionSlot record{};
  EXPECT_EQ(host.SendRecord(renderer, &record).code, PF_Err_NONE);
}

TEST_F(LifecycleTest, SequenceSetupWithoutMemoryOrLock) {
  Host& host = StartHost();
  tarvo::gIdleTicks = 5;
  host.gate.FailOperation("host_new_handle");
  EXPECT_EQ(host.AddRenderer(TheLayer()).setup.code, PF_Err_OUT_OF_MEMORY);
  EXPECT_EQ(tarvo::gIdleTicks, 5U);
  host.gate.FailOperation("host_lock_handle");
  auto& unlocked = host.AddRenderer(TheLayer());
  EXPECT_EQ(unlocked.setup.code, PF_Err_NONE);
  EXPECT_EQ(unlocked.sequenceData, nullptr);
  EXPECT_EQ(tarvo::gIdleTicks, 0U);
  // Handlers do without a store: nothing is read, a frame is transparent.
  CompanionSlot record{};
  EXPECT_EQ(host.SendRecord(unlocked, &record).code, PF_Err_NONE);
  const auto frame = host.RenderInto(unlocked, {.width = 8, .height = 8});
  EXPECT_EQ(frame.command.code, PF_Err_NONE);
  EXPECT_EQ(frame.picture, standin::Picture(8, 8));
}

TEST_F(LifecycleTest, ResetupThatCannotReplaceTheStoreKeepsTheOldOne) {
  Host& host = StartHost();
  auto& renderer = host.AddRenderer(TheLayer());
  const PF_Handle before = renderer.sequenceData;
  const struct {
    const char* operation;
    PF_Err expected;
  } cases[] = {{"host_new_handle", PF_Err_NONE},
               {"host_lock_handle", PF_Err_INTERNAL_STRUCT_DAMAGED}};
  for (const auto& [operation, expected] : cases) {
    host.gate.FailOperation(operation);
    PF_InData in = host.InputRecord(&renderer);
    PF_OutData out{};
    EXPECT_EQ(host.CallWith(PF_Cmd_SEQUENCE_RESETUP, in, out, nullptr, nullptr, nullptr).code,
              expected);
    EXPECT_EQ(in.sequence_data, before) << operation;
    EXPECT_EQ(out.sequence_data, nullptr) << operation;
  }
}

/// Images that no frame uploaded, and textures that frames did, go with their instance.
TEST_F(LifecycleTest, AnInstanceGivesBackWhatItHolds) {
  Host& host = StartHost();
  auto& renderer = host.AddRenderer(TheLayer());
  SendOnePiece(host, renderer);
  ASSERT_TRUE(host.Render(renderer).command.Ok());
  const auto before = host.books.Count(standin::Kind::kWorld);  // the host's own
  SendOnePiece(host, renderer);
  EXPECT_EQ(host.books.Count(standin::Kind::kWorld), before + 1);
  host.Remove(renderer);
  EXPECT_EQ(host.books.Count(standin::Kind::kWorld), before);
}

TEST(PluginFolderTest, IsThePartBeforeTheLastBackslash) {
  EXPECT_EQ(tarvo::FolderOf("C:\\Plug-ins\\x.aex"), "C:\\Plug-ins");
  EXPECT_EQ(tarvo::FolderOf("x.aex"), "x.aex");
  const auto text = [](const std::string& bytes) {
    return tarvo::PathText(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
  };
  EXPECT_EQ(text(std::string("C:\\a\0junk", 9)), "C:\\a");
  EXPECT_EQ(text(std::string("C\0:\0\\\0\xE4\0\0\0", 10)), "C:\\\xC3\xA4");
  // A pair of surrogates, then text that fills its room without an end.
  EXPECT_EQ(text(std::string("a\0\x3D\xD8\x00\xDE", 6)), "a\xF0\x9F\x98\x80");
  EXPECT_EQ(text(""), "");
}

}  // namespace
