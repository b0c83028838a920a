#pragma once

#include <functional>
#include <vector>

#include "check/run.h"
#include "standin/command/check_options.h"

namespace standin {

/// Takes the result of one check.
using TakeResult = std::function<void(const check::Result&)>;

/// Loads the build in a process of its own, and starts a host for it. Throws PluginLoadError, which
/// says why when it cannot be.
void ExpectLoadable(const CheckOptions& options);

/// Runs each check in a process of its own, several at once, and hands over the results as they
/// come, one at a time. A crash and an end of patience are results. Throws Unfinished when the user
/// interrupts.
void RunInJobs(const CheckOptions& options, const std::vector<check::Check>& checks,
               const TakeResult& take);

/// The other end: runs checks in this process and writes their results to standard output, as those
/// who started it read them.
void Report(const CheckOptions& options, const std::vector<check::Check>& checks,
            std::ostream& out);

}  // namespace standin
