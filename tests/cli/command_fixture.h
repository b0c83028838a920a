#pragma once

#include <filesystem>
#include <iterator>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "base/files/whole_file.h"
#include "tests/cli/shell.h"

struct Outcome {
  int code = 0;
  std::string out;
  std::string err;
};

inline std::string Quoted(const std::string& argument) { return "\"" + argument + "\""; }

/// A folder of its own, and the command to be run on what is in it.
class CommandTest : public testing::Test {
 protected:
  CommandTest() { std::filesystem::create_directories(folder_); }
  ~CommandTest() override { std::filesystem::remove_all(folder_); }

  /// `arguments` as typed in a shell; `before` is put before the command.
  [[nodiscard]] Outcome Run(const std::string& arguments, const std::string& before = "") const;

  /// A command line of the system's shell.
  [[nodiscard]] Outcome Shell(const std::string& command) const {
    const std::filesystem::path out = folder_ / "stdout";
    const std::filesystem::path err = folder_ / "stderr";
    const std::string line = command + " >" + Quoted(out.string()) + " 2>" + Quoted(err.string());
    const int code = RunInShell(line);
    Outcome outcome{code, TextOf(tarvo::ReadWholeFile(out)), TextOf(tarvo::ReadWholeFile(err))};
    std::filesystem::remove(out);
    std::filesystem::remove(err);
    return outcome;
  }

  [[nodiscard]] std::string File(const std::string& name) const {
    return (folder_ / name).string();
  }

  [[nodiscard]] std::size_t Files() const {
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator(folder_), {}));
  }

  /// A failure says why, prints nothing on standard output, and leaves the folder as it was.
  void ExpectFailure(const std::string& arguments, int code, const std::string& words,
                     const std::string& before = "") const {
    const std::size_t filesBefore = Files();
    const Outcome outcome = Run(arguments, before);
    EXPECT_EQ(outcome.code, code) << arguments << "\n" << outcome.err;
    EXPECT_EQ(outcome.out, "") << arguments;
    EXPECT_NE(outcome.err.find(words), std::string::npos) << arguments << "\n" << outcome.err;
    EXPECT_EQ(Files(), filesBefore) << arguments;
  }

  const std::filesystem::path folder_ =
      std::filesystem::path(testing::TempDir()) / std::to_string(std::random_device{}());
};
