#pragma once

#include <string>
#include <vector>

namespace check {

/// What this process holds of the machine at a moment.
struct Usage {
  double kilobytes = 0;  ///< of memory, allocated (or, on Windows, private) to it
  double handles = 0;    ///< open files, or what the system calls handles

  static Usage Now();
};

/// Measurements at equal steps of a soak test, and their growth.
class Slope {
 public:
  void Add(double value) { values_.push_back(value); }
  /// The growth a step from the third quarter to the last, between the lowest of each: what is held
  /// for a while does not count. The first half is left out, in which caches fill.
  [[nodiscard]] double PerStep() const;

 private:
  std::vector<double> values_;
};

}  // namespace check
