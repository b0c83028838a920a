#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "bench/benchmarks.h"
#include "bench/measure.h"
#include "bench/sweeps.h"

namespace bench {

/// A benchmark that was held, with the median pairs of its repetitions.
struct BenchmarkResult {
  const Benchmark* benchmark = nullptr;
  std::vector<double> ratios;
  std::vector<Pair> times;
  bool failed = false;  ///< it could not be held

  [[nodiscard]] double Ratio() const { return Median(ratios); }
  [[nodiscard]] bool Missed() const { return benchmark->goal && !(Ratio() <= *benchmark->goal); }
  [[nodiscard]] Pair Times() const {
    std::vector<double> measured;
    std::vector<double> baseline;
    for (const Pair& pair : times) {
      measured.push_back(pair.measured);
      baseline.push_back(pair.baseline);
    }
    return {.measured = Median(measured), .baseline = Median(baseline)};
  }
};

struct SweepResult {
  const SweepPoint* point = nullptr;
  double milliseconds = 0.0;
  bool failed = false;  ///< it could not be made
};

struct Results {
  std::string renderer;  ///< OpenGL's name of the renderer
  std::vector<BenchmarkResult> benchmarks;
  std::vector<SweepResult> sweeps;
};

}  // namespace bench
