#pragma once

#include <functional>
#include <vector>

#include "check/result/result.h"
#include "check/result/selection.h"

namespace check {

/// All checks that this program holds, by name.
std::vector<Check> AllChecks();

/// Runs checks in this process, in their order, unless one ends the process, and passes on each
/// one's result. REQUIRES: UsePlugin or UseEntryPoint; called once.
void RunHere(const std::vector<Check>& checks, const std::function<void(const Result&)>& take);

}  // namespace check
