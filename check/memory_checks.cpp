// Memory that runs out in the plug-in.

#include <cstdint>
#include <functional>
#include <string>

#include "check/support/allocation_faults.h"
#include "check/support/parameters.h"
#include "check/support/pieces.h"
#include "check/support/promise.h"
#include "check/support/rig.h"
#include "standin/books.h"

namespace {

using check::AllocationFaults;
using standin::CommandResult;
using standin::Picture;

constexpr std::uint64_t kMostAllocations = 1000;
constexpr check::Box kMemoryArea{.left = 0, .top = 0, .width = 80, .height = 60};

class Memory : public check::RigTest {
 protected:
  void SetUp() override {
    if (const char* obstacle = AllocationFaults::Obstacle()) GTEST_SKIP() << obstacle;
    for (std::uint32_t bone = 0; bone < 3; ++bone) {
      rig.AddBone(check::Pattern(16, 12, bone), check::WarpedPieces(bone, 3, kMemoryArea, 16, 12));
    }
    rig.SetFast(false);
    rig.Send();
    good = rig.Render().picture;
  }

  /// Lets every allocation of `work` fail in turn, until none does; looks at each with `judge`.
  void FailEach(const std::function<CommandResult()>& work,
                const std::function<void(const CommandResult&)>& judge) {
    std::uint64_t n = 1;
    for (; n < kMostAllocations && !HasFailure(); ++n) {
      SCOPED_TRACE("allocation " + std::to_string(n));
      CommandResult result;
      bool fired = false;
      {
        const AllocationFaults faults(n);
        result = work();
        fired = faults.Fired();
      }
      EXPECT_TRUE(rig.host.ContextIsCurrent());
      if (!fired) {
        EXPECT_TRUE(result.Ok()) << result.code;
        break;
      }
      judge(result);
    }
    EXPECT_GT(n, 1U);
    ASSERT_LT(n, kMostAllocations);
    RecordProperty("allocations that failed", std::to_string(n - 1));
  }

  Picture good;
};

CHECK_F(Memory, RunningOutInARenderLeavesATransparentFrame,
        "Whichever allocation of a render fails, the frame is transparent, nothing is lost, and "
        "the next frame is as ever.") {
  Picture picture;
  FailEach(
      [&] {
        standin::RenderResult result = rig.host.Render(rig.renderer);
        picture = std::move(result.picture);
        return result.command;
      },
      [&](const CommandResult& result) {
        EXPECT_EQ(result.code, PF_Err_NONE);
        EXPECT_EQ(picture.pixels, Picture(good.width, good.height).pixels);
        EXPECT_EQ(rig.Render().picture, good);
      });
}

CHECK_F(Memory, RunningOutInAnIntakeReturns4AndLosesNothing,
        "Whichever allocation of an intake fails, the result is 4, no world is lost, and the same "
        "message then goes well.") {
  standin::Companion& bone = *rig.ActiveCompanions().front();
  const std::size_t worlds = rig.host.books.Count(standin::Kind::kWorld);
  FailEach(
      [&] {
        bone.SendImagesAgain();
        bone.pieces.push_back(bone.pieces.back());  // the message grows: room has to be found
        return rig.host.Send(bone, rig.renderer).command;
      },
      [&](const CommandResult& result) {
        EXPECT_EQ(result.code, PF_Err_OUT_OF_MEMORY);
        bone.pieces.pop_back();
        EXPECT_EQ(rig.Render().picture, good);
        EXPECT_EQ(rig.host.books.Count(standin::Kind::kWorld), worlds);
      });
}

CHECK_F(Memory, RunningOutInTheFirstIntakeReturns4AndLosesNothing,
        "The same holds for the first message that an instance gets.") {
  standin::Companion& bone = *rig.ActiveCompanions().front();
  standin::RendererInstance* fresh = nullptr;
  FailEach(
      [&] {
        fresh = &rig.host.AddRenderer(rig.layer);
        bone.SendImagesAgain();
        return rig.host.Send(bone, *fresh).command;
      },
      [&](const CommandResult& result) {
        EXPECT_EQ(result.code, PF_Err_OUT_OF_MEMORY);
        for (standin::Companion* each : rig.ActiveCompanions()) {
          each->SendImagesAgain();
          EXPECT_TRUE(rig.host.Send(*each, *fresh).command.Ok());
        }
        EXPECT_TRUE(rig.host.SetParameter(*fresh, check::kFastTransparency, 0).Ok());
        EXPECT_EQ(rig.host.Render(*fresh).picture, good);
        EXPECT_TRUE(rig.host.Remove(*fresh).Ok());
      });
  EXPECT_TRUE(rig.host.Remove(*fresh).Ok());
}

}  // namespace
