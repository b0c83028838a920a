// Commands, the bracket around those that touch OpenGL, and what reaches the host of an exception.

#include <cmath>
#include <cstring>
#include <vector>

#include "host/parameters.h"
#include "tests/plugin/plugin_fixture.h"

namespace {

using standin::CommandResult;
using standin::Failure;
using standin::Host;

using DispatchTest = PluginTest;

TEST_F(DispatchTest, CommandsWithoutHandlerAnswerNothingAndCallNothing) {
  Host& host = StartHost();
  auto& renderer = host.AddRenderer(TheLayer());
  for (const A_long command : {2, 7, 9, 12, 15, 16, 18, 19, 1000, -1}) {
    const auto calls = host.gate.Calls();
    EXPECT_EQ(host.Call(command, &renderer).code, PF_Err_NONE) << command;
    EXPECT_EQ(host.gate.Calls(), calls) << command;
  }
}

TEST_F(DispatchTest, AboutTellsNameVersionAndDescriptionInTwoLines) {
  Host& host = StartHost();
  EXPECT_EQ(host.About().message, "QEZ_Tarvo_renderer, v1.0.3\rIK & rigging.");
}

/// Every command in turn finds no suite at all, so that its handler throws. The host compares its
/// OpenGL context after each call; TearDown asks whether that found anything.
TEST_F(DispatchTest, MissingSuitesComeBackAsBadCallbackParam) {
  Host& host = StartHost();
  auto& renderer = host.AddRenderer(TheLayer());
  CompanionSlot record{};
  PF_UserChangedParamExtra change{1};
  host.gate.FailOperation("AcquireSuite", 1, {}, true);
  EXPECT_EQ(host.About().code, PF_Err_BAD_CALLBACK_PARAM);
  EXPECT_EQ(host.UpdateParamsUi(renderer).code, PF_Err_BAD_CALLBACK_PARAM);
  EXPECT_EQ(host.SendRecord(renderer, &record).code, PF_Err_BAD_CALLBACK_PARAM);
  EXPECT_EQ(host.Call(PF_Cmd_USER_CHANGED_PARAM, &renderer, &change).code,
            PF_Err_BAD_CALLBACK_PARAM);
  EXPECT_EQ(host.AddRenderer(TheLayer()).setup.code, PF_Err_BAD_CALLBACK_PARAM);
  EXPECT_TRUE(host.ContextIsCurrent());
}

/// A code thrown by a callback of the host's, in a handler without a guard of its own.
TEST_F(DispatchTest, ThrownCodesComeBackAsBadCallbackParamWithTheContextRestored) {
  Host& host = StartHost();
  auto& renderer = host.AddRenderer(TheLayer());
  host.AddCompanion(TheLayer(), "Arm");
  CompanionSlot record{};
  for (const char* operation : {"AEGP_GetEffectLayer", "AEGP_GetEffectFlags"}) {
    host.gate.FailOperation(operation, 1, {.code = 13, .throws = true});
    EXPECT_EQ(host.SendRecord(renderer, &record).code, PF_Err_BAD_CALLBACK_PARAM) << operation;
    EXPECT_EQ(host.gate.Injected(operation), 1U);
    EXPECT_TRUE(host.ContextIsCurrent()) << operation;
  }
}

TEST_F(DispatchTest, AHostWithoutAContextOfItsOwnHasNoneAfterwards) {
  Host& host = StartHost({.ownContext = false});
  auto& renderer = host.AddRenderer(TheLayer());
  EXPECT_TRUE(host.Render(renderer).command.Ok());
  EXPECT_TRUE(host.ContextIsCurrent());
}

struct DeclaredCase {
  int index;
  const char* label;
  PF_ParamType type;
  PF_ParamFlags flags;
  double value;
};

TEST_F(DispatchTest, ParametersAreDeclaredInOrder) {
  Host& host = StartHost();
  const auto& parameters = host.DeclaredParameters();
  ASSERT_EQ(parameters.size(), 54U);
  const DeclaredCase cases[] = {
      {1, "Bone 1 start Z", PF_Param_FLOAT_SLIDER, 64, 0},
      {2, "Bone 1 end Z", PF_Param_FLOAT_SLIDER, 64, 0},
      {3, "Bone 2 start Z", PF_Param_FLOAT_SLIDER, 64, -1},
      {49, "Bone 25 start Z", PF_Param_FLOAT_SLIDER, 64, -24},
      {50, "Bone 25 end Z", PF_Param_FLOAT_SLIDER, 64, -24},
      {51, "Hidden", PF_Param_CHECKBOX, 64, 0},
      {52, "Updater:", PF_Param_POPUP, 66, 1},
      {53, "Fast transparency", PF_Param_CHECKBOX, 0, 1},
  };
  for (const DeclaredCase& expected : cases) {
    const auto& parameter = parameters[static_cast<std::size_t>(expected.index)];
    EXPECT_EQ(parameter.Name(), expected.label);
    EXPECT_EQ(parameter.definition.uu.id, expected.index);
    EXPECT_EQ(parameter.definition.param_type, expected.type) << expected.label;
    EXPECT_EQ(parameter.definition.flags, expected.flags) << expected.label;
    EXPECT_EQ(parameter.Value(), expected.value) << expected.label;
  }
  EXPECT_TRUE(std::signbit(parameters[1].definition.u.fs_d.value));
  const PF_FloatSliderDef& last = parameters[50].definition.u.fs_d;
  EXPECT_EQ(last.dephault, -24.0F);
  EXPECT_EQ(last.valid_min, -1e9F);
  EXPECT_EQ(last.slider_max, 100.0F);
  EXPECT_EQ(last.curve_tolerance, 0.05F);
  EXPECT_EQ(last.precision, 2);
  EXPECT_STREQ(parameters[52].definition.u.pd.u.namesptr, "...|Update");
  EXPECT_STREQ(parameters[51].definition.u.bd.u.nameptr, "");
}

TEST_F(DispatchTest, ARefusedParameterEndsTheDeclaring) {
  for (const std::uint64_t refused : {1U, 2U, 50U, 51U, 52U, 53U}) {
    Host& host = MakeHost();
    ASSERT_TRUE(host.GlobalSetup().Ok());
    host.gate.FailOperation("add_param", refused, {.code = 77});
    EXPECT_EQ(host.ParamsSetup().code, 77) << refused;
    EXPECT_EQ(host.gate.Calls("add_param"), refused);
    TearDown();
  }
}

}  // namespace
