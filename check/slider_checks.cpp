// Labels and visibility of the sliders, nudges, the idle hook.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "check/support/host_test.h"
#include "check/support/parameters.h"
#include "check/support/requirement.h"

namespace check::sliders {
namespace {

using standin::Host;
using standin::RendererInstance;

using Sliders = HostTest;
using Nudges = HostTest;
using Idle = HostTest;

std::string Label(const RendererInstance& renderer, int index) {
  return renderer.parameters[static_cast<std::size_t>(index)].Name();
}

/// Of the sliders and "Hidden"; the two controls below them are always shown.
int ShownCount(const RendererInstance& renderer) {
  EXPECT_FALSE(renderer.parameters[kUpdater].Hidden());
  EXPECT_FALSE(renderer.parameters[kFastTransparency].Hidden());
  int shown = 0;
  for (int index = 1; index <= kHidden; ++index) {
    shown += renderer.parameters[static_cast<std::size_t>(index)].Hidden() ? 0 : 1;
  }
  return shown;
}

double ValueOf(const RendererInstance& renderer, int index) {
  return renderer.parameters[static_cast<std::size_t>(index)].Value();
}

CHECK_F(Sliders, FollowTheActiveCompanions,
        "Each active companion has two visible sliders with its name, cut to 31 characters, "
        "without an undo step; unchanged labels are not sent.") {
  Host& host = StartHost();
  auto& arm = host.AddCompanion(TheLayer(), "Arm");
  auto& off = host.AddCompanion(TheLayer(), "Off");
  off.active = false;
  host.AddEffect(TheLayer(), std::string(48, 'x'));  // a match name as long as hosts have them
  auto& renderer = host.AddRenderer(TheLayer());
  host.AddCompanion(TheLayer(), std::string(40, 'x'));
  ASSERT_TRUE(host.UpdateParamsUi(renderer).Ok());
  EXPECT_EQ(ShownCount(renderer), 4);
  EXPECT_EQ(Label(renderer, 1), "Arm start Z");
  EXPECT_EQ(Label(renderer, 2), "Arm end Z");
  EXPECT_EQ(Label(renderer, 3), std::string(31, 'x'));
  EXPECT_EQ(Label(renderer, 5), "Bone 3 start Z");
  EXPECT_EQ(host.injector.Calls("PF_UpdateParamUI"), 4U);
  EXPECT_EQ(renderer.parameters[1].sentUiFlags, PF_PUI_INVISIBLE);

  // Nothing has changed: nothing is sent and nothing set.
  const auto flagsSet = host.injector.Calls("AEGP_SetDynamicStreamFlag");
  EXPECT_EQ(flagsSet, 47U);
  ASSERT_TRUE(host.UpdateParamsUi(renderer).Ok());
  EXPECT_EQ(host.injector.Calls("PF_UpdateParamUI"), 4U);
  EXPECT_EQ(host.injector.Calls("AEGP_SetDynamicStreamFlag"), flagsSet);

  // One name changes; a companion goes, and its sliders keep their labels.
  arm.groupName = "Left arm";
  ASSERT_TRUE(host.UpdateParamsUi(renderer).Ok());
  EXPECT_EQ(host.injector.Calls("PF_UpdateParamUI"), 6U);
  host.Remove(arm);
  ASSERT_TRUE(host.UpdateParamsUi(renderer).Ok());
  EXPECT_EQ(ShownCount(renderer), 2);
  EXPECT_EQ(Label(renderer, 1), std::string(31, 'x'));
  EXPECT_EQ(Label(renderer, 4), std::string(31, 'x'));
  EXPECT_TRUE(host.Changes().empty());
}

CHECK_F(Sliders, AreHiddenWithoutCompanionsAndShownWithMany,
        "Without companions no slider is shown; of more than 25 the first ones have sliders.") {
  Host& host = StartHost();
  auto& renderer = host.AddRenderer(TheLayer());
  ASSERT_TRUE(host.UpdateParamsUi(renderer).Ok());
  EXPECT_EQ(ShownCount(renderer), 0);
  EXPECT_EQ(host.injector.Calls("PF_UpdateParamUI"), 0U);
  for (int bone = 1; bone <= 27; ++bone) {
    host.AddCompanion(TheLayer(), "B" + std::to_string(bone));
  }
  ASSERT_TRUE(host.UpdateParamsUi(renderer).Ok());
  EXPECT_EQ(ShownCount(renderer), 51);
  EXPECT_EQ(Label(renderer, 50), "B25 end Z");
  EXPECT_EQ(Label(renderer, 51), "B26 start Z");
  EXPECT_EQ(Label(renderer, 52), "Updater:");
}

CHECK_F(Sliders, StayAsTheyAreWithoutAReference,
        "Where the host has no reference to the instance, its sliders stay as they are.") {
  Host& host = StartHost();
  auto& renderer = host.AddRenderer(TheLayer());
  host.AddCompanion(TheLayer(), "Arm");
  renderer.withoutReference = true;
  EXPECT_TRUE(host.UpdateParamsUi(renderer).Ok());
  EXPECT_EQ(ShownCount(renderer), 51);
  EXPECT_EQ(Label(renderer, 1), "Bone 1 start Z");
}

CHECK_F(Sliders, StopAtTheFirstFailure,
        "A host failure during the labelling ends it, and its code is the result.") {
  const struct {
    const char* operation;
    std::uint64_t occurrence = 1;
    std::uint64_t flagsSet = 0;
    std::uint64_t labelsSent = 0;
  } cases[] = {{"AEGP_GetEffectLayer"},
               {"AEGP_GetLayerNumEffects"},
               {"AEGP_GetLayerEffectByIndex"},
               {"AEGP_GetInstalledKeyFromLayerEffect"},
               {"AEGP_GetEffectMatchName"},
               {"AEGP_GetEffectFlags"},
               {"AEGP_GetNewEffectStreamByIndex"},
               {"AEGP_GetNewParentStreamRef"},
               {"AEGP_GetStreamName"},
               {"AEGP_DisposeStream", 2},
               {"AEGP_DisposeEffect"},
               {"AEGP_GetNewEffectForEffect"},
               {"AEGP_GetNewEffectStreamByIndex", 2 + 10, 9 - 4},
               {"AEGP_GetDynamicStreamFlags", 10, 9 - 4},
               {"AEGP_SetDynamicStreamFlag", 6, 6},
               {"AEGP_DisposeStream", 2 * 2 + 10, 10 - 4},
               {"PF_UpdateParamUI", 3, 47, 3}};
  for (const auto& [operation, occurrence, flagsSet, labelsSent] : cases) {
    SCOPED_TRACE(std::string(operation) + " " + std::to_string(occurrence));
    Host& host = StartHost();
    host.AddCompanion(TheLayer(), "A");
    host.AddCompanion(TheLayer(), "B");
    auto& renderer = host.AddRenderer(TheLayer());
    host.injector.FailOperation(operation, occurrence, {.code = 47});
    EXPECT_EQ(host.UpdateParamsUi(renderer).code, 47);
    EXPECT_EQ(host.injector.Injected(operation), 1U);
    EXPECT_EQ(host.injector.Calls("AEGP_SetDynamicStreamFlag"), flagsSet);
    EXPECT_EQ(host.injector.Calls("PF_UpdateParamUI"), labelsSent);
    EndHost();
  }
}

CHECK_F(Nudges, ReachEachActiveCompanionOnce,
        "Each change of a slider increments parameter 89 of every active companion.") {
  Host& host = StartHost();
  auto& first = host.AddCompanion(TheLayer(), "A");
  auto& off = host.AddCompanion(TheLayer(), "B");
  auto& renderer = host.AddRenderer(TheLayer());
  auto& last = host.AddCompanion(TheLayer(), "C");
  off.active = false;
  first.parameters[standin::kNudgeParameter].SetValue(999);
  ASSERT_TRUE(host.SetParameter(renderer, 1, 2.5).Ok());
  EXPECT_EQ(first.NudgeCounter(), 0);
  EXPECT_EQ(off.NudgeCounter(), 0);
  EXPECT_EQ(last.NudgeCounter(), 1);
  ASSERT_TRUE(host.SetParameter(renderer, kUpdater, 2).Ok());
  EXPECT_EQ(last.NudgeCounter(), 2);
  EXPECT_EQ(ValueOf(renderer, kUpdater), 1);
  ASSERT_TRUE(host.SetParameter(renderer, kFastTransparency, 0).Ok());
  EXPECT_EQ(last.NudgeCounter(), 2);
}

CHECK_F(Nudges, StopAtACompanionThatCannotBeNudged,
        "A nudge that the host refuses ends the nudging, and its code is the result.") {
  for (const char* operation : {"AEGP_GetNewEffectStreamByIndex", "AEGP_GetNewStreamValue",
                                "AEGP_SetStreamValue", "AEGP_DisposeStreamValue"}) {
    Host& host = StartHost();
    host.AddCompanion(TheLayer(), "A");
    auto& last = host.AddCompanion(TheLayer(), "B");
    auto& renderer = host.AddRenderer(TheLayer());
    host.injector.FailOperation(operation, 1, {.code = 44});
    EXPECT_EQ(host.SetParameter(renderer, kUpdater, 2).code, 44) << operation;
    EXPECT_EQ(last.NudgeCounter(), 0) << operation;
    EXPECT_EQ(ValueOf(renderer, kUpdater), 2) << operation;
    EndHost();
  }
}

/// Such a host is not asked for the parameters of no effect, either.
CHECK_F(Nudges, AreSentWithoutAReferenceToTheEffect,
        "Without a reference to the effect itself, the updater still nudges the companions.") {
  Host& host = StartHost();
  auto& companion = host.AddCompanion(TheLayer(), "A");
  auto& renderer = host.AddRenderer(TheLayer());
  renderer.withoutReference = true;
  EXPECT_TRUE(host.SetParameter(renderer, kUpdater, 2).Ok());
  EXPECT_EQ(companion.NudgeCounter(), 1);
}

CHECK_F(Nudges, CountInWholeNumbersModuloAThousand,
        "Whatever value parameter 89 of a companion has, a nudge continues in whole numbers below "
        "a thousand.") {
  Host& host = StartHost();
  auto& companion = host.AddCompanion(TheLayer(), "A");
  auto& renderer = host.AddRenderer(TheLayer());
  const double cases[][2] = {{999, 0},
                             {5, 6},
                             {3.7, 4},
                             {-5, -4},
                             {-1.5, 0},
                             {-2001, 0},
                             {-1502, -501},
                             {1e300, 647},
                             {-1e9, -999},
                             {-1e300, -648},
                             {std::numeric_limits<double>::quiet_NaN(), 0}};
  for (const auto& [before, after] : cases) {
    companion.parameters[standin::kNudgeParameter].SetValue(before);
    ASSERT_TRUE(host.SetParameter(renderer, 1, 2.5).Ok());
    EXPECT_EQ(companion.NudgeCounter(), after) << before;
  }
}

CHECK_F(Idle, SetsHiddenInOneUnnamedUndoGroup,
        "The first idle call after a set-up sets \"Hidden\" in every instance, as one undo "
        "step.") {
  Host& host = StartHost();
  auto& below = host.project.ActiveComposition()->AddLayer("Below", 10, 10);
  auto& renderer = host.AddRenderer(TheLayer());
  host.AddEffect(below, std::string(47, 'x'));  // a match name as long as hosts have them
  auto& other = host.AddRenderer(below);
  other.active = false;  // inactive ones count too
  ASSERT_EQ(host.Idle(), A_Err_NONE);
  EXPECT_EQ(ValueOf(renderer, kHidden), 1);
  EXPECT_EQ(ValueOf(other, kHidden), 1);
  EXPECT_EQ(host.UndoGroups(), std::vector<std::string>{""});
  ASSERT_EQ(host.Changes().size(), 2U);
  EXPECT_TRUE(host.Changes()[0].inUndoGroup && host.Changes()[1].inUndoGroup);

  // Quiet until the next set-up; then what is on already is not written again.
  const auto calls = host.injector.Calls();
  ASSERT_EQ(host.Idle(), A_Err_NONE);
  EXPECT_EQ(host.injector.Calls(), calls);
  auto& third = host.AddRenderer(TheLayer());
  ASSERT_EQ(host.Idle(), A_Err_NONE);
  EXPECT_EQ(ValueOf(third, kHidden), 1);
  EXPECT_EQ(host.Changes().size(), 3U);
}

CHECK_F(Idle, WorkComesAgainAfterEverySetUp,
        "Each new instance, each copy and each opened project causes the idle work once.") {
  Host& host = StartHost();
  auto& renderer = host.AddRenderer(TheLayer());
  const std::function<void()> setUps[] = {[&] { host.AddRenderer(TheLayer()); },
                                          [&] { host.Duplicate(renderer); },
                                          [&] { host.SaveAndReopen(); }};
  for (const std::function<void()>& setUp : setUps) {
    for (const double expected : {1, 0}) {
      if (expected == 1) {
        setUp();
      }
      renderer.parameters[kHidden].SetValue(0);
      EXPECT_EQ(host.Idle(), A_Err_NONE);
      EXPECT_EQ(ValueOf(renderer, kHidden), expected) << &setUp - setUps;
    }
  }
}

/// The idle hook gets no records: it uses the suites of the latest command.
CHECK_F(Idle, WorkUsesTheSuitesOfTheLatestCommand,
        "Idle work uses the basic suite of the latest command.") {
  Host& host = StartHost();
  auto& renderer = host.AddRenderer(TheLayer());
  constexpr A_long kUnknownCommand = 18;
  SPBasicSuite moved{};
  moved.AcquireSuite = [](const char*, std::int32_t, const void**) -> SPErr { return 1; };
  PF_InData in = host.InputRecord(&renderer);
  in.pica_basicP = &moved;
  PF_OutData out{};
  host.CallWith(kUnknownCommand, in, out, nullptr, nullptr, nullptr);
  const auto calls = host.injector.Calls();
  EXPECT_EQ(host.Idle(), PF_Err_BAD_CALLBACK_PARAM);
  EXPECT_EQ(host.injector.Calls(), calls);
  EXPECT_TRUE(host.Call(kUnknownCommand, nullptr).Ok());
}

CHECK_F(Idle, WorkIsNotRetriedWithoutAComposition,
        "Where no composition is active, the idle work is not retried.") {
  for (const int what : {0, 1, 2}) {
    Host& host = StartHost();
    auto& renderer = host.AddRenderer(TheLayer());
    auto* const composition = host.project.ActiveComposition();
    if (what == 0) {
      host.project.ActivateNothing();
    }
    if (what == 1) {
      host.project.ActivateFootage();
    }
    if (what == 2) {
      host.project.open = false;
    }
    EXPECT_EQ(host.Idle(), A_Err_NONE) << what;
    host.project.open = true;
    host.project.Activate(*composition);
    EXPECT_EQ(host.Idle(), A_Err_NONE);
    EXPECT_EQ(ValueOf(renderer, kHidden), 0) << what;
    EndHost();
  }
}

/// Errors inside a quiet section count only as far as its end says so; the counter goes on.
CHECK_F(Idle, ErrorsEndWithTheirQuietSection,
        "Errors in idle time count as far as the end of their quiet section says so, and the work "
        "is not repeated.") {
  const struct {
    const char* operation;
    std::uint64_t occurrence;
    A_Err expected;
  } cases[] = {
      {"AEGP_GetNumProjects", 1, 71}, {"AEGP_GetActiveItem", 1, 0},
      {"AEGP_GetItemType", 1, 0},     {"AEGP_GetCompFromItem", 1, 0},
      {"AEGP_EndQuietErrors", 1, 71}, {"AEGP_GetCompNumLayers", 1, 0},
      {"AEGP_StartUndoGroup", 1, 0},  {"AEGP_GetNewStreamValue", 1, 0},
      {"AEGP_SetStreamValue", 1, 0},  {"AEGP_EndUndoGroup", 1, 0},
      {"AEGP_EndQuietErrors", 2, 71}, {"AcquireSuite", 1, PF_Err_BAD_CALLBACK_PARAM},
  };
  for (const auto& [operation, occurrence, expected] : cases) {
    Host& host = StartHost();
    host.AddRenderer(TheLayer());
    host.injector.FailOperation(operation, occurrence, {.code = 71});
    EXPECT_EQ(host.Idle(), expected) << operation;
    EXPECT_EQ(host.injector.Injected(operation), 1U) << operation;
    const auto calls = host.injector.Calls();
    EXPECT_EQ(host.Idle(), A_Err_NONE) << operation;
    EXPECT_EQ(host.injector.Calls(), calls) << operation;
    EndHost();
  }
}

}  // namespace
}  // namespace check::sliders
