#include <algorithm>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "check/run.h"
#include "check/support/plugin_under_check.h"
#include "check/support/settings.h"
#include "standin/command/check_jobs.h"
#include "standin/command/check_options.h"
#include "standin/command/check_report.h"
#include "standin/command/command.h"
#include "standin/command/scene_options.h"
#include "standin/gate.h"
#include "standin/host.h"
#include "standin/plugin_library.h"
#include "standin/scene_faults.h"
#include "standin/whole_file.h"

namespace standin {
namespace {

std::vector<check::Check> ChosenChecks(const CheckOptions& options) {
  std::vector<check::Check> checks = check::ChecksNamed(options.only);
  if (checks.empty() && !options.report) {
    throw InputError({"--only: no check is called so; --list tells their names"});
  }
  return options.seed ? check::Shuffled(std::move(checks), *options.seed) : checks;
}

void List(const std::vector<check::Check>& checks, std::ostream& out) {
  for (const check::Check& check : checks) {
    out << check.name << "\n    " << check.promise << '\n';
  }
}

void TakeOverSettings(const CheckOptions& options, const Console& console) {
  check::TheSettings().isLong = options.isLong;
  check::TheSettings().failsEveryCall = options.isLong;
  if (options.seed) {
    check::TheSettings().seed = *options.seed;
  }
  if (options.trace) {
    Gate::TraceAll([&err = console.err](std::string_view line) { err << line << '\n'; });
  }
}

void RunInThisProcess(const CheckOptions& options, const std::vector<check::Check>& checks,
                      const TakeResult& take) {
  check::UsePlugin(options.plugin);
  { const Host host(check::PluginUnderCheck()); }  // this machine can play the host
  check::RunHere(checks, take);
}

void RunAll(const CheckOptions& options, const std::vector<check::Check>& checks,
            CheckReport& report) {
  const TakeResult take = [&](const check::Result& result) { report.Take(result); };
  try {
    if (options.inProcess) {
      return RunInThisProcess(options, checks, take);
    }
    ExpectLoadable(options);
  } catch (const PluginLoadError& error) {
    return report.TakeNotLoaded(error.what());
  }
  RunInJobs(options, checks, take);
}

void Check(CheckOptions options, const Console& console) {
  OptionFaults faults;
  if (!options.junit.empty()) {
    faults.ExpectWritable(options.junit);
  }
  faults.ThrowIfAny();
  if (options.plugin.empty()) {
    options.plugin = DefaultPlugin();
  }
  TakeOverSettings(options, console);
  const std::vector<check::Check> checks = ChosenChecks(options);
  if (options.list) {
    return List(checks, console.out);
  }
  if (options.report) {
    return Report(options, checks, console.out);
  }
  CheckReport report(options.plugin, check::TheSettings().seed, options.json, console);
  RunAll(options, checks, report);
  if (!options.junit.empty()) {
    WriteWholeFile(options.junit, report.JUnit());
  }
  if (const int code = report.End(); code != kMade) {
    throw Unfinished(code, {});
  }
}

}  // namespace

void AddCheck(CLI::App& program, Work& chosen) {
  const auto options = std::make_shared<CheckOptions>();
  CLI::App* command = program.add_subcommand(
      "check", "Find out whether a build of the plug-in is sound, promise by promise");
  AddCheckOptions(*command, *options);
  command->footer(R"(Examples:
  tarvo check
  tarvo check build/linux/bin/Tarvo_overlaps_manager.so --jobs 4 --junit checks.xml
  tarvo check --only "Intake.*" --only "*Nudge*" --seed 7
  tarvo check --only Commands.AboutTellsNameAndVersion --in-process --trace

Each check runs in a process of its own: a crash and a hang are results. The last line is
"sound: ..." (exit code 0), "not sound: ..." (1) or "cannot be loaded: ..." (4).)");
  command->callback([options, &chosen] {
    chosen = [options](const Console& console) { Check(*options, console); };
  });
}

}  // namespace standin
