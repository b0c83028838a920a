// Labels and visibility of the sliders, nudges, the idle hook; the order of drawing.

#include <limits>
#include <string>
#include <vector>

#include "companion/parameter_change.h"
#include "host/parameters.h"
#include "host/process.h"
#include "render/draw_list.h"
#include "tests/plugin/plugin_fixture.h"

namespace {

using standin::Companion;
using standin::Host;
using standin::RendererInstance;

class CompanionTest : public PluginTest {
 protected:
  static std::string Label(const RendererInstance& renderer, int index) {
    return renderer.parameters[static_cast<std::size_t>(index)].Name();
  }

  static int ShownCount(const RendererInstance& renderer) {
    int shown = 0;
    for (int index = 1; index <= tarvo::PARAM_HIDDEN; ++index) {
      shown += renderer.parameters[static_cast<std::size_t>(index)].Hidden() ? 0 : 1;
    }
    return shown;
  }

  static double Value(const RendererInstance& renderer, int index) {
    return renderer.parameters[static_cast<std::size_t>(index)].Value();
  }
};

TEST_F(CompanionTest, SlidersFollowTheSwitchedOnCompanions) {
  Host& host = StartHost();
  auto& arm = host.AddCompanion(TheLayer(), "Arm");
  auto& off = host.AddCompanion(TheLayer(), "Off");
  off.active = false;
  host.AddEffect(TheLayer(), "Blur");
  auto& renderer = host.AddRenderer(TheLayer());
  host.AddCompanion(TheLayer(), std::string(31, 'x'));
  ASSERT_TRUE(host.UpdateParamsUi(renderer).Ok());
  EXPECT_EQ(ShownCount(renderer), 4);
  EXPECT_EQ(Label(renderer, 1), "Arm start Z");
  EXPECT_EQ(Label(renderer, 2), "Arm end Z");
  EXPECT_EQ(Label(renderer, 3), std::string(31, 'x'));
  EXPECT_EQ(Label(renderer, 5), "Bone 3 start Z");
  EXPECT_EQ(host.gate.Calls("PF_UpdateParamUI"), 4U);
  EXPECT_NE(renderer.parameters[1].definition.ui_flags & PF_PUI_INVISIBLE, 0);

  // Nothing has changed: nothing is sent and nothing set.
  const auto flagsSet = host.gate.Calls("AEGP_SetDynamicStreamFlag");
  EXPECT_EQ(flagsSet, 47U);
  ASSERT_TRUE(host.UpdateParamsUi(renderer).Ok());
  EXPECT_EQ(host.gate.Calls("PF_UpdateParamUI"), 4U);
  EXPECT_EQ(host.gate.Calls("AEGP_SetDynamicStreamFlag"), flagsSet);

  // One name changes; a companion goes, and its sliders keep their labels.
  arm.groupName = "Left arm";
  ASSERT_TRUE(host.UpdateParamsUi(renderer).Ok());
  EXPECT_EQ(host.gate.Calls("PF_UpdateParamUI"), 6U);
  host.Remove(arm);
  ASSERT_TRUE(host.UpdateParamsUi(renderer).Ok());
  EXPECT_EQ(ShownCount(renderer), 2);
  EXPECT_EQ(Label(renderer, 1), std::string(31, 'x'));
  EXPECT_EQ(Label(renderer, 4), std::string(31, 'x'));
}

TEST_F(CompanionTest, WithoutCompanionsEverySliderIsHiddenAndWithManyNoneIs) {
  Host& host = StartHost();
  auto& renderer = host.AddRenderer(TheLayer());
  ASSERT_TRUE(host.UpdateParamsUi(renderer).Ok());
  EXPECT_EQ(ShownCount(renderer), 0);
  EXPECT_EQ(host.gate.Calls("PF_UpdateParamUI"), 0U);
  for (int bone = 1; bone <= 27; ++bone) {
    host.AddCompanion(TheLayer(), "B" + std::to_string(bone));
  }
  ASSERT_TRUE(host.UpdateParamsUi(renderer).Ok());
  EXPECT_EQ(ShownCount(renderer), 51);
  EXPECT_EQ(Label(renderer, 50), "B25 end Z");
  EXPECT_EQ(Label(renderer, 51), "B26 start Z");
  EXPECT_EQ(Label(renderer, 52), "Updater:");
}

TEST_F(CompanionTest, WithoutAReferenceToItselfTheSlidersStayAsTheyAre) {
  Host& host = StartHost();
  auto& renderer = host.AddRenderer(TheLayer());
  host.AddCompanion(TheLayer(), "Arm");
  renderer.withoutReference = true;
  EXPECT_TRUE(host.UpdateParamsUi(renderer).Ok());
  EXPECT_EQ(ShownCount(renderer), 51);
  EXPECT_EQ(Label(renderer, 1), "Bone 1 start Z");
}

TEST_F(CompanionTest, EveryChangeNudgesEachSwitchedOnCompanionOnce) {
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
  ASSERT_TRUE(host.SetParameter(renderer, tarvo::PARAM_UPDATER, 2).Ok());
  EXPECT_EQ(last.NudgeCounter(), 2);
  EXPECT_EQ(Value(renderer, tarvo::PARAM_UPDATER), 1);
  ASSERT_TRUE(host.SetParameter(renderer, tarvo::PARAM_FAST_TRANSPARENCY, 0).Ok());
  EXPECT_EQ(last.NudgeCounter(), 2);
}

TEST_F(CompanionTest, ACompanionThatCannotBeNudgedStopsTheNudging) {
  for (const char* operation : {"AEGP_GetNewEffectStreamByIndex", "AEGP_GetNewStreamValue",
                                "AEGP_SetStreamValue", "AEGP_DisposeStreamValue"}) {
    Host& host = StartHost();
    host.AddCompanion(TheLayer(), "A");
    auto& last = host.AddCompanion(TheLayer(), "B");
    auto& renderer = host.AddRenderer(TheLayer());
    host.gate.FailOperation(operation, 1, {.code = 44});
    EXPECT_EQ(host.SetParameter(renderer, tarvo::PARAM_UPDATER, 2).code, 44) << operation;
    EXPECT_EQ(last.NudgeCounter(), 0) << operation;
    EXPECT_EQ(Value(renderer, tarvo::PARAM_UPDATER), 2) << operation;
    TearDown();
  }
}

TEST(NudgeTest, CountsInWholeNumbersModuloAThousand) {
  const double cases[][2] = {{999, 0},   {5, 6},        {3.7, 4},     {-5, -4},     {-1.5, 0},
                             {-2001, 0}, {-1502, -501}, {1e300, 647}, {-1e9, -999}, {-1e300, -648}};
  for (const auto& [before, after] : cases) EXPECT_EQ(tarvo::Nudged(before), after) << before;
  EXPECT_EQ(tarvo::Nudged(std::numeric_limits<double>::quiet_NaN()), 0);
}

TEST_F(CompanionTest, TheFirstIdleCallSwitchesHiddenOnInOneNamelessUndoGroup) {
  Host& host = StartHost();
  auto& below = host.project.ActiveComposition()->AddLayer("Below", 10, 10);
  auto& renderer = host.AddRenderer(TheLayer());
  auto& other = host.AddRenderer(below);
  other.active = false;  // switched off counts too
  ASSERT_EQ(host.Idle(), A_Err_NONE);
  EXPECT_EQ(Value(renderer, tarvo::PARAM_HIDDEN), 1);
  EXPECT_EQ(Value(other, tarvo::PARAM_HIDDEN), 1);
  EXPECT_EQ(host.UndoGroups(), std::vector<std::string>{""});
  ASSERT_EQ(host.Changes().size(), 2U);
  EXPECT_TRUE(host.Changes()[0].inUndoGroup && host.Changes()[1].inUndoGroup);

  // Quiet until the next set-up; then what is on already is not written again.
  const auto calls = host.gate.Calls();
  ASSERT_EQ(host.Idle(), A_Err_NONE);
  EXPECT_EQ(host.gate.Calls(), calls);
  auto& third = host.AddRenderer(TheLayer());
  ASSERT_EQ(host.Idle(), A_Err_NONE);
  EXPECT_EQ(Value(third, tarvo::PARAM_HIDDEN), 1);
  EXPECT_EQ(host.Changes().size(), 3U);
}

TEST_F(CompanionTest, WithoutAnActiveCompositionTheIdleWorkIsNotRetried) {
  for (const int what : {0, 1, 2}) {
    Host& host = StartHost();
    auto& renderer = host.AddRenderer(TheLayer());
    auto* const composition = host.project.ActiveComposition();
    if (what == 0) host.project.ActivateNothing();
    if (what == 1) host.project.ActivateFootage();
    if (what == 2) host.project.open = false;
    EXPECT_EQ(host.Idle(), A_Err_NONE) << what;
    host.project.open = true;
    host.project.Activate(*composition);
    EXPECT_EQ(host.Idle(), A_Err_NONE);
    EXPECT_EQ(Value(renderer, tarvo::PARAM_HIDDEN), 0) << what;
    TearDown();
  }
}

/// Errors inside a quiet section count only as far as its end says so; the counter goes on.
TEST_F(CompanionTest, IdleErrorsEndWithTheirQuietSection) {
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
    host.gate.FailOperation(operation, occurrence, {.code = 71});
    EXPECT_EQ(host.Idle(), expected) << operation;
    EXPECT_EQ(host.gate.Injected(operation), 1U) << operation;
    EXPECT_EQ(tarvo::gIdleTicks, 1U) << operation;
    TearDown();
  }
}

// ---- Order of drawing

TEST(SortTest, EqualDepthsKeepTheOrderOfThePartition) {
  // Worked by hand: [1a 1b] exchanges its two, [1a 1b 1c] its outer two.
  const auto order = [](std::vector<double> depths) {
    std::vector<tarvo::DrawPiece> pieces;
    for (const double depth : depths) pieces.push_back({nullptr, depth, pieces.size(), {}});
    tarvo::SortByFallingDepth(pieces);
    std::vector<std::size_t> places;
    for (const auto& piece : pieces) places.push_back(piece.slot);
    return places;
  };
  using Places = std::vector<std::size_t>;
  EXPECT_EQ(order({}), Places{});
  EXPECT_EQ(order({7}), Places{0});
  EXPECT_EQ(order({1, 1}), (Places{1, 0}));
  EXPECT_EQ(order({1, 1, 1}), (Places{2, 1, 0}));
  EXPECT_EQ(order({1, 3, 2}), (Places{1, 2, 0}));
  // Worked with pencil and paper, as are the two below.
  EXPECT_EQ(order({1, 2, 1, 2}), (Places{3, 1, 0, 2}));
  EXPECT_EQ(order({2, 2, 1, 1, 2}), (Places{4, 1, 0, 3, 2}));
  EXPECT_EQ(order({5, 1, 5, 1, 5, 1, 5}), (Places{2, 4, 0, 6, 5, 1, 3}));
}

}  // namespace
