#pragma once

#include <functional>
#include <string>
#include <vector>

namespace bench {

/// What a plot is about.
struct SweepPlot {
  std::string name;
  std::string title;
};

/// One point of a plot: a frame of some kind, and how long it takes.
struct SweepPoint {
  SweepPlot plot;
  std::string series;  ///< a line of the plot: "fast", "exact"
  std::string label;   ///< along the axis
  double x = 0.0;
  /// Sets the frame up; what it returns gives the milliseconds of one more frame.
  std::function<std::function<double()>()> prepare;
};

/// All points, plot by plot, with rising x.
const std::vector<SweepPoint>& SweepPoints();

}  // namespace bench
