// Memory that runs out in the plug-in.

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "check/support/allocation_faults.h"
#include "check/support/parameters.h"
#include "check/support/pieces.h"
#include "check/support/requirement.h"
#include "check/support/rig.h"
#include "standin/core/object_tracker.h"

namespace check::memory {
namespace {

using standin::CommandResult;
using tarvo::Picture;

constexpr std::uint64_t kMostAllocations = 1000;
constexpr Box kMemoryArea{.left = 0, .top = 0, .width = 80, .height = 60};

/// Work whose allocations are to fail.
struct AllocationFaultCase {
  std::string name;
  std::function<void()> prepare = [] {};  ///< runs before each attempt, with memory available
  std::function<CommandResult()> work;
  /// Runs after each attempt in which memory ran out.
  std::function<void(const CommandResult&)> expectAfterFailure;
};

/// Lets every allocation of the work fail in turn, until none does. Returns the number of
/// allocations.
std::uint64_t FailEachAllocation(const AllocationFaultCase& faultCase) {
  std::uint64_t n = 1;
  for (; n < kMostAllocations && !testing::Test::HasFailure(); ++n) {
    SCOPED_TRACE(faultCase.name + ", allocation " + std::to_string(n));
    faultCase.prepare();
    CommandResult result;
    bool fired = false;
    {
      const AllocationFaults faults(n);
      result = faultCase.work();
      fired = faults.Fired();
    }
    if (!fired) {
      EXPECT_TRUE(result.Ok()) << result.code;
      break;
    }
    faultCase.expectAfterFailure(result);
  }
  EXPECT_LT(n, kMostAllocations) << faultCase.name;
  testing::Test::RecordProperty("allocations that failed in " + faultCase.name,
                                std::to_string(n - 1));
  return n - 1;
}

class Memory : public RigTest {
 protected:
  void SetUp() override {
    if (const char* obstacle = AllocationFaults::Obstacle()) {
      GTEST_SKIP() << obstacle;
    }
    for (std::uint32_t bone = 0; bone < 3; ++bone) {
      rig.AddBone(Pattern(16, 12, bone), WarpedPieces(bone, 3, kMemoryArea, 16, 12)).groupName =
          "A name that no short string holds";
    }
    rig.SetFast(false);
    rig.Send();
    good = rig.Render().picture;
    worlds = rig.host.tracker.Count(standin::Kind::kWorld);
  }

  /// The images are sent once more and are pending.
  void SendImages() {
    for (standin::Companion* bone : rig.ActiveCompanions()) {
      bone->SendImagesAgain();
    }
    rig.Send();
  }

  /// Nothing is lost, and the scene is as it was.
  void ExpectAllAsBefore() {
    EXPECT_TRUE(rig.host.ContextIsCurrent());
    EXPECT_EQ(rig.Render().picture, good);
    EXPECT_EQ(rig.host.tracker.Count(standin::Kind::kWorld), worlds);
  }

  Picture good;
  std::size_t worlds = 0;
};

CHECK_F(Memory, RunningOutInARenderLeavesATransparentFrame,
        "Whichever allocation of a render fails, with images pending or without, the frame is "
        "transparent, nothing leaks, and the next frame is correct.") {
  Picture picture;
  AllocationFaultCase faultCase{
      .name = "a render", .prepare = [] {}, .work = {}, .expectAfterFailure = {}};
  faultCase.work = [&] {
    standin::RenderResult result = rig.host.Render(rig.renderer);
    picture = std::move(result.picture);
    return result.command;
  };
  faultCase.expectAfterFailure = [&](const CommandResult& result) {
    EXPECT_EQ(result.code, PF_Err_NONE);
    EXPECT_EQ(picture.pixels, Picture(good.width, good.height).pixels);
    ExpectAllAsBefore();
  };
  EXPECT_GT(FailEachAllocation(faultCase), 0U);
  faultCase.name = "a render with new images";
  faultCase.prepare = [&] { SendImages(); };
  EXPECT_GT(FailEachAllocation(faultCase), 0U);
}

CHECK_F(Memory, RunningOutInAnIntakeReturns4AndLeaksNothing,
        "Whichever allocation of an intake fails, the result is 4, no world leaks, and the same "
        "message then succeeds.") {
  standin::Companion& bone = *rig.ActiveCompanions().front();
  const AllocationFaultCase faultCase{
      .name = "an intake",
      .prepare =
          [&] {
            bone.SendImagesAgain();
            bone.pieces.push_back(bone.pieces.back());  // the message grows: room is needed
          },
      .work = [&] { return rig.host.Send(bone, rig.renderer).command; },
      .expectAfterFailure =
          [&](const CommandResult& result) {
            EXPECT_EQ(result.code, PF_Err_OUT_OF_MEMORY);
            bone.pieces.pop_back();
            rig.Send();
            ExpectAllAsBefore();
          }};
  EXPECT_GT(FailEachAllocation(faultCase), 0U);
}

CHECK_F(Memory, RunningOutInTheFirstIntakeReturns4AndLeaksNothing,
        "Whichever allocation of an instance's first intake fails, the result is 4, and the same "
        "message then succeeds.") {
  standin::Companion& bone = *rig.ActiveCompanions().front();
  standin::RendererInstance* fresh = nullptr;
  const AllocationFaultCase faultCase{
      .name = "a first intake",
      .prepare =
          [&] {
            fresh = &rig.host.AddRenderer(rig.layer);
            bone.SendImagesAgain();
          },
      .work = [&] { return rig.host.Send(bone, *fresh).command; },
      .expectAfterFailure =
          [&](const CommandResult& result) {
            EXPECT_EQ(result.code, PF_Err_OUT_OF_MEMORY);
            for (standin::Companion* each : rig.ActiveCompanions()) {
              each->SendImagesAgain();
              EXPECT_TRUE(rig.host.Send(*each, *fresh).command.Ok());
            }
            EXPECT_TRUE(rig.host.SetParameter(*fresh, check::kFastTransparency, 0).Ok());
            EXPECT_EQ(rig.host.Render(*fresh).picture, good);
            EXPECT_TRUE(rig.host.Remove(*fresh).Ok());
          }};
  EXPECT_GT(FailEachAllocation(faultCase), 0U);
  EXPECT_TRUE(rig.host.Remove(*fresh).Ok());
}

CHECK_F(Memory, RunningOutInOtherCommandsReturns4AndLeaksNothing,
        "Whichever allocation of a label update, a set-up, a resetup, a nudge or an idle call "
        "fails, the result is 4, nothing leaks, and the scene is as before.") {
  standin::Host& host = rig.host;
  standin::RendererInstance* fresh = nullptr;
  const auto add = [&](standin::RendererInstance& instance) {
    fresh = &instance;
    return instance.setup;
  };
  const auto expectAfterFailure = [&](const CommandResult& result) {
    EXPECT_EQ(result.code, PF_Err_OUT_OF_MEMORY);
    if (fresh != nullptr) {
      EXPECT_TRUE(host.Remove(*std::exchange(fresh, nullptr)).Ok());
    }
    ExpectAllAsBefore();
  };
  const auto fail = [&](const char* name, const std::function<CommandResult()>& work) {
    return FailEachAllocation(
        {.name = name, .prepare = [] {}, .work = work, .expectAfterFailure = expectAfterFailure});
  };
  EXPECT_GT(fail("labels", [&] { return host.UpdateParamsUi(rig.renderer); }), 0U);
  // These need not allocate at all.
  fail("a set-up", [&] { return add(host.AddRenderer(rig.layer)); });
  fail("a resetup", [&] { return add(host.Duplicate(rig.renderer)); });
  fail("a nudge", [&] { return host.SetParameter(rig.renderer, check::kUpdater, 2); });
  fail("an idle call", [&] {
    CommandResult result;
    result.code = host.Idle();
    return result;
  });
}

CHECK(MemoryAtTheStart, RunningOutReturns4AndTheNextStartGoesWell,
      "Whichever allocation of global set-up fails, the result is 4; once set-up has begun it is "
      "reported to the user and the global data exist all the same. Nothing leaks, and the next "
      "start succeeds.") {
  if (const char* obstacle = AllocationFaults::Obstacle()) {
    GTEST_SKIP() << obstacle;
  }
  std::optional<standin::Host> host;
  int ran = 0;
  const auto expectAfterFailure = [&](const CommandResult& result) {
    EXPECT_EQ(result.code, PF_Err_OUT_OF_MEMORY);
    EXPECT_TRUE(host->ContextIsCurrent());
    // The window layer of a Linux build allocates before set-up begins.
    const bool begun = host->injector.Calls() > 0;
    EXPECT_EQ(host->GlobalData() != nullptr, begun);
    EXPECT_EQ(host->Reports().size(), begun ? 1U : 0U);
    ran += begun ? 1 : 0;
    EndHostInOrder(*host);
    host.emplace(PluginUnderCheck());
    EXPECT_TRUE(host->StartUp().Ok());
    EndHostInOrder(*host);
  };
  EXPECT_GT(FailEachAllocation({.name = "global set-up",
                                .prepare = [&] { host.emplace(PluginUnderCheck()); },
                                .work = [&] { return host->GlobalSetup(); },
                                .expectAfterFailure = expectAfterFailure}),
            0U);
  EXPECT_GT(ran, 0);
  EndHostInOrder(*host);
}

}  // namespace
}  // namespace check::memory
