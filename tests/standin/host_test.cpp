#include "standin/host/host.h"

#include <cstring>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <window_system.h>

#include "standin/loader/plugin_library.h"
#include "tests/standin/probe.h"

namespace {

using probe::Command;
using standin::Companion;
using standin::Host;
using standin::HostOptions;
using standin::Kind;
using standin::RendererInstance;
using tarvo::Picture;
using tarvo::Rgba;

constexpr const char* kHandles = "PF Handle Suite";
constexpr const char* kWorlds = "PF World Suite";

/// A host with the probe on a layer of 40 × 20 pixels, below one companion.
class StandinHostTest : public ::testing::Test {
 protected:
  StandinHostTest() { probe::ClearAnswers(); }

  Host& Start(const HostOptions& options = {}) {
    host_ = std::make_unique<Host>(probe::EntryPoint, options);
    standin::Layer& layer = host_->project.AddComposition("Comp").AddLayer("Layer", 40, 20);
    EXPECT_TRUE(host_->StartUp().Ok());
    companion_ = &host_->AddCompanion(layer, "Arm");
    renderer_ = &host_->AddRenderer(layer);
    return *host_;
  }
  /// Has the probe do this once, as its answer to a companion.
  standin::CommandResult Do(const probe::Answer& answer) {
    probe::On(PF_Cmd_COMPLETELY_GENERAL, answer);
    const standin::CommandResult result = host_->SendRecord(*renderer_, nullptr);
    probe::On(PF_Cmd_COMPLETELY_GENERAL, [](const Command&) { return PF_Err_NONE; });
    return result;
  }
  void TearDownHost() { host_.reset(); }
  RendererInstance& Renderer() { return *renderer_; }
  Companion& Arm() { return *companion_; }

 private:
  std::unique_ptr<Host> host_;
  RendererInstance* renderer_ = nullptr;
  Companion* companion_ = nullptr;
};

/// A suite for the length of a statement or of a scope.
template <typename Suite>
class Held {
 public:
  Held(const Command& command, const char* name, int version)
      : command_(command), name_(name), version_(version) {}
  ~Held() { command_.Release(name_, version_); }
  const Suite* operator->() const { return suite_; }

 private:
  const Command& command_;
  const char* name_;
  int version_;
  const Suite* suite_ = command_.Acquire<Suite>(name_, version_);
};
using Interface = Held<AEGP_PFInterfaceSuite1>;
using Streams = Held<AEGP_StreamSuite4>;

Interface InterfaceOf(const Command& c) { return {c, "AEGP PF Interface Suite", 1}; }
Streams StreamsOf(const Command& c) { return {c, "AEGP Stream Suite", 9}; }
Held<PF_HandleSuite1> HandlesOf(const Command& c) { return {c, kHandles, 2}; }
Held<PF_WorldSuite1> WorldsOf(const Command& c) { return {c, kWorlds, 1}; }
Held<AEGP_UtilitySuite6> UndoOf(const Command& c) { return {c, "AEGP Utility Suite", 13}; }

AEGP_EffectRefH OwnReference(const Command& c) {
  AEGP_EffectRefH effect = nullptr;
  InterfaceOf(c)->AEGP_GetNewEffectForEffect(probe::PluginId(), c.in.effect_ref, &effect);
  return effect;
}

AEGP_StreamRefH StreamOf(const Command& c, AEGP_EffectRefH effect, int index) {
  AEGP_StreamRefH stream = nullptr;
  StreamsOf(c)->AEGP_GetNewEffectStreamByIndex(probe::PluginId(), effect, index, &stream);
  return stream;
}

PF_EffectWorld NewWorld(const Command& c, int width, int height) {
  PF_EffectWorld world{};
  WorldsOf(c)->new_world(c.in.effect_ref, width, height, PF_NewWorldFlag_NONE, &world);
  return world;
}

void DisposeOf(const Command& c, AEGP_EffectRefH effect) {
  Held<AEGP_EffectSuite2>(c, "AEGP Effect Suite", 2)->AEGP_DisposeEffect(effect);
}
void DisposeOf(const Command& c, AEGP_StreamRefH stream) {
  StreamsOf(c)->AEGP_DisposeStream(stream);
}
void DisposeOf(const Command& c, PF_EffectWorld& world) {
  WorldsOf(c)->dispose_world(c.in.effect_ref, &world);
}

/// An answer that does something and then says that all is well.
template <typename Use>
probe::Answer Doing(Use use) {
  return [use](const Command& command) {
    use(command);
    return PF_Err_NONE;
  };
}

// Each violation is one answer of the probe; the host's message must contain these words.
struct Violation {
  const char* name;
  probe::Answer answer;
  std::vector<const char*> words;
};

std::vector<Violation> Violations() {
  return {
      {"effect reference left",
       Doing([](const Command& c) { OwnReference(c); }),
       {"PF_Cmd_COMPLETELY_GENERAL left effect reference", "outstanding"}},
      {"effect reference disposed of twice",
       Doing([](const Command& c) {
         const AEGP_EffectRefH effect = OwnReference(c);
         DisposeOf(c, effect);
         DisposeOf(c, effect);
       }),
       {"AEGP_DisposeEffect was given effect reference", "released before"}},
      {"null",
       Doing([](const Command& c) { DisposeOf(c, AEGP_EffectRefH{}); }),
       {"AEGP_DisposeEffect was given null"}},
      {"a value of the plug-in's own",
       Doing([](const Command& c) {
         int own = 0;
         DisposeOf(c, reinterpret_cast<AEGP_EffectRefH>(&own));
       }),
       {"never handed out", "a valid effect reference was expected"}},
      {"a stream in place of an effect",
       Doing([](const Command& c) {
         const AEGP_EffectRefH effect = OwnReference(c);
         const AEGP_StreamRefH stream = StreamOf(c, effect, 1);
         DisposeOf(c, reinterpret_cast<AEGP_EffectRefH>(stream));
         DisposeOf(c, stream);
         DisposeOf(c, effect);
       }),
       {"AEGP_DisposeEffect was given stream", "a valid effect reference was expected"}},
      {"suite left",
       Doing([](const Command& c) { c.Acquire<PF_HandleSuite1>(kHandles, 2); }),
       {"left suite 'PF Handle Suite 2'"}},
      {"unknown suite",
       Doing([](const Command& c) { c.Acquire<PF_HandleSuite1>(kHandles, 3); }),
       {"\"PF Handle Suite\" version 3, which this host does not have"}},
      {"unused slot",
       [](const Command& c) {
         const auto* suite = c.Acquire<AEGP_EffectSuite2>("AEGP Effect Suite", 2);
         const PF_Err result = reinterpret_cast<PF_Err (*)()>(suite->reserved_5_6[1])();
         c.Release("AEGP Effect Suite", 2);
         return result == PF_Err_INVALID_CALLBACK ? PF_Err_NONE : result;
       },
       {"slot 6 of AEGP Effect Suite 2, AEGP_ReorderEffect, was called"}},
      {"lock left",
       Doing([](const Command& c) {
         const auto s = HandlesOf(c);
         s->host_lock_handle(c.in.sequence_data);
       }),
       {"left lock 'of handle"}},
      {"unlocked without a lock",
       Doing([](const Command& c) {
         const auto s = HandlesOf(c);
         s->host_unlock_handle(c.in.sequence_data);
       }),
       {"host_unlock_handle was given handle", "not locked"}},
      {"disposed of while locked",
       Doing([](const Command& c) {
         const auto s = HandlesOf(c);
         const PF_Handle handle = s->host_new_handle(8);
         s->host_lock_handle(handle);
         s->host_dispose_handle(handle);
       }),
       {"with 1 lock(s) on it"}},
      {"written while unlocked",
       Doing([](const Command& c) {
         const auto s = HandlesOf(c);
         const PF_Handle handle = s->host_new_handle(8);
         auto* bytes = static_cast<char*>(s->host_lock_handle(handle));
         s->host_unlock_handle(handle);
         bytes[3] = 1;
         s->host_dispose_handle(handle);
       }),
       {"was written while it was not locked"}},
      {"written past a row",
       Doing([](const Command& c) {
         PF_EffectWorld world = NewWorld(c, 5, 4);
         reinterpret_cast<char*>(world.data)[2 * world.rowbytes + 5 * 4] = 0;
         DisposeOf(c, world);
       }),
       {"dispose_world: world 'made by new_world 5x4'", "past the end of row 2"}},
      {"world disposed of through a changed record",
       Doing([](const Command& c) {
         PF_EffectWorld world = NewWorld(c, 5, 4);
         PF_EffectWorld changed = world;
         changed.width = 4;
         DisposeOf(c, changed);
         DisposeOf(c, world);
       }),
       {"dispose_world was given a changed record"}},
      {"undo group left",
       Doing([](const Command& c) { UndoOf(c)->AEGP_StartUndoGroup("Do"); }),
       {"left undo group 'Do'"}},
      {"stream value left",
       Doing([](const Command& c) {
         const AEGP_EffectRefH effect = OwnReference(c);
         const AEGP_StreamRefH stream = StreamOf(c, effect, 1);
         AEGP_StreamValue2 value{};
         const A_Time now{0, 1};
         StreamsOf(c)->AEGP_GetNewStreamValue(probe::PluginId(), stream, 0, &now, 0, &value);
         DisposeOf(c, stream);
         DisposeOf(c, effect);
       }),
       {"left stream value"}},
      {"value out of range",
       Doing([](const Command& c) {
         const AEGP_EffectRefH effect = OwnReference(c);
         const AEGP_StreamRefH stream = StreamOf(c, effect, 3);
         AEGP_StreamValue2 value{};
         value.val.one_d = 3;  // of two choices
         StreamsOf(c)->AEGP_SetStreamValue(probe::PluginId(), stream, &value);
         DisposeOf(c, stream);
         DisposeOf(c, effect);
       }),
       {"AEGP_SetStreamValue was given 3", "out of range"}},
      {"wrong plug-in number",
       Doing([](const Command& c) {
         AEGP_EffectRefH effect = nullptr;
         InterfaceOf(c)->AEGP_GetNewEffectForEffect(probe::PluginId() + 1, c.in.effect_ref,
                                                    &effect);
       }),
       {"AEGP_GetNewEffectForEffect was given plug-in number"}},
      {"input record changed",
       Doing([](const Command& c) { c.in.width = 1; }),
       {"the input record was changed at byte 252"}},
      {"message too long for its place",
       Doing([](const Command& c) {
         const std::string text(300, 'x');
         c.in.utils->ansi.sprintf(c.out.return_msg, "%s", text.c_str());
       }),
       {"sprintf was given a text of 300 characters"}},
      {"OpenGL context lost",
       [](const Command&) {
         wglMakeCurrent(nullptr, nullptr);
         return PF_Err_NONE;
       },
       {"OpenGL context is no longer current"}},
      {"drawn in the host's OpenGL context",
       [](const Command&) {
         glViewport(0, 0, 8, 8);
         return PF_Err_NONE;
       },
       {"OpenGL context was drawn in"}},
      {"exception let out",
       [](const Command&) -> PF_Err { throw std::runtime_error("oops"); },
       {"an exception (oops) left the plug-in"}},
  };
}

TEST_F(StandinHostTest, EveryApiViolationIsReported) {
  Host& host = Start();
  for (const Violation& violation : Violations()) {
    SCOPED_TRACE(violation.name);
    host.tracker.ClearViolations();
    Do(violation.answer);
    ASSERT_EQ(host.tracker.Violations().size(), 1U)
        << ::testing::PrintToString(host.tracker.Violations());
    for (const char* words : violation.words) {
      EXPECT_NE(host.tracker.FirstViolation().find(words), std::string::npos)
          << host.tracker.FirstViolation();
    }
    EXPECT_TRUE(host.tracker.Balanced());
  }
  host.tracker.ClearViolations();
  Do([](const Command&) { return PF_Err_NONE; });
  EXPECT_EQ(host.tracker.FirstViolation(), "") << "a violation was reported twice";
}

TEST_F(StandinHostTest, WhatIsLeftAtTheEndIsNamed) {
  Host& host = Start();
  Do(Doing([](const Command& c) { HandlesOf(c)->host_new_handle(123); }));
  Do([](const Command& c) {
    NewWorld(c, 7, 3);
    return PF_Err_NONE;
  });
  EXPECT_EQ(host.tracker.FirstViolation(), "") << "handles and worlds may outlive a command";
  host.Close();
  ASSERT_EQ(host.tracker.Violations().size(), 2U);
  EXPECT_NE(host.tracker.Violations()[0].find("handle '123 bytes'"), std::string::npos);
  EXPECT_NE(host.tracker.Violations()[1].find("world 'made by new_world 7x3'"), std::string::npos);
}

// The probe's set-up of one instance: AcquireSuite, host_new_handle, host_lock_handle, ReleaseSuite
// can fail; host_unlock_handle cannot, so it has no number of its own.
TEST_F(StandinHostTest, NthCallFailsAndNothingElse) {
  constexpr int kFailable = 4;
  for (std::uint64_t n = 1; n <= kFailable + 1; ++n) {
    SCOPED_TRACE(n);
    Host& host = Start();
    const std::uint64_t failable = host.injector.FailableCalls();
    const std::uint64_t calls = host.injector.Calls();
    host.injector.FailNth(n);
    const RendererInstance& second = host.AddRenderer(Renderer().OnLayer());
    EXPECT_EQ(host.injector.Injected(), n <= kFailable ? 1U : 0U);
    EXPECT_EQ(second.sequenceData != nullptr, n > 2);
    if (n > kFailable) {
      EXPECT_EQ(host.injector.FailableCalls() - failable, 4U);
      EXPECT_EQ(host.injector.Calls() - calls, 5U);
    }
    host.injector.FailNothing();
    host.Close();
    EXPECT_EQ(host.tracker.Violations(), std::vector<std::string>())
        << "a failed release or lock must not count against the plug-in";
    TearDownHost();
  }
}

TEST_F(StandinHostTest, ChosenOperationsFailAsTold) {
  Host& host = Start();
  PF_EffectWorld world = host.worlds.From(Picture(2, 2), "of the test");
  std::vector<PF_Err> codes;
  const auto fillFourTimes = [&](const Command& c) {
    codes.clear();
    for (int i = 0; i < 4; ++i) {
      try {
        codes.push_back(c.in.utils->fill(c.in.effect_ref, nullptr, nullptr, &world));
      } catch (int thrown) {
        codes.push_back(-thrown);
      }
    }
    return PF_Err_NONE;
  };
  host.injector.FailOperation("fill", 2, {.code = 41});
  Do(fillFourTimes);
  EXPECT_EQ(codes, (std::vector<PF_Err>{0, 41, 0, 0}));
  host.injector.FailOperation("fill", 3, {.code = 42, .throws = true}, true);
  Do(fillFourTimes);
  EXPECT_EQ(codes, (std::vector<PF_Err>{0, 0, -42, -42}));
  EXPECT_EQ(host.injector.Injected("fill"), 3U);
  EXPECT_EQ(host.injector.Calls("fill"), 8U);
  host.injector.FailNothing();
  host.injector.FailFrom(3, {.code = 43});
  Do(fillFourTimes);
  EXPECT_EQ(codes, (std::vector<PF_Err>{0, 0, 43, 43}));
  host.injector.FailNothing();
  host.worlds.Dispose(&world, "the test");
}

TEST_F(StandinHostTest, LogAndTraceTellWhatWasCalled) {
  Host& host = Start();
  host.injector.ClearLog();
  std::string trace;
  host.injector.TraceTo([&](std::string_view line) { trace += std::string(line) + "\n"; });
  Do([](const Command& c) {
    c.in.utils->ansi.sprintf(c.out.return_msg, "%d pieces", 7);
    PF_EffectWorld world = NewWorld(c, 3, 2);
    DisposeOf(c, world);
    return PF_Err_NONE;
  });
  host.injector.TraceTo({});
  ASSERT_EQ(host.injector.Log().size(), 7U);
  EXPECT_EQ(host.injector.Log()[0].operation, "sprintf");
  EXPECT_EQ(host.injector.Log()[1].arguments.find("\"PF World Suite\", 1"), 0U);
  const standin::CallRecord& made = host.injector.Log()[2];
  EXPECT_EQ(made.operation, "new_world");
  EXPECT_NE(made.arguments.find("3, 2, 0, world 'made by new_world 3x2'"), std::string::npos)
      << made.arguments;
  EXPECT_EQ(made.result, "0");
  EXPECT_EQ(made.command, "PF_Cmd_COMPLETELY_GENERAL");
  EXPECT_EQ(trace.find("> PF_Cmd_COMPLETELY_GENERAL\n  sprintf("), 0U) << trace;
  EXPECT_NE(trace.find("\n< PF_Cmd_COMPLETELY_GENERAL = 0\n"), std::string::npos) << trace;
}

// The receiver's four ways with an image, and what the host says to each.
TEST_F(StandinHostTest, HandOverOfImagesFollowsTheFlags) {
  struct Case {
    const char* name;
    bool disposes;
    bool clearsFlag;
    PF_Err result;
    bool taken;
    const char* violation;
    std::size_t abandoned;
  };
  const Case cases[] = {
      {"taken", true, true, 0, true, "", 0},
      {"left", false, false, 0, false, "", 0},
      {"disposed of without a word", true, false, 0, false, "it was disposed of", 0},
      {"kept without a copy", false, true, 0, true, "its world was not disposed of", 0},
      {"take that failed", false, true, 55, true, "", 1},
  };
  for (const Case& row : cases) {
    SCOPED_TRACE(row.name);
    Host& host = Start();
    Arm().imageA.Set(Picture(3, 2, {10, 20, 30, 40}));
    probe::On(PF_Cmd_COMPLETELY_GENERAL, [&](const Command& c) {
      auto* record = static_cast<CompanionSlot*>(c.extra);
      EXPECT_EQ(record->newImageA, 1);
      EXPECT_EQ(record->newImageB, 0);
      PF_EffectWorld world{};
      std::memcpy(&world, record->imageA, sizeof world);
      EXPECT_EQ(world.data->alpha, 40);
      EXPECT_EQ(world.data->red, 10);
      if (row.disposes) {
        DisposeOf(c, world);
      }
      if (row.clearsFlag) {
        record->newImageA = 0;
      }
      return row.result;
    });
    EXPECT_EQ(host.Send(Arm(), Renderer()).tookA, row.taken);
    EXPECT_EQ(Arm().imageA.isNew, !row.taken);
    EXPECT_EQ(host.AbandonedWorlds(), row.abandoned);
    EXPECT_EQ(host.tracker.Count(Kind::kWorld), 0U);
    EXPECT_EQ(host.tracker.Violations().size(), *row.violation == '\0' ? 0U : 1U);
    EXPECT_NE(host.tracker.FirstViolation().find(row.violation), std::string::npos)
        << host.tracker.FirstViolation();
    TearDownHost();
  }
}

TEST_F(StandinHostTest, FrameIsWhatThePluginAsksForAndWrites) {
  Host& host = Start();
  probe::On(PF_Cmd_FRAME_SETUP, [](const Command& c) {
    EXPECT_EQ(c.in.width, 40) << "the layer's, whatever the resolution";
    EXPECT_EQ(c.in.extent_hint.right, 20);
    EXPECT_EQ(c.out.width, 20) << "what the output would be without an answer";
    EXPECT_EQ(c.in.downsample_y.den, 4U);
    EXPECT_EQ(c.in.pre_effect_source_origin_x, 6);
    c.out.width = 4;
    c.out.height = 3;
    c.out.origin = {-2, 5};
    return PF_Err_NONE;
  });
  probe::On(PF_Cmd_RENDER, [](const Command& c) {
    EXPECT_EQ(c.in.output_origin_x, -2);
    EXPECT_GT(c.output->rowbytes, c.output->width * 4) << "rows are padded";
    const PF_Pixel colour{255, 1, 2, 3};
    const PF_Rect area{1, 0, 9, 2};  // its right part lies outside
    return c.in.utils->fill(c.in.effect_ref, &colour, &area, c.output);
  });
  const standin::FrameRequest request{.downsampleX = 2, .downsampleY = 4, .preEffectOriginX = 6};
  const standin::RenderResult result = host.Render(Renderer(), request);
  EXPECT_EQ(result.picture.width, 4);
  EXPECT_EQ(result.picture.height, 3);
  EXPECT_EQ(result.picture.originX, -2);
  EXPECT_EQ(result.picture.originY, 5);
  EXPECT_EQ(result.picture.At(1, 1), (Rgba{1, 2, 3, 255}));
  EXPECT_EQ(result.unwritten, 6U) << "column 0 and row 2";
  EXPECT_EQ(host.tracker.FirstViolation(), "");
}

TEST_F(StandinHostTest, IdleHooksAreCalledAndHeldToTheSameRules) {
  Host& host = Start();
  static int called = 0;
  called = 0;
  Do([](const Command& c) {
    c.Acquire<AEGP_RegisterSuite5>("AEGP Register Suite", 6)
        ->AEGP_RegisterIdleHook(
            probe::PluginId(),
            [](AEGP_GlobalRefcon, AEGP_IdleRefcon, A_long*) -> A_Err {
              ++called;
              wglMakeCurrent(nullptr, nullptr);
              return 77;
            },
            nullptr);
    c.Release("AEGP Register Suite", 6);
    return PF_Err_NONE;
  });
  EXPECT_EQ(host.tracker.FirstViolation(), "");
  EXPECT_EQ(host.Idle(), 77);
  EXPECT_EQ(called, 1);
  EXPECT_NE(
      host.tracker.FirstViolation().find("idle: the host's OpenGL context is no longer current"),
      std::string::npos);
}

TEST_F(StandinHostTest, CommandsAtTheWrongTimeAreRefusedByState) {
  Host& host = Start();
  try {
    host.ParamsSetup();
    FAIL() << "parameters cannot be set up twice";
  } catch (const standin::PluginStateError& error) {
    EXPECT_STREQ(error.what(), "ParamsSetup: the plug-in is 'ready'; it must be 'set up'");
  }
  host.Close();
  EXPECT_THROW(host.Render(Renderer()), standin::PluginStateError);
  EXPECT_TRUE(host.StartUp().Ok()) << "a plug-in can be set up again";
}

TEST(PluginLibrary, SaysWhatIsWrongWithAFile) {
  for (const char* path : {"no_such_plugin.so", __FILE__}) {
    try {
      const standin::PluginLibrary library(path);
      FAIL() << path << " was loaded";
    } catch (const standin::PluginLoadError& error) {
      const std::string name = std::filesystem::path(path).filename().string();
      EXPECT_NE(std::string(error.what()).find(name), std::string::npos) << error.what();
    }
  }
}

}  // namespace
