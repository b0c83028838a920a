// What `tarvo` says and keeps when the plug-in crashes, hangs, ends the program or prints.

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/cli/frames_fixture.h"

namespace {

class Guarded : public Frames {
 protected:
  Guarded() { tarvo::WriteWholeFile(folder_ / "scene.json", kEmptyScene); }

  [[nodiscard]] bool IsThere(const std::string& name) const {
    return std::filesystem::exists(File(name));
  }

  static bool Holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
  }
};

struct Fault {
  const char* name;  ///< begins the names of the files that its test makes
  const char* plugin;
  const char* words;

  /// A limit for what hangs alone: a busy machine may take its time for the rest.
  [[nodiscard]] std::string Options() const {
    const std::string limit = plugin == std::string(TARVO_HANGING_PLUGIN) ? " --time-limit 1" : "";
    return limit + " --plugin " + Quoted(plugin);
  }
};

const std::vector<Fault> kFaults = {
    {"crash", TARVO_CRASHING_PLUGIN, "the plug-in crashed in the render command, frame 5 ("},
    {"hang", TARVO_HANGING_PLUGIN,
     "the plug-in hung in the render command, frame 5 (no end within 1 s); last host call: "},
    {"exit", TARVO_EXITING_PLUGIN,
     "the plug-in ended the program in the render command, frame 5 (exit code 0); last host "
     "call: "},
};

TEST_F(Guarded, RenderKeepsTheFramesBeforeAFaultAndSaysWhereItWas) {
  for (const Fault& fault : kFaults) {
    for (const std::string jobs : {"1", "2"}) {
      SCOPED_TRACE(std::string(fault.name) + " with --jobs " + jobs);
      const std::string name = fault.name + jobs + ".";
      const Outcome outcome =
          Run(Arguments(name + "%d.png", "--quiet --jobs " + jobs + fault.Options()));
      EXPECT_EQ(outcome.code, 3) << outcome.err;
      EXPECT_TRUE(Holds(outcome.err, fault.words)) << outcome.err;
      EXPECT_TRUE(Holds(outcome.err, "last host call: ReleaseSuite")) << outcome.err;
      EXPECT_TRUE(Holds(outcome.err, " of 12 frames; to continue:\n")) << outcome.err;
      EXPECT_TRUE(Holds(outcome.err, " --missing")) << outcome.err;
      EXPECT_TRUE(Holds(outcome.err, jobs == "1" ? "missing 5-11\n" : "missing 5-11:2\n"))
          << outcome.err;
      for (int frame = 0; frame < 5; ++frame) {
        const tarvo::Picture picture = tarvo::ReadPng(File(name + std::to_string(frame) + ".png"));
        EXPECT_EQ(picture.At(30, 20).red, frame);
      }
      EXPECT_EQ(IsThere(name + "10.png"), jobs == "2") << "the other job's frames";
    }
  }
}

TEST_F(Guarded, EveryCommandOnASceneSurvivesAFault) {
  for (const Fault& fault : kFaults) {
    const std::string end = " " + Quoted(File("scene.json")) + fault.Options();
    ExpectFailure("explain --frame 5" + end, 3, fault.words);
    ExpectFailure("flips" + end, 3, fault.words);
    ExpectFailure("sheet --frames 5 -o " + Quoted(File("sheet.png")) + end, 3, fault.words);
    ExpectFailure("render --frames 5 -o " + Quoted(File("one.png")) + end, 3, fault.words);
    ExpectFailure("render --frames 5 --raw -o -" + end, 3, fault.words);
  }
}

TEST_F(Guarded, ASheetMayBeWiderThanAnyOutput) {
  tarvo::WriteWholeFile(folder_ / "wide.json",
                        R"({"size": [320, 8], "bones": [], "frames": {"count": 100}})");
  const Outcome outcome = Run("sheet " + Quoted(File("wide.json")) + " -o " +
                              Quoted(File("wide.png")) + " --columns 100 --frames 0-99");
  EXPECT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_TRUE(Holds(outcome.out, ": 32808x40\n")) << outcome.out;
}

TEST_F(Guarded, WhatThePluginPrintsGoesToStandardErrorBehindANameAndNowhereElse) {
  const std::string plugin = " --plugin " + Quoted(TARVO_PRINTING_PLUGIN);
  std::string expected;
  for (int frame = 0; frame < 12; ++frame) {
    expected.append(std::size_t{60} * 40 * 4, static_cast<char>(frame));
  }
  for (const std::string jobs : {"1", "2"}) {
    const Outcome outcome = Run(Arguments("-", "--raw --frames 0-11 --jobs " + jobs + plugin));
    EXPECT_EQ(outcome.code, 0) << jobs;
    EXPECT_EQ(outcome.out, expected) << jobs;
    const std::string name = jobs == "1" ? "render: " : "job 2: ";
    EXPECT_TRUE(Holds(outcome.err, name + "tarvo-check-result {oops\n")) << jobs;
    EXPECT_TRUE(Holds(outcome.err, name + "!!!")) << jobs;
  }
  const Outcome check =
      Run("check --only Commands.AboutShowsNameAndVersion " + Quoted(TARVO_PRINTING_PLUGIN));
  EXPECT_EQ(check.code, 1);
  EXPECT_TRUE(Holds(check.out, "not conformant: 1 failed\n")) << check.out;
  EXPECT_FALSE(Holds(check.out, "tarvo-check-")) << check.out;
  EXPECT_TRUE(Holds(check.err, "Commands.AboutShowsNameAndVersion: tarvo-check-result {oops\n"));
}

TEST_F(Guarded, ATimeLimitIsANumberOfSeconds) {
  for (const std::string& command :
       {"render " + Quoted(File("scene.json")) + " -o x.png",
        "explain " + Quoted(File("scene.json")), std::string("check")}) {
    for (const std::string value : {"nan", "inf", "-inf", "-1", "0", "1e9", "x", "\"\""}) {
      ExpectFailure(command + " --time-limit=" + value, 2, "--time-limit");
      const std::string given = value == "\"\"" ? "" : value;
      ExpectFailure(command + " --time-limit " + value, 2, "\"" + given + "\" given");
    }
  }
}

}  // namespace
