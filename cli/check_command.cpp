#include <algorithm>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "base/files/escaped_text.h"
#include "base/files/input_error.h"
#include "base/files/whole_file.h"
#include "check/run.h"
#include "check/support/plugin_under_check.h"
#include "check/support/settings.h"
#include "cli/check/check_jobs.h"
#include "cli/check/check_options.h"
#include "cli/check/check_report.h"
#include "cli/command.h"
#include "cli/options/output_guard.h"
#include "cli/options/scene_options.h"
#include "standin/core/gate.h"
#include "standin/host/host.h"
#include "standin/loader/plugin_library.h"

namespace standin {
namespace {

std::vector<check::Check> ChosenChecks(const CheckOptions& options, bool isWorker) {
  std::vector<check::Check> checks = check::ChecksNamed(options.only);
  if (checks.empty() && !isWorker) {
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
    Gate::TraceAll(
        [&err = console.err](std::string_view line) { err << ForTerminal(line) << '\n'; });
  }
}

void RunInThisProcess(const CheckOptions& options, const std::vector<check::Check>& checks,
                      const TakeResult& take) {
  check::UsePlugin(options.plugin);
  { const Host host(check::PluginUnderCheck()); }  // this machine can play the host
  check::RunHere(checks, take);
}

void RunAll(const CheckOptions& options, const std::vector<check::Check>& checks,
            const Console& console, CheckReport& report) {
  const TakeResult take = [&](const check::Result& result) { report.Take(result); };
  try {
    if (options.inProcess) {
      return RunInThisProcess(options, checks, take);
    }
    ExpectLoadable(options, console);
  } catch (const PluginLoadError& error) {
    return report.TakeNotLoaded(error.what());
  }
  RunInJobs(options, checks, console, take);
}

/// Better said before a run of many minutes than after it.
void ExpectToWriteReport(const CheckOptions& options) {
  if (options.junit.empty()) {
    return;
  }
  OptionFaults faults;
  faults.Expect(ExpectWritable, options.junit);
  faults.ThrowIfAny();
  ExpectApart("--junit", {options.junit}, {FilePath(options.plugin).Get()});
}

/// After the verdict, which counts with or without the report.
void WriteReport(const CheckOptions& options, const CheckReport& report) {
  if (options.junit.empty()) {
    return;
  }
  try {
    WriteWholeFile(options.junit, report.JUnit());
  } catch (const FileError& error) {
    throw Unfinished(kIncomplete, {"--junit: " + options.junit + ": " + error.what() +
                                   "; the report is missing"});
  }
}

void Check(CheckOptions options, const Console& console) {
  if (options.plugin.empty()) {
    options.plugin = DefaultPlugin();
  }
  ExpectToWriteReport(options);
  TakeOverSettings(options, console);
  const std::vector<check::Check> checks = ChosenChecks(options, console.channel != nullptr);
  if (options.list) {
    return List(checks, console.out);
  }
  if (console.channel != nullptr) {
    return Report(options, checks, *console.channel);
  }
  CheckReport report(options.plugin, check::TheSettings().seed, options.json, console);
  RunAll(options, checks, console, report);
  const int code = report.End();
  WriteReport(options, report);
  if (code != kMade) {
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
"sound: ..." (exit code 0), "not sound: ..." (1) or "cannot be loaded: ..." (4). Where the report of
--junit cannot be written at the end, the verdict is said all the same, and the exit code is 5.)");
  command->callback([options, &chosen] {
    chosen = [options](const Console& console) { Check(*options, console); };
  });
}

}  // namespace standin
