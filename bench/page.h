#pragma once

#include <string>

#include "bench/results.h"

namespace bench {

/// The results as one page that needs nothing beside it: the table of ratios, and a plot for each
/// sweep that was made.
std::string Page(const Results& results);

}  // namespace bench
