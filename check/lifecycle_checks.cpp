// Global set-up and set-down, the lifecycle of instances, and what survives saving and copying.

#include <cstdint>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "check/support/host_test.h"
#include "check/support/pieces.h"
#include "check/support/requirement.h"
#include "check/support/settings.h"

namespace check::lifecycle {
namespace {

using standin::Host;
using standin::RendererInstance;

constexpr const char* kNoHook = "QEZ_Tarvo_overlaps_manager: Could not register command hook.";
constexpr A_long kEmptyWidth = 200;
constexpr A_long kPieceWidth = 44;  // 40 and 5 % a side

/// What an instance keeps in its handle, as projects have it saved.
struct Store {
  A_long number;
  std::uint64_t scene;
};

Store StoreOf(const RendererInstance& renderer) {
  Store store{};
  std::memcpy(&store, *renderer.sequenceData, sizeof store);
  return store;
}

A_long NumberOf(const RendererInstance& renderer) { return StoreOf(renderer).number; }

A_long CounterOf(const Host& host) {
  A_long counter = 0;
  std::memcpy(&counter, *host.GlobalData(), sizeof counter);
  return counter;
}

using GlobalSetup = HostTest;

class Instances : public HostTest {
 protected:
  /// Between commands, when the handle is not locked unless a case does so.
  static void SetCounter(Host& host, A_long value) {
    host.memory.HostLock(host.GlobalData());
    std::memcpy(*host.GlobalData(), &value, sizeof value);
    host.memory.HostUnlock(host.GlobalData());
  }

  /// A companion above the renderer, which has sent one piece with one image.
  standin::Companion& SendOnePiece(Host& host, RendererInstance& renderer) {
    auto& companion = host.AddCompanion(TheLayer(), "Arm", 0);
    companion.pieces = {Piece({10, 10, 40, 40}, {1, 1, 6, 6}, 0.5)};
    SendImage(host, companion, renderer);
    return companion;
  }

  static void SendImage(Host& host, standin::Companion& companion, RendererInstance& renderer) {
    companion.imageA.Set(Pattern(8, 8, 1));
    EXPECT_TRUE(host.Send(companion, renderer).tookA);
  }
};

CHECK_F(GlobalSetup, ReportsItselfAndLeavesNumberOneNext,
        "Global set-up reports version and flags, stores a four-byte counter of 1, and registers "
        "one idle hook.") {
  Host& host = StartHost();
  EXPECT_EQ(host.PluginVersion(), 0x00100000U);
  EXPECT_EQ(host.OutFlags(), 0x04001200);
  EXPECT_EQ(host.OutFlags2(), 0);
  EXPECT_EQ(host.memory.Size(host.GlobalData(), "test"), 4U);
  EXPECT_EQ(CounterOf(host), 1);
  EXPECT_EQ(host.IdleHooks(), 1U);
  EXPECT_TRUE(host.Reports().empty());
}

CHECK_F(GlobalSetup, SwitchesOpenGlOffOnlyWhereOldHostsHaveIt,
        "The host's OpenGL preference is set to 0 where it exists in a host before version 11, and "
        "is never created.") {
  const std::pair<std::string, std::string> key{"AE_OpenGL", "Enabled2"};
  const struct {
    A_short major;
    bool exists;
    bool touched;
  } cases[] = {{10, true, true}, {10, false, false}, {11, true, false}, {13, true, false}};
  for (const auto& [major, exists, touched] : cases) {
    standin::HostOptions options{.versionMajor = major, .pathIsWide = major >= 11};
    if (exists) {
      options.preferences[key] = 1;
    }
    Host& host = StartHost(options);
    EXPECT_EQ(host.Preferences().count(key), exists ? 1U : 0U) << major;
    if (exists) {
      EXPECT_EQ(host.Preferences().at(key), touched ? 0 : 1) << major;
    }
    EXPECT_EQ(host.injector.Calls("AEGP_GetApplicationBlob"), major < 11 ? 1U : 0U);
    EndHost();
  }
}

/// A failure of the host's does not keep OpenGL from starting nor the global data from being made,
/// but no idle hook is registered and the failure is reported to the user.
CHECK_F(GlobalSetup, GoesOnAfterAHostFailureAndReportsIt,
        "A host failure in global set-up is its result and is reported to the user; the global "
        "data exist all the same.") {
  const char* operations[] = {"AEGP_RegisterWithAEGP", "AEGP_GetApplicationBlob",
                              "AEGP_DoesKeyExist", "AEGP_SetLong"};
  for (const char* operation : operations) {
    Host& host = MakeHost({.versionMajor = 10, .preferences = {{{"AE_OpenGL", "Enabled2"}, 1}}});
    host.injector.FailOperation(operation, 1, {.code = 21});
    EXPECT_EQ(host.GlobalSetup().code, 21) << operation;
    EXPECT_NE(host.GlobalData(), nullptr) << operation;
    EXPECT_EQ(host.IdleHooks(), 0U);
    EXPECT_EQ(host.Reports(), std::vector<std::string>{kNoHook});
    EndHost();
  }
}

CHECK_F(
    GlobalSetup, ReportsARefusedIdleHook,
    "When the host refuses the idle hook, its code is the result and is reported to the user.") {
  Host& host = MakeHost();
  host.injector.FailOperation("AEGP_RegisterIdleHook", 1, {.code = 33});
  host.injector.FailOperation("AEGP_ReportInfo", 1, {.code = 34});
  EXPECT_EQ(host.GlobalSetup().code, 33);
  EXPECT_EQ(host.injector.Injected("AEGP_ReportInfo"), 1U);
}

CHECK_F(GlobalSetup, ReportsItsOwnCodeWithoutTheSuiteThatReports,
        "A failure of global set-up is its result also where the host has no suite to report it "
        "with.") {
  Host& host = MakeHost();
  host.injector.FailOperation("AEGP_RegisterIdleHook", 1, {.code = 33});
  host.HideSuite("AEGP Utility Suite", 7);
  EXPECT_EQ(host.GlobalSetup().code, 33);
}

CHECK_F(GlobalSetup, IsOutOfMemoryWithoutGlobalData,
        "Without a handle for the global data the result is 4, whatever else failed.") {
  Host& host = MakeHost();
  host.injector.FailOperation("AEGP_RegisterWithAEGP", 1, {.code = 21});
  host.injector.FailOperation("host_new_handle");
  EXPECT_EQ(host.GlobalSetup().code, PF_Err_OUT_OF_MEMORY);
}

CHECK_F(
    Instances, AreNumberedAndNumbersStartOver,
    "Instances are numbered from 1 to 9999, then from 0; removing one decrements the counter.") {
  Host& host = StartHost();
  auto& first = host.AddRenderer(TheLayer());
  auto& second = host.AddRenderer(TheLayer());
  EXPECT_EQ(NumberOf(first), 1);
  EXPECT_EQ(NumberOf(second), 2);
  EXPECT_EQ(host.memory.Size(first.sequenceData, "test"), sizeof(Store));
  SetCounter(host, 9999);
  EXPECT_EQ(NumberOf(host.AddRenderer(TheLayer())), 9999);
  EXPECT_EQ(NumberOf(host.AddRenderer(TheLayer())), 0);
  EXPECT_EQ(CounterOf(host), 1);
  host.Remove(second);
  EXPECT_EQ(CounterOf(host), 0);
}

CHECK_F(Instances, NeverDereferenceSavedOrCopiedPointers,
        "A duplicated or reopened instance starts without pieces and with a new number, and the "
        "original keeps its own.") {
  Host& host = StartHost();
  auto& original = host.AddRenderer(TheLayer());
  SendOnePiece(host, original);
  ASSERT_EQ(host.FrameSetup(original).width, kPieceWidth);

  auto& copy = host.Duplicate(original);
  EXPECT_TRUE(copy.setup.Ok());
  EXPECT_EQ(host.FrameSetup(copy).width, kEmptyWidth);
  EXPECT_EQ(host.FrameSetup(original).width, kPieceWidth);
  EXPECT_NE(NumberOf(copy), NumberOf(original));

  SetCounter(host, 7);
  host.SaveAndReopen();
  EXPECT_EQ(host.FrameSetup(original).width, kEmptyWidth);
  EXPECT_EQ(NumberOf(original), 5);  // two went, and the counter with them
  EXPECT_EQ(NumberOf(copy), 6);
}

/// A project may hold a handle of any size; the host may have purged the handle's memory or pass no
/// handle.
CHECK_F(Instances, AreMadeAnewFromAnyHandle,
        "A resetup makes an empty store of the plug-in's own size from a handle of any size and "
        "from one without memory, and none without a handle; a set-down without one still "
        "decrements the counter.") {
  Host& host = StartHost();
  auto& renderer = host.AddRenderer(TheLayer());
  const auto expectNewStore = [&](PF_Handle old) {
    renderer.sequenceData = old;
    EXPECT_TRUE(host.Call(PF_Cmd_SEQUENCE_RESETUP, &renderer).Ok());
    EXPECT_NE(renderer.sequenceData, old);
    ASSERT_EQ(host.memory.Size(renderer.sequenceData, "test"), sizeof(Store));
    EXPECT_EQ(NumberOf(renderer), 1);
    EXPECT_EQ(host.FrameSetup(renderer).width, kEmptyWidth);
  };
  for (const A_HandleSize bytes : {0U, 1U, 100'000U}) {
    EXPECT_TRUE(host.Call(PF_Cmd_SEQUENCE_SETDOWN, &renderer).Ok());
    expectNewStore(host.memory.New(bytes));
  }
  SendOnePiece(host, renderer);
  const PF_Handle purged = renderer.sequenceData;
  host.memory.Purge(purged);
  SetCounter(host, 1);
  expectNewStore(purged);
  host.memory.Dispose(purged, "test");

  EXPECT_TRUE(host.Call(PF_Cmd_SEQUENCE_SETDOWN, &renderer).Ok());
  EXPECT_TRUE(host.Call(PF_Cmd_SEQUENCE_RESETUP, &renderer).Ok());
  EXPECT_EQ(renderer.sequenceData, nullptr);
  EXPECT_TRUE(host.Call(PF_Cmd_SEQUENCE_SETDOWN, &renderer).Ok());
  EXPECT_EQ(CounterOf(host), 0);
}

CHECK_F(Instances, OfACopyWithoutMemoryDoNotReachTheOriginal,
        "A copy that got no memory of its own does not change the original's pieces.") {
  Host& host = StartHost();
  auto& original = host.AddRenderer(TheLayer());
  SendOnePiece(host, original);
  host.injector.FailOperation("host_new_handle");
  auto& copy = host.Duplicate(original);
  EXPECT_EQ(host.injector.Injected(), 1U);
  CompanionSlot record{};
  EXPECT_EQ(host.SendRecord(copy, &record).code, PF_Err_NONE);
  EXPECT_EQ(host.FrameSetup(original).width, kPieceWidth);
}

/// As when a host restores bytes that it had copied before the first message.
CHECK_F(Instances, ReleaseWhatAnEmptiedStoreHeld,
        "A store that reads as empty again gets a new scene; what the old one held is released "
        "with the instance.") {
  Host& host = StartHost();
  auto& renderer = host.AddRenderer(TheLayer());
  const Store empty = StoreOf(renderer);
  auto& companion = SendOnePiece(host, renderer);
  host.memory.HostLock(renderer.sequenceData);
  std::memcpy(*renderer.sequenceData, &empty, sizeof empty);
  host.memory.HostUnlock(renderer.sequenceData);
  EXPECT_EQ(host.FrameSetup(renderer).width, kEmptyWidth);
  SendImage(host, companion, renderer);
  EXPECT_EQ(host.FrameSetup(renderer).width, kPieceWidth);
  EXPECT_EQ(host.tracker.Count(standin::Kind::kWorld), 2U);
  EXPECT_TRUE(host.Remove(renderer).Ok());
  EXPECT_EQ(host.tracker.Count(standin::Kind::kWorld), 0U);
}

/// A handle that no resetup has seen.
CHECK_F(
    Instances, TreatUntrustedBytesAsAbsent,
    "Bytes that look like the plug-in's own but hold an unknown address are not dereferenced.") {
  Host& host = StartHost();
  auto& renderer = host.AddRenderer(TheLayer());
  Store store = StoreOf(renderer);
  store.scene = 0x1234568;
  host.memory.HostLock(renderer.sequenceData);
  std::memcpy(*renderer.sequenceData, &store, sizeof store);
  host.memory.HostUnlock(renderer.sequenceData);
  EXPECT_TRUE(host.Render(renderer).command.Ok());
  CompanionSlot record{};
  EXPECT_EQ(host.SendRecord(renderer, &record).code, PF_Err_NONE);
}

CHECK_F(Instances, TolerateSetupWithoutHandleOrLock,
        "A sequence set-up without a handle returns 4; without a lock it succeeds, and frames stay "
        "transparent.") {
  Host& host = StartHost();
  const auto idleWorks = [&] {
    const auto calls = host.injector.Calls();
    host.Idle();
    return host.injector.Calls() != calls;
  };
  host.AddRenderer(TheLayer());
  EXPECT_TRUE(idleWorks());
  host.injector.FailOperation("host_new_handle");
  EXPECT_EQ(host.AddRenderer(TheLayer()).setup.code, PF_Err_OUT_OF_MEMORY);
  EXPECT_FALSE(idleWorks());
  host.injector.FailOperation("host_lock_handle");
  auto& unlocked = host.AddRenderer(TheLayer());
  EXPECT_EQ(unlocked.setup.code, PF_Err_NONE);
  EXPECT_EQ(unlocked.sequenceData, nullptr);
  EXPECT_TRUE(idleWorks());
  // Handlers do without a store: nothing is read, the extent stays the host's, a frame is
  // transparent.
  const auto extent = host.FrameSetup(unlocked, {.preEffectOriginX = 30, .preEffectOriginY = 40});
  EXPECT_TRUE(extent.command.Ok() && extent.originX == 0 && extent.originY == 0);
  CompanionSlot record{};
  EXPECT_EQ(host.SendRecord(unlocked, &record).code, PF_Err_NONE);
  const auto frame = host.RenderInto(unlocked, {.width = 8, .height = 8});
  EXPECT_EQ(frame.command.code, PF_Err_NONE);
  EXPECT_EQ(frame.picture, tarvo::Picture(8, 8));
}

CHECK_F(Instances, KeepTheOldStoreThatAResetupCannotReplace,
        "A resetup without memory keeps the old handle.") {
  Host& host = StartHost();
  auto& renderer = host.AddRenderer(TheLayer());
  const PF_Handle before = renderer.sequenceData;
  const struct {
    const char* operation;
    PF_Err expected;
  } cases[] = {{"host_new_handle", PF_Err_NONE},
               {"host_lock_handle", PF_Err_INTERNAL_STRUCT_DAMAGED}};
  for (const auto& [operation, expected] : cases) {
    host.injector.FailOperation(operation);
    PF_InData in = host.InputRecord(&renderer);
    PF_OutData out{};
    EXPECT_EQ(host.CallWith(PF_Cmd_SEQUENCE_RESETUP, in, out, nullptr, nullptr, nullptr).code,
              expected);
    EXPECT_EQ(in.sequence_data, before) << operation;
    EXPECT_EQ(out.sequence_data, nullptr) << operation;
  }
  // Resetup is the only command that unlocks after a failed lock; hosts rely on it.
  EXPECT_EQ(host.injector.Calls("host_unlock_handle"), host.injector.Calls("host_lock_handle"));
}

/// The output is wider than the render target, so that it is drawn correctly only if the target's
/// size is known.
CHECK_F(Instances, StartOverWithASecondGlobalSetUp,
        "A second global set-up without a set-down releases what the first made and starts as "
        "the first did: new instances draw, in tiles too, and those from before are transparent.") {
  Host& host = StartHost();
  auto& before = host.AddRenderer(TheLayer());
  auto& companion = SendOnePiece(host, before);
  const double right = TheSettings().tiledWidth - 40.0;
  companion.pieces.push_back(Piece({right, 10, 40, 40}, {1, 1, 6, 6}, 0.5));
  SendImage(host, companion, before);
  const tarvo::Picture drawn = host.Render(before).picture;
  const PF_Handle data = host.GlobalData();
  SendImage(host, companion, before);  // pending for a frame that is never rendered

  EXPECT_TRUE(host.Call(PF_Cmd_GLOBAL_SETUP, nullptr).Ok());
  EXPECT_FALSE(host.memory.IsLive(data));
  EXPECT_TRUE(host.memory.IsLive(host.GlobalData()));
  EXPECT_EQ(host.Render(before).picture, tarvo::Picture(kEmptyWidth, 100));
  auto& after = host.AddRenderer(TheLayer());
  SendImage(host, companion, after);
  EXPECT_EQ(host.Render(after).picture, drawn);
}

CHECK_F(GlobalSetup, LeavesNoStaleHandleWhenASecondOneFails,
        "A second global set-up that gets no new global data leaves the host without any.") {
  for (const char* operation : {"host_lock_handle", "host_new_handle"}) {
    Host& host = StartHost();
    auto& renderer = host.AddRenderer(TheLayer());
    host.injector.FailOperation(operation);
    host.Call(PF_Cmd_GLOBAL_SETUP, nullptr);
    EXPECT_EQ(host.GlobalData(), nullptr) << operation;
    EXPECT_TRUE(host.Remove(renderer).Ok());
    EndHost();
  }
}

/// Textures are not counted here: the host cannot see them (tests/lifecycle counts them).
CHECK_F(Instances, ReleaseWhatTheyHold,
        "Pending images are disposed of with their instance, and at global set-down.") {
  for (const bool removed : {true, false}) {
    Host& host = StartHost();
    auto& renderer = host.AddRenderer(TheLayer());
    auto& companion = SendOnePiece(host, renderer);
    ASSERT_TRUE(host.Render(renderer).command.Ok());
    const auto before = host.tracker.Count(standin::Kind::kWorld);  // the host's own
    SendImage(host, companion, renderer);
    EXPECT_EQ(host.tracker.Count(standin::Kind::kWorld), before + 1);
    if (removed) {
      host.Remove(renderer);
      EXPECT_EQ(host.tracker.Count(standin::Kind::kWorld), before);
    } else {
      EXPECT_TRUE(host.GlobalSetdown().Ok());
    }
    EndHost();
  }
}

}  // namespace
}  // namespace check::lifecycle
