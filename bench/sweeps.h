#pragma once

#include <functional>
#include <string>
#include <vector>

namespace bench {

/// One point of a plot: a frame of some kind, and how long it takes.
struct SweepPoint {
  std::string plot;    ///< "pieces", "size" or "stage"
  std::string series;  ///< a line of the plot: "fast", "exact"
  std::string label;   ///< along the axis
  double x = 0.0;
  /// Milliseconds of one more frame.
  std::function<double()> (*prepare)(const SweepPoint&);
};

/// All points, plot by plot, with rising x.
const std::vector<SweepPoint>& SweepPoints();

}  // namespace bench
