#include "check/support/usage.h"

#include <cstddef>

namespace check {

double Slope::PerStep() const {
  const std::size_t first = values_.size() / 2;
  const auto count = static_cast<double>(values_.size() - first);
  if (count < 2) return 0;
  double x = 0;
  double y = 0;
  double xx = 0;
  double xy = 0;
  for (std::size_t i = first; i < values_.size(); ++i) {
    const auto at = static_cast<double>(i);
    x += at;
    y += values_[i];
    xx += at * at;
    xy += at * values_[i];
  }
  return (count * xy - x * y) / (count * xx - x * x);
}

}  // namespace check
