// Whole lives in which the host fails: once at every single call, and for good from a call on.

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "check/support/life.h"
#include "check/support/pieces.h"
#include "check/support/plugin_under_check.h"
#include "check/support/promise.h"
#include "check/support/rig.h"
#include "check/support/settings.h"

namespace {

using check::Life;
using check::Step;
using standin::CallRecord;
using standin::Host;
using standin::LifeCycle;
using standin::Picture;

/// No life has more calls than this; a loop that gets here does not end.
constexpr std::uint64_t kMostCalls = 5000;
/// Lives are divided among this many tests, so that they can run side by side.
constexpr std::uint64_t kShares = 4;
/// The code of the second failure of a pair: told apart from the first.
constexpr PF_Err kSecondFailure = 7003;
/// A short run takes one call in so many, another one for each seed; a long run takes all.
constexpr std::uint64_t kShortStride = 12;
/// With every call failing from the n-th on, each n would mostly repeat its neighbour's story.
constexpr std::uint64_t kLongStrideOfMany = 7;
constexpr std::uint64_t kShortStrideOfMany = 84;

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
void JudgeSteps(const Life& life, std::uint64_t& unreported) {
  for (const Step& step : life.steps) {
    if (step.injected.empty()) {
      EXPECT_TRUE(step.result.Ok()) << step.name << " returned " << step.result.code
                                    << " though nothing failed in it: " << step.result.message;
    }
    if (!step.result.Ok()) continue;
    unreported += step.injected.size();
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
    bone.imageA.Set(check::Pattern(16, 12, seed, 200));
    bone.pieces =
        check::WarpedPieces(seed, 3, {.left = 0, .top = 0, .width = 40, .height = 30}, 16, 12);
    EXPECT_TRUE(host.Send(bone, renderer).command.Ok());
  }
  standin::RenderResult result = host.Render(renderer);
  EXPECT_TRUE(result.command.Ok()) << result.command.code << " " << result.command.message;
  EXPECT_TRUE(host.Remove(renderer).Ok());
  return std::move(result.picture);
}

Picture ProbeOnNewHost() {
  Host host(check::PluginUnderCheck());
  EXPECT_TRUE(host.StartUp().Ok());
  check::TheSettings().afterGlobalSetup();
  Picture picture = Probe(host);
  check::ExpectBalanced(host);
  return picture;
}

/// What came of a share of the lives.
struct Tally {
  std::uint64_t lives = 0;
  std::uint64_t injected = 0;
  std::uint64_t unreported =
      0;  ///< failures after which the command succeeded, all of them harmless
};

/// Lives with failures, divided among several checks.
class Lives : public ::testing::TestWithParam<std::uint64_t> {
 protected:
  enum class Failing { kOne, kPair, kAllFromOne };

  void SetUp() override { good_ = ProbeOnNewHost(); }

  /// Lives life after life, `stride` calls further on each time, until a life in which nothing
  /// fails.
  void LiveAll(Failing failing, std::uint64_t stride) {
    std::uint64_t n = 1 + check::TheSettings().seed % stride + GetParam() * stride;
    Tally tally;
    for (; n < kMostCalls && !HasFailure(); n += kShares * stride) {
      SCOPED_TRACE("call " + std::to_string(n));
      const std::uint64_t injected = LiveWith(failing, n, tally);
      if (injected == 0) break;
      ++tally.lives;
      tally.injected += injected;
    }
    ASSERT_LT(n, kMostCalls);
    EXPECT_GT(tally.lives, 0U);
    RecordProperty("lives with failures", std::to_string(tally.lives));
    RecordProperty("failures injected", std::to_string(tally.injected));
    RecordProperty("of them harmless and not reported", std::to_string(tally.unreported));
    RecordProperty("no failure from call", std::to_string(n));
  }

  static std::uint64_t StrideOf(std::uint64_t inLong, std::uint64_t inShort) {
    return check::TheSettings().failsEveryCall ? inLong : inShort;
  }

 private:
  static void Plan(standin::Gate& gate, Failing failing, std::uint64_t n) {
    switch (failing) {
      case Failing::kOne:
        return gate.FailNth(n);
      case Failing::kPair:
        return gate.FailPair(n, {}, {.code = kSecondFailure});
      case Failing::kAllFromOne:
        return gate.FailFrom(n);
    }
  }

  /// One life, judged; the number of failures in it.
  std::uint64_t LiveWith(Failing failing, std::uint64_t n, Tally& tally) {
    std::uint64_t injected = 0;
    bool drawn = false;
    {
      Life life;
      standin::Gate& gate = life.host.gate;
      Plan(gate, failing, n);
      life.Begin();
      drawn = failing != Failing::kAllFromOne && gate.Injected() > 0 &&
              life.host.State() == LifeCycle::kReady;
      if (drawn) {
        gate.FailNothing();
        EXPECT_EQ(Probe(life.host), good_);
      }
      life.End();
      injected = Judge(life, tally);
    }
    if (injected > 0 && !drawn) {
      EXPECT_EQ(ProbeOnNewHost(), good_);  // loaded anew, as ever
    }
    return injected;
  }

  static std::uint64_t Judge(Life& life, Tally& tally) {
    JudgeSteps(life, tally.unreported);
    EXPECT_TRUE(life.host.ContextIsCurrent());
    check::ExpectBalanced(life.host,
                          [&](const std::string& misuse) { return IsUnavoidable(life, misuse); });
    return life.host.gate.Injected();
  }

  Picture good_;
};

CHECK_P(Lives, SurviveOneFailure,
        "Whichever host call fails in a life, it is reported or harmless, nothing is lost, and the "
        "next frame is as ever.") {
  LiveAll(Failing::kOne, StrideOf(1, kShortStride));
}

CHECK_P(Lives, SurviveAFailureAndThenOneInGivingBack,
        "When a host call fails and then the next disposal does, nothing is lost and the next "
        "frame is as ever.") {
  LiveAll(Failing::kPair, StrideOf(1, kShortStride));
}

CHECK_P(Lives, SurviveTheFailureOfAllCallsFromOneOn,
        "When all host calls fail from any one on, nothing is lost, and a new start is as ever.") {
  LiveAll(Failing::kAllFromOne, StrideOf(kLongStrideOfMany, kShortStrideOfMany));
}

INSTANTIATE_TEST_SUITE_P(, Lives, ::testing::Range(std::uint64_t{0}, kShares));

CHECK(Life, WithoutFailuresSucceedsInEveryStep,
      "Three instances, two images a bone, changes, idle time and frames in both modes and in "
      "tiles: every step succeeds and the books balance.") {
  Life life;
  life.Begin();
  life.End();
  std::uint64_t unreported = 0;
  JudgeSteps(life, unreported);
  EXPECT_EQ(life.host.gate.Injected(), 0U);
  RecordProperty("steps", std::to_string(life.steps.size()));
  RecordProperty("host calls", std::to_string(life.host.gate.Calls()));
  RecordProperty("of them can fail", std::to_string(life.host.gate.FailableCalls()));
  check::ExpectBalanced(life.host);
}

}  // namespace
