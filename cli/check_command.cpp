#include <memory>
#include <vector>

#include "cli/check/check_options.h"
#include "cli/check/check_processes.h"
#include "cli/check/check_run.h"
#include "cli/command.h"
#include "cli/options/scene_options.h"

namespace tarvo {
namespace {

void Check(CheckOptions options, const Console& console) {
  if (options.plugin.empty()) {
    options.plugin = DefaultPlugin();
  }
  CarryOut(options,
           {.list = [&] { return ListChecks(options, console); },
            .run =
                [&](const std::vector<check::Check>& checks, const TakeResult& take) {
                  ExpectLoadable(options, console);
                  RunInProcesses(options, checks, console, take);
                }},
           console);
}

}  // namespace

void AddCheck(CLI::App& program, Work& chosen) {
  const auto options = std::make_shared<CheckOptions>();
  CLI::App* command = program.add_subcommand(
      "check", "Check whether a build of the plug-in meets its requirements");
  AddCheckOptions(*command, *options);
  command->footer(R"(Examples:
  tarvo check
  tarvo check build/linux/bin/Tarvo_overlaps_manager.so --jobs 4 --junit checks.xml
  tarvo check --only "Intake.*" --only "*Nudge*" --seed 7
  tarvo check --only Commands.AboutShowsNameAndVersion --trace

Each check runs in a process of its own, of the program tarvo-check-worker: a crash and a hang are
results. Started by hand, that program takes the same options and runs all in its own process. The last
line is "conformant: ..." (exit code 0), "not conformant: ..." (1) or "cannot be loaded: ..." (4). If the report of --junit cannot be written at the end, the verdict is printed all the same, and the exit code is 5.)");
  command->callback([options, &chosen] {
    chosen = [options](const Console& console) { Check(*options, console); };
  });
}

}  // namespace tarvo
