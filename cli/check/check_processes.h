#pragma once

#include <vector>

#include "check/result/selection.h"
#include "cli/check/check_options.h"
#include "cli/check/check_run.h"
#include "cli/process/console.h"

/// \file
/// Checks in processes of the program tarvo-check-worker, which lies beside this one. All functions
/// throw ProcessError when it cannot be started, and CommandExit when it is missing or the user
/// interrupts.

namespace tarvo {

/// All checks, by name. Throws std::runtime_error if the worker does not send them.
std::vector<check::Check> ListChecks(const CheckOptions& options, const Console& console);

/// Loads the build in a process of its own, and starts a host for it. Throws PluginLoadError, which
/// says why when it cannot be.
void ExpectLoadable(const CheckOptions& options, const Console& console);

/// Runs each check in a process of its own, several at once, and hands over the results as they
/// come, one at a time. A crash and a time limit are results. What the plug-in prints goes to the
/// console's `err`, behind the name of the check. Throws std::runtime_error when the system has no
/// more threads.
void RunInProcesses(const CheckOptions& options, const std::vector<check::Check>& checks,
                    const Console& console, const TakeResult& take);

}  // namespace tarvo
