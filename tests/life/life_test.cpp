// Whole lives in which the host fails: once at every single call, and for good from a call on.

#include "tests/life/life.h"

#include <algorithm>
#include <cstdint>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "entry/entry_point.h"
#include "tests/support/pieces.h"
#include "tests/support/render_target.h"
#include "tests/support/rig.h"

namespace {

using standin::CallRecord;
using standin::Host;
using standin::LifeCycle;
using standin::Picture;
using support::Life;
using support::Step;

/// No life has more calls than this; a loop that gets here does not end.
constexpr std::uint64_t kMostCalls = 5000;
/// Lives are divided among this many tests, so that they can run side by side.
constexpr std::uint64_t kShares = 4;
/// With every call failing from the n-th on, each n would mostly repeat its neighbour's story.
constexpr std::uint64_t kStride = 7;

/// An operation that may fail without the command in which it fails saying so.
struct Harmless {
  std::string_view operation;  ///< empty: any
  std::string_view command;    ///< empty: any
  const char* reason;
};

constexpr Harmless kHarmless[] = {
    {"", "idle", "the hook's result is that of the end of its quiet section, whatever was in it"},
    {"get_platform_data", "PF_Cmd_GLOBAL_SETUP",
     "the files that it helps to name are never opened"},
    {"host_lock_handle", "PF_Cmd_GLOBAL_SETUP", "without a lock: no global data, and no error"},
    {"host_lock_handle", "PF_Cmd_SEQUENCE_SETUP", "without a lock: no store, and no error"},
    {"host_new_handle", "PF_Cmd_SEQUENCE_RESETUP", "without memory the old store stays"},
    {"host_new_handle", "PF_Cmd_RENDER", "a map is left out; a frame that is not read stays empty"},
    {"host_lock_handle", "PF_Cmd_RENDER", "as without memory"},
    {"get_pixel_data8", "PF_Cmd_RENDER", "a frame that cannot be written down stays empty"},
    {"dispose_world", "PF_Cmd_SEQUENCE_SETDOWN", "what cannot be given back is nobody's to report"},
    {"AcquireSuite", "PF_Cmd_SEQUENCE_SETDOWN", "the same; or what a closing project is not told"},
    {"ReleaseSuite", "", "there is nothing left to do about it"},
};

bool IsHarmless(const CallRecord& call) {
  return std::ranges::any_of(kHarmless, [&](const Harmless& harmless) {
    return (harmless.operation.empty() || harmless.operation == call.operation) &&
           (harmless.command.empty() || harmless.command == call.command);
  });
}

/// Fired and reported is good. Fired and success is a failure, unless all that failed is harmless;
/// an error out of nothing is one.
void JudgeSteps(const Life& life) {
  for (const Step& step : life.steps) {
    if (step.injected.empty()) {
      EXPECT_TRUE(step.result.Ok()) << step.name << " returned " << step.result.code
                                    << " though nothing failed in it: " << step.result.message;
    }
    if (!step.result.Ok()) continue;
    for (const CallRecord& call : step.injected) {
      EXPECT_TRUE(IsHarmless(call)) << step.name << " succeeded though " << call.operation << "("
                                    << call.arguments << ") failed in " << call.command;
    }
  }
}

/// A misuse that a failure leaves the plug-in no way around.
struct Unavoidable {
  std::string_view failed;  ///< a part of the command and call that failed
  std::string_view misuse;  ///< a part of what the host notes
};

constexpr Unavoidable kUnavoidable[] = {
    // Without the suite that disposes of handles, none can be disposed of; of worlds, neither: but
    // what cannot be given back with an instance must be given back in the end.
    {"AcquireSuite(\"PF Handle Suite\"", "left handle"},
    {"PF_Cmd_GLOBAL_SETDOWN AcquireSuite(\"PF World Suite\"", "left world"},
    // The end of a quiet section is asked for even if its beginning failed.
    {"AEGP_StartQuietErrors(", "AEGP_EndQuietErrors was given null"},
};

/// "PF_Cmd_RENDER fill(…)", for each call that failed in a life.
std::vector<std::string> FailedCalls(const Life& life) {
  std::vector<std::string> calls;
  for (const Step& step : life.steps) {
    for (const CallRecord& call : step.injected) {
      calls.push_back(call.command + " " + call.operation + "(" + call.arguments + ")");
    }
  }
  return calls;
}

bool IsUnavoidable(const Life& life, const std::string& misuse) {
  const auto contains = [](const std::string& text, std::string_view part) {
    return text.find(part) != std::string::npos;
  };
  const std::vector<std::string> failed = FailedCalls(life);
  return std::ranges::any_of(kUnavoidable, [&](const Unavoidable& unavoidable) {
    return contains(misuse, unavoidable.misuse) &&
           std::ranges::any_of(
               failed, [&](const auto& call) { return contains(call, unavoidable.failed); });
  });
}

/// A picture of a fixed small rig on a layer of its own, by a plug-in that is set up.
Picture Probe(Host& host) {
  standin::Layer& layer = host.project.AddComposition("Probe").AddLayer("Probe", 40, 30);
  standin::RendererInstance& renderer = host.AddRenderer(layer);
  for (std::uint32_t seed = 1; seed <= 2; ++seed) {
    standin::Companion& bone = host.AddCompanion(layer, "Probe");
    bone.imageA.Set(support::Pattern(16, 12, seed, 200));
    bone.pieces =
        support::WarpedPieces(seed, 3, {.left = 0, .top = 0, .width = 40, .height = 30}, 16, 12);
    EXPECT_TRUE(host.Send(bone, renderer).command.Ok());
  }
  standin::RenderResult result = host.Render(renderer);
  EXPECT_TRUE(result.command.Ok()) << result.command.code << " " << result.command.message;
  EXPECT_TRUE(host.Remove(renderer).Ok());
  return std::move(result.picture);
}

Picture ProbeOnNewHost() {
  Host host(EntryPointFunc);
  EXPECT_TRUE(host.StartUp().Ok());
  support::ResizeRenderTarget(Life::kTargetSide, Life::kTargetSide);
  Picture picture = Probe(host);
  support::ExpectBalanced(host);
  return picture;
}

/// A life with failures.
class LifeTest : public ::testing::TestWithParam<std::uint64_t> {
 protected:
  void SetUp() override { good_ = ProbeOnNewHost(); }

  /// Lives a life in which the n-th call fails, and judges it; the number of failures in it.
  std::uint64_t LiveWithOneFailure(std::uint64_t n) {
    std::uint64_t injected = 0;
    bool drawn = false;
    {
      Life life;
      life.host.gate.FailNth(n);
      life.Begin();
      drawn = life.host.gate.Injected() > 0 && life.host.State() == LifeCycle::kReady;
      if (drawn) {
        EXPECT_EQ(Probe(life.host), good_);
      }
      life.End();
      injected = Judge(life);
    }
    if (injected > 0 && !drawn) ExpectRecovery();
    return injected;
  }

  /// The same where the n-th call and all after it fail.
  std::uint64_t LiveWithFailuresFrom(std::uint64_t n) {
    std::uint64_t injected = 0;
    {
      Life life;
      life.host.gate.FailFrom(n);
      life.Begin();
      life.End();
      injected = Judge(life);
    }
    if (injected > 0) ExpectRecovery();
    return injected;
  }

 private:
  static std::uint64_t Judge(Life& life) {
    JudgeSteps(life);
    EXPECT_TRUE(life.host.ContextIsCurrent());
    support::ExpectBalanced(life.host,
                            [&](const std::string& misuse) { return IsUnavoidable(life, misuse); });
    return life.host.gate.Injected();
  }

  /// Loaded anew, the plug-in draws as ever.
  void ExpectRecovery() { EXPECT_EQ(ProbeOnNewHost(), good_); }

  Picture good_;
};

TEST_P(LifeTest, SurvivesTheFailureOfAnySingleCall) {
  std::uint64_t n = 1 + GetParam();
  std::uint64_t fired = 0;
  for (; n < kMostCalls && !HasFailure(); n += kShares) {
    SCOPED_TRACE("call " + std::to_string(n));
    const std::uint64_t injected = LiveWithOneFailure(n);
    if (injected == 0) break;
    EXPECT_EQ(injected, 1U);
    ++fired;
  }
  ASSERT_LT(n, kMostCalls);
  std::cout << fired << " lives with one failure each, the last in call " << n - kShares << "\n";
  EXPECT_EQ(fired, (n - 1 - GetParam()) / kShares);
}

TEST_P(LifeTest, SurvivesTheFailureOfAllCallsFromAnyOn) {
  std::uint64_t n = 1 + GetParam() * kStride;
  std::uint64_t lives = 0;
  std::uint64_t fired = 0;
  for (; n < kMostCalls && !HasFailure(); n += kShares * kStride) {
    SCOPED_TRACE("calls from " + std::to_string(n));
    const std::uint64_t injected = LiveWithFailuresFrom(n);
    if (injected == 0) break;
    fired += injected;
    ++lives;
  }
  ASSERT_LT(n, kMostCalls);
  std::cout << lives << " lives with " << fired << " failures\n";
  EXPECT_EQ(lives, (n - 1) / kStride / kShares);
  EXPECT_GT(fired, lives);  // nobody stops at the first
}

INSTANTIATE_TEST_SUITE_P(Share, LifeTest, ::testing::Range(std::uint64_t{0}, kShares));

TEST(Life, WithoutFailuresSucceedsInEveryStep) {
  Life life;
  life.Begin();
  life.End();
  JudgeSteps(life);
  std::cout << life.steps.size() << " steps, " << life.host.gate.Calls() << " host calls, "
            << life.host.gate.FailableCalls() << " of which can fail\n";
  EXPECT_EQ(life.host.gate.Injected(), 0U);
  support::ExpectBalanced(life.host);
}

}  // namespace
