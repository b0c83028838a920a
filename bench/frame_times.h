#pragma once

#include <chrono>
#include <cstddef>
#include <vector>

#include "bench/bench_cases.h"
#include "sdk/effect.h"

namespace bench {

/// Milliseconds that `work` takes.
template <class Work>
double Milliseconds(Work&& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
      .count();
}

/// One frame each, measured one after the other; milliseconds.
struct Round {
  double fast;   ///< the render command with fast transparency
  double exact;  ///< the render command without it
  double bare;   ///< the bare program's frame
  double host;   ///< the host operations that a frame needs, which the bare program does without
};

/// What was measured for one case.
struct FrameTimes {
  std::size_t pieces = 0;
  Canvas canvas;
  /// Pixels whose colour or alpha differs between the plug-in's fast frame and the bare program's:
  /// the ratio is worth something only where both draw the same.
  std::size_t differingPixels = 0;
  std::vector<Round> rounds;
};

/// Plays a case on the plug-in, and the same pieces on the bare program, in turn.
FrameTimes MeasureFrames(PF_EntryPoint plugin, const BenchCase& benchCase, int rounds);

/// The middle value; the mean of the middle two. REQUIRES: there is one.
double Median(std::vector<double> values);

}  // namespace bench
