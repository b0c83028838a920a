// Commands, the bracket around those that touch OpenGL, and what reaches the host of an exception.

#include <algorithm>
#include <string>
#include <thread>
#include <vector>

#include "check/support/host_test.h"
#include "check/support/parameters.h"
#include "check/support/pieces.h"
#include "check/support/requirement.h"

namespace check::commands {
namespace {

using standin::CommandResult;
using standin::Failure;
using standin::Host;

using Commands = HostTest;

CHECK_F(Commands, UnknownOnesReturnNothingAndCallNothing,
        "An unknown command succeeds and makes no host call.") {
  Host& host = StartHost();
  auto& renderer = host.AddRenderer(TheLayer());
  for (const A_long command : {2, 7, 9, 12, 15, 16, 18, 19, 1000, -1}) {
    const auto calls = host.injector.Calls();
    EXPECT_EQ(host.Call(command, &renderer).code, PF_Err_NONE) << command;
    EXPECT_EQ(host.injector.Calls(), calls) << command;
  }
}

CHECK_F(Commands, AboutShowsNameAndVersion, "About shows name, version and purpose in two lines.") {
  Host& host = StartHost();
  EXPECT_EQ(host.About().message, "QEZ_Tarvo_renderer, v1.0.3\rIK & rigging.");
}

/// Every command in turn runs without any suite, so that its handler throws; renders have a check
/// of their own. The host compares its OpenGL context after each call; TearDown asks whether that
/// found anything.
CHECK_F(Commands, MissingSuitesReturnBadCallbackParam,
        "Without any suite each command that needs one returns 516, the others succeed, and the "
        "host's context is restored.") {
  MakeHost().injector.FailOperation("AcquireSuite", 1, {}, true);
  EXPECT_EQ(TheHost().GlobalSetup().code, PF_Err_BAD_CALLBACK_PARAM);
  EndHost();
  Host& host = MakeHost();
  ASSERT_TRUE(host.GlobalSetup().Ok());
  host.injector.FailOperation("AcquireSuite", 1, {}, true);
  ASSERT_TRUE(host.ParamsSetup().Ok());
  host.injector.FailNothing();
  auto& renderer = host.AddRenderer(TheLayer());
  CompanionSlot record{};
  PF_UserChangedParamExtra change{1};
  const struct {
    A_long command;
    void* extra = nullptr;
    PF_Err expected = PF_Err_BAD_CALLBACK_PARAM;
  } cases[] = {{PF_Cmd_ABOUT},
               {PF_Cmd_SEQUENCE_SETUP},
               {PF_Cmd_SEQUENCE_RESETUP},
               {PF_Cmd_SEQUENCE_SETDOWN},
               {PF_Cmd_FRAME_SETUP, nullptr, PF_Err_NONE},
               {PF_Cmd_UPDATE_PARAMS_UI},
               {PF_Cmd_USER_CHANGED_PARAM, &change},
               {PF_Cmd_COMPLETELY_GENERAL, &record},
               {PF_Cmd_GLOBAL_SETDOWN}};
  host.injector.FailOperation("AcquireSuite", 1, {}, true);
  for (const auto& [command, extra, expected] : cases) {
    EXPECT_EQ(host.Call(command, &renderer, extra).code, expected) << standin::CommandName(command);
    EXPECT_TRUE(host.ContextIsCurrent()) << standin::CommandName(command);
  }
}

/// As from a host, or another effect, that leaves out what it thinks is not needed.
CHECK_F(Commands, RefuseMissingRecords,
        "A command without a record that it needs returns 516, and nothing is changed.") {
  Host& host = StartHost();
  auto& renderer = host.AddRenderer(TheLayer());
  PF_InData in = host.InputRecord(&renderer);
  PF_OutData out{};
  PF_LayerDef output{};
  const auto calls = host.injector.Calls();
  const auto answer = [&](PF_Cmd command, PF_InData* input, PF_OutData* answered,
                          PF_LayerDef* image) {
    return PluginUnderCheck()(command, input, answered, nullptr, image, nullptr);
  };
  for (const PF_Cmd command :
       {PF_Cmd_ABOUT, PF_Cmd_GLOBAL_SETUP, PF_Cmd_GLOBAL_SETDOWN, PF_Cmd_PARAMS_SETUP,
        PF_Cmd_SEQUENCE_SETUP, PF_Cmd_SEQUENCE_RESETUP, PF_Cmd_SEQUENCE_SETDOWN, PF_Cmd_FRAME_SETUP,
        PF_Cmd_RENDER, PF_Cmd_USER_CHANGED_PARAM, PF_Cmd_UPDATE_PARAMS_UI}) {
    EXPECT_EQ(answer(command, &in, nullptr, &output), 516) << standin::CommandName(command);
    EXPECT_EQ(answer(command, nullptr, &out, &output), 516) << standin::CommandName(command);
  }
  std::vector<PF_ParamDef> definitions(host.DeclaredParameters().size());
  std::vector<PF_ParamDef*> parameters;
  for (PF_ParamDef& definition : definitions) {
    parameters.push_back(&definition);
  }
  EXPECT_EQ(PluginUnderCheck()(PF_Cmd_RENDER, &in, &out, parameters.data(), nullptr, nullptr), 516);
  EXPECT_EQ(host.injector.Calls(), calls);
  EXPECT_TRUE(host.Render(renderer).command.Ok());
}

/// A code thrown by a callback of the host's, in a handler without a guard of its own.
CHECK_F(Commands, ThrownCodesReturnBadCallbackParam,
        "A code that the host throws is returned as 516, and the host's context is restored.") {
  Host& host = StartHost();
  auto& renderer = host.AddRenderer(TheLayer());
  host.AddCompanion(TheLayer(), "Arm");
  CompanionSlot record{};
  for (const char* operation : {"AEGP_GetEffectLayer", "AEGP_GetEffectFlags"}) {
    host.injector.FailOperation(operation, 1, {.code = 13, .throws = true});
    EXPECT_EQ(host.SendRecord(renderer, &record).code, PF_Err_BAD_CALLBACK_PARAM) << operation;
    EXPECT_EQ(host.injector.Injected(operation), 1U);
    EXPECT_TRUE(host.ContextIsCurrent()) << operation;
  }
}

/// As from a host that renders in threads of its own, where no OpenGL context is current.
CHECK_F(Commands, MayComeFromAnyThread,
        "Each command may come from another thread than the one before it: the picture is the "
        "same, and the thread's OpenGL context is restored.") {
  Host& host = StartHost();
  auto& bone = host.AddCompanion(TheLayer(), "Arm");
  bone.pieces = {Piece({10, 10, 40, 40}, {1, 1, 6, 6}, 0.5)};
  auto& renderer = host.AddRenderer(TheLayer());
  const auto sendAndRender = [&] {
    bone.imageA.Set(Pattern(8, 8, 1));
    EXPECT_TRUE(host.Send(bone, renderer).tookA);
    const standin::RenderResult result = host.Render(renderer);
    EXPECT_TRUE(result.command.Ok());
    EXPECT_TRUE(host.ContextIsCurrent());
    return result.picture;
  };
  const tarvo::Picture expected = sendAndRender();
  tarvo::Picture elsewhere;
  std::thread([&] {
    EXPECT_TRUE(host.Remove(host.AddRenderer(TheLayer())).Ok());
    elsewhere = sendAndRender();
  }).join();
  EXPECT_EQ(elsewhere, expected);
  EXPECT_EQ(sendAndRender(), expected);
}

/// Arguments that change nothing in this host and much in others.
CHECK_F(Commands, PassTheExpectedArgumentsToTheHost,
        "The plug-in registers under its match name without a reference of its own, reads values "
        "at layer time 0 after expressions and names as the user has them, changes what is shown "
        "without an undo step, and reports no error of a quiet section.") {
  Host& host = StartHost();
  host.AddCompanion(TheLayer(), "Arm");
  auto& renderer = host.AddRenderer(TheLayer());
  EXPECT_EQ(host.Idle(), A_Err_NONE);
  EXPECT_TRUE(host.UpdateParamsUi(renderer).Ok());
  EXPECT_TRUE(host.SetParameter(renderer, kUpdater, 2).Ok());
  const struct {
    const char* operation;
    const char* arguments;  // as the log has them, or a part of that
  } cases[] = {{"AEGP_RegisterWithAEGP", "null, \"QEZ_Tarvo_renderer\", "},
               {"AEGP_RegisterIdleHook", ", a function, null"},
               {"AEGP_GetNewStreamValue", ", 0, 0/1 s, 0, "},
               {"AEGP_GetStreamName", ", 0, "},
               {"AEGP_SetDynamicStreamFlag", ", 2, 0, "},
               {"AEGP_EndQuietErrors", "0, "}};
  const auto asksForSuite = [&](const std::string& suite) {
    return std::ranges::any_of(host.injector.Log(), [&](const standin::CallRecord& call) {
      return call.operation == "AcquireSuite" && call.arguments.find(suite) != std::string::npos;
    });
  };
  // Hosts have it in several versions, whose operations differ.
  EXPECT_TRUE(asksForSuite("\"AEGP Effect Suite\", 2"));
  EXPECT_TRUE(asksForSuite("\"AEGP Effect Suite\", 3"));
  for (const auto& [operation, arguments] : cases) {
    EXPECT_GT(host.injector.Calls(operation), 0U) << operation;
    for (const standin::CallRecord& call : host.injector.Log()) {
      if (call.operation != operation) {
        continue;
      }
      EXPECT_NE(call.arguments.find(arguments), std::string::npos) << operation << call.arguments;
    }
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
