// Commands, the bracket around those that touch OpenGL, and what reaches the host of an exception.

#include "check/support/host_test.h"
#include "check/support/promise.h"

namespace check::commands {
namespace {

using standin::CommandResult;
using standin::Failure;
using standin::Host;

using Commands = HostTest;

CHECK_F(Commands, UnknownOnesAnswerNothingAndCallNothing,
        "A command that the plug-in does not know succeeds and calls nothing of the host.") {
  Host& host = StartHost();
  auto& renderer = host.AddRenderer(TheLayer());
  for (const A_long command : {2, 7, 9, 12, 15, 16, 18, 19, 1000, -1}) {
    const auto calls = host.gate.Calls();
    EXPECT_EQ(host.Call(command, &renderer).code, PF_Err_NONE) << command;
    EXPECT_EQ(host.gate.Calls(), calls) << command;
  }
}

CHECK_F(Commands, AboutTellsNameAndVersion, "About tells name, version and trade in two lines.") {
  Host& host = StartHost();
  EXPECT_EQ(host.About().message, "QEZ_Tarvo_renderer, v1.0.3\rIK & rigging.");
}

/// Every command in turn finds no suite at all, so that its handler throws. The host compares its
/// OpenGL context after each call; TearDown asks whether that found anything.
CHECK_F(Commands, MissingSuitesComeBackAsBadCallbackParam,
        "Without any suite each command returns 516, and the context is handed back.") {
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
CHECK_F(Commands, ThrownCodesComeBackAsBadCallbackParam,
        "A code that the host throws comes back as 516, with the context handed back.") {
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

CHECK_F(Commands, AHostWithoutAContextHasNoneAfterwards,
        "Where no OpenGL context was current before a command, none is after it.") {
  Host& host = StartHost({.ownContext = false});
  auto& renderer = host.AddRenderer(TheLayer());
  EXPECT_TRUE(host.Render(renderer).command.Ok());
  EXPECT_TRUE(host.ContextIsCurrent());
}

}  // namespace
}  // namespace check::commands
