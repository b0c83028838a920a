// `tarvo check`: its last line, its exit code and its files agree, and are right.

#include <algorithm>
#include <string>
#include <utility>

#include <nlohmann/json.hpp>

#include "tests/cli/command_fixture.h"

namespace {

constexpr const char* kOneCheck = " --only Commands.AboutShowsNameAndVersion";

class CheckCommand : public CommandTest {
 protected:
  static std::string LastLine(const std::string& text) {
    const std::size_t start = text.rfind('\n', text.size() - 2);
    return text.substr(start + 1, text.size() - start - 2);
  }
};

TEST_F(CheckCommand, EndsWithAVerdictThatAgreesWithTheExitCode) {
  const struct {
    std::string arguments;
    int code;
    std::string lastLine;
  } cases[] = {
      {Quoted(TARVO_PLUGIN) + kOneCheck, 0, "conformant: 1 check passed, 0 skipped"},
      {Quoted(TARVO_FAILING_PLUGIN) + kOneCheck, 1, "not conformant: 1 failed"},
  };
  // Each in a process of its own, and all in the one that the user started.
  for (const std::string& program :
       {Quoted(TARVO_COMMAND) + " check ", Quoted(TARVO_CHECK_WORKER) + " "}) {
    for (const auto& [arguments, code, lastLine] : cases) {
      const Outcome outcome = Shell(program + arguments);
      EXPECT_EQ(outcome.code, code) << program << arguments << outcome.err;
      EXPECT_EQ(LastLine(outcome.out), lastLine) << program << arguments;
    }
    for (const auto& [plugin, reason] :
         {std::pair(Quoted(TARVO_ENTRYLESS_PLUGIN), "cannot be loaded: the library "),
          std::pair(std::string("no-such-file"), "cannot be loaded: cannot load the plug-in ")}) {
      const Outcome outcome = Shell(program + plugin);
      EXPECT_EQ(outcome.code, 4) << program << plugin;
      EXPECT_NE(outcome.err.find(reason), std::string::npos) << program << outcome.err;
    }
  }
  const Outcome notLoaded =
      Run("check no-such-file --json --junit " + Quoted(File("unloaded.xml")));
  EXPECT_EQ(notLoaded.code, 4);
  const std::string verdict = nlohmann::json::parse(notLoaded.out).at("verdict");
  EXPECT_EQ(verdict.rfind("cannot be loaded: ", 0), 0U) << verdict;
  EXPECT_EQ(LastLine(notLoaded.err), verdict);
  const std::string junit = TextOf(tarvo::ReadWholeFile(File("unloaded.xml")));
  EXPECT_NE(junit.find("tests=\"1\" failures=\"0\" errors=\"1\""), std::string::npos) << junit;
  // On Windows all of these are skipped, which must not be called conformant.
  const Outcome memory = Run("check --only Memory.*");
  EXPECT_EQ(memory.code, memory.out.find("skipped  ") == std::string::npos ? 0 : 1) << memory.out;
  ExpectFailure("check --only NoSuchCheck", 2, "--list");
  ExpectFailure("check --only \"" + std::string(40, '*') + "x\"", 2, "--list");
  ExpectFailure("check --jobs 0", 2, "--jobs");
}

TEST_F(CheckCommand, TellsTheSameInJsonAndJUnit) {
  const std::string arguments = "check " + Quoted(TARVO_FAILING_PLUGIN) +
                                " --only Parameters.* --seed 7 --json --junit " +
                                Quoted(File("checks.xml"));
  const Outcome outcome = Run(arguments);
  EXPECT_EQ(outcome.code, 1);
  EXPECT_EQ(LastLine(outcome.err), "not conformant: 2 failed");
  const auto json = nlohmann::json::parse(outcome.out);
  EXPECT_EQ(json.at("conformant"), false);
  EXPECT_EQ(json.at("verdict"), "not conformant: 2 failed");
  EXPECT_EQ(json.at("seed"), 7);
  const std::string junit = TextOf(tarvo::ReadWholeFile(File("checks.xml")));
  EXPECT_NE(junit.find("tests=\"2\" failures=\"2\" errors=\"0\""), std::string::npos) << junit;
  for (const auto& check : json.at("checks")) {
    EXPECT_EQ(check.at("result"), "failed");
    EXPECT_FALSE(check.at("requirement").get<std::string>().empty());
    const std::string name = check.at("name").get<std::string>().substr(11);
    EXPECT_NE(junit.find("name=\"" + name + "\""), std::string::npos) << name;
  }
}

TEST_F(CheckCommand, ListsNamesAndRequirements) {
  const Outcome outcome = Run("check --list");
  EXPECT_EQ(outcome.code, 0);
  EXPECT_NE(outcome.out.find("Commands.AboutShowsNameAndVersion\n    About shows"),
            std::string::npos);
  const std::string one = Run("check --list --only \"*m*ands.**ShowsName???V*n*\"").out;
  EXPECT_TRUE(one.starts_with("Commands.AboutShowsNameAndVersion\n")) << one;
  EXPECT_EQ(std::count(one.begin(), one.end(), '\n'), 2) << one;
  EXPECT_NE(Run(std::string("check --trace") + kOneCheck).err.find("> PF_Cmd_ABOUT"),
            std::string::npos);
}

}  // namespace
