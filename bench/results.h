#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "bench/contests.h"
#include "bench/measure.h"
#include "bench/sweeps.h"

namespace bench {

/// A contest that was held, with the median pairs of its repetitions.
struct ContestResult {
  const Contest* contest = nullptr;
  std::vector<double> ratios;
  std::vector<Pair> times;
  bool failed = false;  ///< it could not be held

  [[nodiscard]] double Ratio() const { return Median(ratios); }
  [[nodiscard]] bool Missed() const { return contest->goal && !(Ratio() <= *contest->goal); }
  [[nodiscard]] Pair Times() const {
    std::vector<double> ours;
    std::vector<double> theirs;
    for (const Pair& pair : times) {
      ours.push_back(pair.ours);
      theirs.push_back(pair.theirs);
    }
    return {.ours = Median(ours), .theirs = Median(theirs)};
  }
};

struct SweepResult {
  const SweepPoint* point = nullptr;
  double milliseconds = 0.0;
  bool failed = false;  ///< it could not be made
};

struct Results {
  std::string renderer;  ///< what OpenGL calls whoever draws
  std::vector<ContestResult> contests;
  std::vector<SweepResult> sweeps;
};

}  // namespace bench
