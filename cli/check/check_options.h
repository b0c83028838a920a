#pragma once

#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace tarvo {

/// What `tarvo check` takes from its command line.
struct CheckOptions {
  std::string plugin;  ///< empty: the one beside this program
  std::vector<std::string> only;
  int jobs = 1;
  double timeLimit = 120;  ///< seconds, for one check
  std::optional<unsigned> seed;
  bool isLong = false;
  bool list = false;
  bool trace = false;
  bool json = false;
  std::string junit;
};

/// Adds them to a command. REQUIRES: `options` outlives the parsing.
void AddCheckOptions(CLI::App& command, CheckOptions& options);

}  // namespace tarvo
