#include "cli/check/check_options.h"

#include <algorithm>
#include <thread>

#include "cli/options/scene_options.h"

namespace tarvo {
namespace {

constexpr int kMostAtOnce = 256;
constexpr unsigned kHighestSeed = 4'294'967'295U;

}  // namespace

void AddCheckOptions(CLI::App& command, CheckOptions& options) {
  options.jobs = std::clamp(static_cast<int>(std::thread::hardware_concurrency()), 1, kMostAtOnce);
  NotEmpty(command.add_option("plugin,--plugin", options.plugin,
                              "The build to check; otherwise the one beside this program"))
      ->type_name("FILE");
  command
      .add_option(
          "--only", options.only,
          "Checks whose name matches, with * for any text and ? for one character; can be given "
          "several times")
      ->type_name("PATTERN")
      ->allow_extra_args(false);
  command
      .add_option("--jobs", options.jobs,
                  "Number of checks that run in parallel; otherwise one for each core")
      ->type_name("N")
      ->check(CLI::Range(1, kMostAtOnce));
  AddTimeLimit(command, options.timeLimit, "Most seconds that one check may take; 120 otherwise");
  command
      .add_option("--seed", options.seed,
                  "Seed of the order of the checks and of their random choices")
      ->type_name("N")
      ->check(CLI::Range(0U, kHighestSeed));
  command.add_flag(
      "--long", options.isLong,
      "Soak tests at full length, and fault injection for every host call that may fail");
  command.add_flag("--list", options.list,
                   "List names and requirements of the checks, and run nothing");
  command.add_flag("--trace", options.trace,
                   "Write every command and host operation to standard error");
  command.add_flag("--json", options.json, "As JSON; docs/checking.md describes its form");
  NotEmpty(command.add_option("--junit", options.junit, "Also write the results as JUnit's XML"))
      ->type_name("FILE");
}

}  // namespace tarvo
