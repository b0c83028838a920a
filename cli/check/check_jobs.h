#pragma once

#include <functional>
#include <vector>

#include "check/run.h"
#include "cli/check/check_options.h"
#include "cli/process/console.h"

namespace standin {

/// Takes the result of one check.
using TakeResult = std::function<void(const check::Result&)>;

/// Loads the build in a process of its own, and starts a host for it. Throws PluginLoadError, which
/// says why when it cannot be.
void ExpectLoadable(const CheckOptions& options, const Console& console);

/// Runs each check in a process of its own, several at once, and hands over the results as they
/// come, one at a time. A crash and a time limit are results. What the plug-in prints goes to the
/// console's `err`, behind the name of the check. Throws Unfinished when the user interrupts, and
/// std::runtime_error when the system has no more threads or processes.
void RunInJobs(const CheckOptions& options, const std::vector<check::Check>& checks,
               const Console& console, const TakeResult& take);

/// The other end: runs checks in this process and sends their results.
void Report(const CheckOptions& options, const std::vector<check::Check>& checks,
            MessageWriter& channel);

}  // namespace standin
