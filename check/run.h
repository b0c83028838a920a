#pragma once

#include <functional>
#include <vector>

#include "check/result/result.h"
#include "check/result/selection.h"

namespace check {

/// All checks that this program holds, by name.
std::vector<Check> AllChecks();

/// Runs checks in this process, as far as they let it live, in their order, and hands over each
/// one's result. REQUIRES: UsePlugin or UseEntryPoint; called once.
void RunHere(const std::vector<Check>& checks, const std::function<void(const Result&)>& take);

}  // namespace check
