#include "check/support/usage.h"

#include <algorithm>
#include <cstddef>

namespace check {

double Slope::PerStep() const {
  const auto quarter = static_cast<std::ptrdiff_t>(values_.size() / 4);
  if (quarter == 0) {
    return 0;
  }
  const double before = *std::min_element(values_.end() - 2 * quarter, values_.end() - quarter);
  const double after = *std::min_element(values_.end() - quarter, values_.end());
  return (after - before) / static_cast<double>(quarter);
}

}  // namespace check
