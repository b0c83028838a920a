#pragma once

#include <algorithm>
#include <chrono>
#include <ctime>
#include <vector>

namespace bench {

/// Milliseconds of processor time that the process has used. Drawing is on the calling thread here
/// (main sees to it), so that this is how long things take, less what other programs took from us.
inline double ProcessorMilliseconds() {
  std::timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return 1e3 * static_cast<double>(now.tv_sec) + 1e-6 * static_cast<double>(now.tv_nsec);
}

/// Milliseconds of processor time that `work` takes.
template <class Work>
double Milliseconds(Work&& work) {
  const double start = ProcessorMilliseconds();
  work();
  return ProcessorMilliseconds() - start;
}

/// Milliseconds that pass while `work` is done: for what several threads and processes do.
template <class Work>
double ElapsedMilliseconds(Work&& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
      .count();
}

/// The middle value; the mean of the middle two. REQUIRES: there is one.
inline double Median(std::vector<double> values) {
  std::ranges::sort(values);
  const std::size_t middle = values.size() / 2;
  return values.size() % 2 == 1 ? values[middle] : 0.5 * (values[middle - 1] + values[middle]);
}

}  // namespace bench
