#pragma once

#include <functional>
#include <string>
#include <vector>

#include "check/result.h"

namespace check {

/// A check that this program holds.
struct Check {
  std::string name;
  std::string promise;
};

/// All of them by name, or those whose name fits one of the patterns, in which * stands for any
/// letters and ? for one.
std::vector<Check> ChecksNamed(const std::vector<std::string>& patterns = {});

/// The checks in an order drawn by lot: the same seed, the same order.
std::vector<Check> Shuffled(std::vector<Check> checks, unsigned seed);

/// Runs checks in this process, as far as they let it live, in their order, and hands over each
/// one's result. REQUIRES: UsePlugin or UseEntryPoint; called once.
void RunHere(const std::vector<Check>& checks, const std::function<void(const Result&)>& take);

}  // namespace check
