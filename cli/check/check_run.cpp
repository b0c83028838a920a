#include "cli/check/check_run.h"

#include <ostream>
#include <string>
#include <utility>

#include "base/files/input_error.h"
#include "base/files/whole_file.h"
#include "cli/check/check_report.h"
#include "cli/options/output_guard.h"
#include "cli/options/scene_options.h"
#include "standin/loader/plugin_library.h"

namespace tarvo {
namespace {

std::vector<check::Check> Chosen(const CheckOptions& options, std::vector<check::Check> checks) {
  checks = check::Matching(std::move(checks), options.only);
  if (checks.empty()) {
    throw InputError({"--only: no check matches; --list prints their names"});
  }
  return options.seed ? check::Shuffled(std::move(checks), *options.seed) : checks;
}

void List(const std::vector<check::Check>& checks, std::ostream& out) {
  for (const check::Check& check : checks) {
    out << check.name << "\n    " << check.requirement << '\n';
  }
}

/// Better said before a run of many minutes than after it.
void ExpectToWriteReport(const CheckOptions& options) {
  if (options.junit.empty()) {
    return;
  }
  OptionFaults faults;
  faults.Expect(ExpectWritable, options.junit);
  faults.ThrowIfAny();
  ExpectOutputsAreNotInputs("--junit", {options.junit}, {FilePath(options.plugin).Get()});
}

/// After the verdict, which counts with or without the report.
void WriteReport(const CheckOptions& options, const CheckReport& report) {
  if (options.junit.empty()) {
    return;
  }
  try {
    WriteWholeFile(options.junit, report.JUnit());
  } catch (const FileError& error) {
    throw CommandExit(kIncomplete, {"--junit: " + options.junit + ": " + error.what() +
                                    "; the report is missing"});
  }
}

}  // namespace

void CarryOut(const CheckOptions& options, const CheckRunner& runner, const Console& console) {
  ExpectToWriteReport(options);
  const std::vector<check::Check> checks = Chosen(options, runner.list());
  if (options.list) {
    return List(checks, console.out);
  }
  CheckReport report(options.plugin, options.seed.value_or(check::kUsualSeed), options.json,
                     console);
  try {
    runner.run(checks, [&](const check::Result& result) { report.Take(result); });
  } catch (const standin::PluginLoadError& error) {
    report.TakeNotLoaded(error.what());
  }
  const int code = report.End();
  WriteReport(options, report);
  if (code != kMade) {
    throw CommandExit(code, {});
  }
}

}  // namespace tarvo
