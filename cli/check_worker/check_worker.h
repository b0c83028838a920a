#pragma once

#include "cli/process/console.h"

namespace tarvo {

/// The program tarvo-check-worker: as a worker of `tarvo check` it carries out the job that it
/// receives; for a user it takes the options of `tarvo check` and runs all checks in its own
/// process. Returns the exit code.
int RunCheckWorker(const Console& console);

}  // namespace tarvo
