// Whole scenarios in which the host fails: once, by its result or by throwing, twice, and for good
// from a call on.

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "check/support/lifecycle_scenario.h"
#include "check/support/requirement.h"
#include "check/support/rig.h"
#include "check/support/settings.h"

namespace check::fault_injection {
namespace {

using standin::CallRecord;
using standin::PluginState;

/// No scenario has more calls than this; a loop that gets here does not end.
constexpr std::uint64_t kMostCalls = 5000;
/// The scenarios are divided among this many test cases, which can run in parallel.
constexpr std::uint64_t kParts = 4;
/// The code of the second failure of a pair, distinct from the first.
constexpr PF_Err kSecondFailure = 7003;
/// What a command may return after a failure: the host's own codes, memory that ran out (4), and
/// the plug-in's own codes (512, 516, 517).
constexpr PF_Err kResultsOfFailures[] = {standin::kInjectedFailure, kSecondFailure,
                                         PF_Err_OUT_OF_MEMORY,      PF_Err_INTERNAL_STRUCT_DAMAGED,
                                         PF_Err_BAD_CALLBACK_PARAM, PF_Interrupt_CANCEL};
/// A short run takes one call in so many, another one for each seed; a long run takes all.
constexpr std::uint64_t kShortStride = 20;
/// With every call failing from the n-th on, each n would mostly repeat its neighbour's run.
constexpr std::uint64_t kShortStrideOfMany = 80;

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
    {"host_new_handle", "PF_Cmd_RENDER", "a frame that is not read stays empty"},
    {"host_lock_handle", "PF_Cmd_RENDER", "as without memory"},
    {"get_pixel_data8", "PF_Cmd_RENDER", "a frame that cannot be written down stays empty"},
    {"dispose_world", "PF_Cmd_SEQUENCE_SETDOWN", "what cannot be disposed of is not reported"},
    {"dispose_world", "PF_Cmd_GLOBAL_SETDOWN", "the same, of an instance that could not before"},
    {"AcquireSuite", "PF_Cmd_SEQUENCE_SETDOWN",
     "the same; or a closing project, which gets no report"},
    {"ReleaseSuite", "", "there is nothing left to do about it"},
};

bool IsHarmless(const CallRecord& call) {
  return std::ranges::any_of(kHarmless, [&](const Harmless& harmless) {
    return (harmless.operation.empty() || harmless.operation == call.operation) &&
           (harmless.command.empty() || harmless.command == call.command);
  });
}

/// The first failure's code stays unless the plug-in has a code of its own for it: a failed
/// disposal does not hide it.
void ExpectFirstCode(const Step& step) {
  const PF_Err code = step.result.code;
  EXPECT_TRUE(std::ranges::count(kResultsOfFailures, code) == 1) << step.name << ": " << code;
  if (step.injected.size() > 1 && !IsHarmless(step.injected.front())) {
    EXPECT_NE(code, kSecondFailure)
        << step.name << " hides that " << step.injected.front().operation << " failed first";
  }
}

/// Expects an error of a step in which a host call failed, unless every failed call is listed in
/// kHarmless, and success of every other step. Adds the failures that were not reported to
/// `unreported`.
void ExpectStepResults(const LifecycleScenario& scenario, std::uint64_t& unreported) {
  for (const Step& step : scenario.steps) {
    if (step.injected.empty()) {
      EXPECT_TRUE(step.result.Ok()) << step.name << " returned " << step.result.code
                                    << " though nothing failed in it: " << step.result.message;
    } else if (!step.result.Ok()) {
      ExpectFirstCode(step);
    }
    if (!step.result.Ok()) {
      continue;
    }
    unreported += step.injected.size();
    for (const CallRecord& call : step.injected) {
      EXPECT_TRUE(IsHarmless(call)) << step.name << " succeeded though " << call.operation << "("
                                    << call.arguments << ") failed in " << call.command;
    }
  }
}

/// A violation that the plug-in cannot avoid after a failure.
struct Unavoidable {
  std::string_view failed;     ///< a part of the command and call that failed
  std::string_view violation;  ///< a part of what the host notes
};

constexpr Unavoidable kUnavoidable[] = {
    // Without the suite that disposes of handles, none can be disposed of; of worlds, neither: but
    // what cannot be disposed of with an instance must be disposed of at global set-down.
    {"AcquireSuite(\"PF Handle Suite\"", "left handle"},
    {"PF_Cmd_GLOBAL_SETDOWN AcquireSuite(\"PF World Suite\"", "left world"},
    // The end of a quiet section is asked for even if its beginning failed.
    {"AEGP_StartQuietErrors(", "AEGP_EndQuietErrors was given null"},
};

/// "PF_Cmd_RENDER fill(…)", for each call that failed in a scenario.
std::vector<std::string> FailedCalls(const LifecycleScenario& scenario) {
  std::vector<std::string> calls;
  for (const Step& step : scenario.steps) {
    for (const CallRecord& call : step.injected) {
      calls.push_back(call.command + " " + call.operation + "(" + call.arguments + ")");
    }
  }
  return calls;
}

bool IsUnavoidable(const LifecycleScenario& scenario, const std::string& violation) {
  const auto contains = [](const std::string& text, std::string_view part) {
    return text.find(part) != std::string::npos;
  };
  const std::vector<std::string> failed = FailedCalls(scenario);
  return std::ranges::any_of(kUnavoidable, [&](const Unavoidable& unavoidable) {
    return contains(violation, unavoidable.violation) &&
           std::ranges::any_of(
               failed, [&](const auto& call) { return contains(call, unavoidable.failed); });
  });
}

/// The pictures of a scenario without any failure.
Views ViewsOfNewHost() {
  LifecycleScenario scenario;
  EXPECT_TRUE(scenario.Start());
  Views views = scenario.DrawAgain();
  scenario.End();
  std::uint64_t unreported = 0;
  ExpectStepResults(scenario, unreported);
  EndHostInOrder(scenario.host);
  return views;
}

/// Totals of the scenarios of one test case.
struct Tally {
  std::uint64_t scenarios = 0;
  std::uint64_t injected = 0;
  std::uint64_t unreported = 0;  ///< of `injected`: those after which the command succeeded
};

/// Scenarios with injected failures, divided among several test cases.
class FaultInjection : public ::testing::TestWithParam<std::uint64_t> {
 protected:
  enum class Failing { kOne, kOneThrown, kPair, kAllFromOne };

  void SetUp() override { good_ = ViewsOfNewHost(); }

  /// Runs scenario after scenario, `stride` calls further on each time, until a scenario
  /// in which nothing fails.
  void RunAll(Failing failing, std::uint64_t stride) {
    const std::uint64_t first = 1 + TheSettings().seed % stride + GetParam() * stride;
    Tally tally;
    for (std::uint64_t n = first; !HasFailure(); n += kParts * stride) {
      ASSERT_LT(n, kMostCalls);
      SCOPED_TRACE("call " + std::to_string(n));
      const std::uint64_t injected = RunWith(failing, n, tally);
      if (injected == 0) {
        RecordProperty("no failure from call", std::to_string(n));
        break;
      }
      ++tally.scenarios;
      tally.injected += injected;
    }
    EXPECT_GT(tally.scenarios, 0U);
    RecordProperty("scenarios with failures", std::to_string(tally.scenarios));
    RecordProperty("failures injected", std::to_string(tally.injected));
    RecordProperty("of them harmless and not reported", std::to_string(tally.unreported));
  }

  static std::uint64_t StrideOf(std::uint64_t inShort) {
    return TheSettings().failsEveryCall ? 1 : inShort;
  }

 private:
  static void Plan(standin::FaultInjector& injector, Failing failing, std::uint64_t n) {
    switch (failing) {
      case Failing::kOne:
        return injector.FailNth(n);
      case Failing::kOneThrown:
        return injector.FailNth(n, {.throws = true});
      case Failing::kPair:
        return injector.FailPair(n, {}, {.code = kSecondFailure});
      case Failing::kAllFromOne:
        return injector.FailFrom(n);
    }
  }

  /// Runs one scenario with this failure and expects that it was tolerated. Returns the number of
  /// failures in it.
  std::uint64_t RunWith(Failing failing, std::uint64_t n, Tally& tally) {
    std::uint64_t injected = 0;
    bool drawn = false;
    {
      LifecycleScenario scenario;
      standin::FaultInjector& injector = scenario.host.injector;
      Plan(injector, failing, n);
      scenario.Begin();
      drawn = failing != Failing::kAllFromOne && injector.Injected() > 0 &&
              scenario.host.State() == PluginState::kReady;
      if (drawn) {
        injector.FailNothing();
        ExpectGood(scenario.DrawAgain());
      }
      scenario.End();
      ExpectTolerated(scenario, tally);
      injected = injector.Injected();
    }
    if (injected > 0 && !drawn) {  // of the same load
      ExpectGood(ViewsOfNewHost());
    }
    return injected;
  }

  void ExpectGood(const Views& views) const {
    EXPECT_TRUE(views.fast == good_.fast);
    EXPECT_TRUE(views.exact == good_.exact);
  }

  static void ExpectTolerated(LifecycleScenario& scenario, Tally& tally) {
    ExpectStepResults(scenario, tally.unreported);
    EXPECT_TRUE(scenario.host.ContextIsCurrent());
    EndHostInOrder(scenario.host, [&](const std::string& violation) {
      return IsUnavoidable(scenario, violation);
    });
  }

  Views good_;
};

CHECK_P(FaultInjection, OneFailureIsTolerated,
        "When a host call fails in a scenario, it is reported or harmless, nothing leaks, and the "
        "scene, sent again, is drawn correctly in both modes.") {
  RunAll(Failing::kOne, StrideOf(kShortStride));
}

CHECK_P(
    FaultInjection, OneThrownFailureIsTolerated,
    "When a host call throws in a scenario, it is reported or harmless, no exception leaves the "
    "plug-in, nothing leaks, and the scene, sent again, is drawn correctly in both modes.") {
  RunAll(Failing::kOneThrown, StrideOf(kShortStride));
}

CHECK_P(FaultInjection, AFailureAndThenOneInADisposalAreTolerated,
        "When a host call fails and then the next disposal does, the result is not the disposal's, "
        "nothing leaks, and the scene, sent again, is drawn correctly in both modes.") {
  RunAll(Failing::kPair, StrideOf(kShortStride));
}

CHECK_P(FaultInjection, FailureOfAllCallsFromOneOnIsTolerated,
        "When all host calls fail from one on, nothing leaks, and after a new start the scene is "
        "drawn correctly.") {
  RunAll(Failing::kAllFromOne, StrideOf(kShortStrideOfMany));
}

INSTANTIATE_TEST_SUITE_P(, FaultInjection, ::testing::Range(std::uint64_t{0}, kParts));

CHECK(Lifecycle, WithoutFailuresSucceedsInEveryStep,
      "Three instances, two images a bone, changes, idle time and frames in both modes and in "
      "tiles: every step succeeds and nothing leaks.") {
  LifecycleScenario scenario;
  scenario.Begin();
  scenario.End();
  std::uint64_t unreported = 0;
  ExpectStepResults(scenario, unreported);
  EXPECT_EQ(scenario.host.injector.Injected(), 0U);
  RecordProperty("steps", std::to_string(scenario.steps.size()));
  RecordProperty("host calls", std::to_string(scenario.host.injector.Calls()));
  RecordProperty("of them can fail", std::to_string(scenario.host.injector.FailableCalls()));
  EndHostInOrder(scenario.host);
}

}  // namespace
}  // namespace check::fault_injection
