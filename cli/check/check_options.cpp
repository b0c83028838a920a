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
                              "The build to be checked; the one beside this program otherwise"))
      ->type_name("FILE");
  command
      .add_option(
          "--only", options.only,
          "Checks whose name fits, with * for any text and ? for one character; can be given "
          "several times")
      ->type_name("PATTERN")
      ->allow_extra_args(false);
  command.add_option("--jobs", options.jobs, "Checks that run at once; as many as there are cores")
      ->type_name("N")
      ->check(CLI::Range(1, kMostAtOnce));
  AddTimeLimit(command, options.timeLimit, "What one check may take; 120 otherwise");
  command
      .add_option("--seed", options.seed,
                  "Draws by this lot: the order of the checks, and whatever they leave to chance")
      ->type_name("N")
      ->check(CLI::Range(0U, kHighestSeed));
  command.add_flag("--long", options.isLong,
                   "Long lives in full length, and a life for every host call that may fail");
  command.add_flag("--list", options.list, "Names and requirements of the checks; nothing is run");
  command.add_flag("--trace", options.trace,
                   "Write every command and host operation to standard error");
  command.add_flag("--json", options.json, "As JSON; docs/checking.md describes its form");
  NotEmpty(command.add_option("--junit", options.junit, "Also write the results as JUnit's XML"))
      ->type_name("FILE");
}

}  // namespace tarvo
