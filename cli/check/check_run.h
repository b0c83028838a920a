#pragma once

#include <functional>
#include <vector>

#include "check/result/result.h"
#include "check/result/selection.h"
#include "cli/check/check_options.h"
#include "cli/process/console.h"

namespace tarvo {

/// Takes the result of one check.
using TakeResult = std::function<void(const check::Result&)>;

/// Where checks are run.
struct CheckRunner {
  std::function<std::vector<check::Check>()> list;
  /// Runs these checks and hands over their results. Throws PluginLoadError.
  std::function<void(const std::vector<check::Check>&, const TakeResult&)> run;
};

/// Carries out the options of `tarvo check`: chooses checks, has them run, prints the verdict and
/// writes the report. Throws InputError, and CommandExit if the verdict is not "conformant" or the
/// report is missing.
void CarryOut(const CheckOptions& options, const CheckRunner& runner, const Console& console);

}  // namespace tarvo
