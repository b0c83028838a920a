#pragma once

#include <string>
#include <vector>

namespace check {

/// What this process holds of the machine at a moment.
struct Usage {
  double kilobytes = 0;  ///< of memory, private to it
  double handles = 0;    ///< open files, or what the system calls handles

  static Usage Now();
};

/// Measurements at equal steps of a long life, and the straight line that fits them best.
class Slope {
 public:
  void Add(double value) { values_.push_back(value); }
  /// The growth a step; 0 with fewer than two measurements. The first half is left out: caches
  /// fill.
  [[nodiscard]] double PerStep() const;

 private:
  std::vector<double> values_;
};

}  // namespace check
