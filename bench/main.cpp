// What frames cost beside what they must cost: ratios of things measured in turn, and plots.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string>

#include <CLI/CLI.hpp>
#include <benchmark/benchmark.h>
#include <malloc.h>

#include "bench/contests.h"
#include "bench/page.h"
#include "bench/results.h"
#include "bench/sweeps.h"
#include "standin/whole_file.h"

namespace bench {
namespace {

constexpr int kSweepFrames = 3;
constexpr int kNoMemoryGoes = 1 << 30;

void Hold(benchmark::State& state, ContestResult& result) {
  try {
    const PlayPair play = result.contest->prepare();
    std::vector<double> ratios;
    std::vector<double> ours;
    std::vector<double> theirs;
    for ([[maybe_unused]] auto _ : state) {
      const Pair pair = play();
      ours.push_back(pair.ours);
      theirs.push_back(pair.theirs);
      ratios.push_back(pair.ours / pair.theirs);
      state.SetIterationTime(1e-3 * pair.ours);
    }
    result.ratios.push_back(Median(ratios));
    result.times.push_back({.ours = Median(ours), .theirs = Median(theirs)});
    state.counters["ratio"] = result.ratios.back();
    state.counters["against_ms"] = result.times.back().theirs;
  } catch (const std::exception& error) {
    result.failed = true;
    state.SkipWithError(error.what());
  }
}

void Sweep(benchmark::State& state, SweepResult& result) {
  const std::function<double()> frame = result.point->prepare(*result.point);
  std::vector<double> times;
  for ([[maybe_unused]] auto _ : state) {
    times.push_back(frame());
    state.SetIterationTime(1e-3 * times.back());
  }
  result.milliseconds = Median(times);
}

/// REQUIRES: the results stay where they are until everything has run.
void Register(Results& results) {
  for (ContestResult& result : results.contests) {
    benchmark::RegisterBenchmark(result.contest->name.c_str(),
                                 [&](benchmark::State& state) { Hold(state, result); })
        ->UseManualTime()
        ->Iterations(result.contest->pairs)
        ->Unit(benchmark::kMillisecond);
  }
  for (SweepResult& result : results.sweeps) {
    const std::string name =
        result.point->plot + '/' + result.point->series + '/' + result.point->label;
    benchmark::RegisterBenchmark(name.c_str(),
                                 [&](benchmark::State& state) { Sweep(state, result); })
        ->UseManualTime()
        ->Iterations(kSweepFrames)
        ->Repetitions(1)
        ->Unit(benchmark::kMillisecond);
  }
}

Results Everything() {
  Results results;
  for (const Contest& contest : Contests()) results.contests.push_back({.contest = &contest});
  for (const SweepPoint& point : SweepPoints()) results.sweeps.push_back({.point = &point});
  return results;
}

/// Forgets what the filter left out, or what ended in an error.
void KeepWhatRan(Results& results) {
  std::erase_if(results.contests, [](const auto& result) { return result.ratios.empty(); });
  std::erase_if(results.sweeps, [](const auto& result) { return result.milliseconds == 0.0; });
}

/// True iff every goal was met.
bool Print(const std::vector<ContestResult>& contests) {
  bool isMet = true;
  for (const ContestResult& result : contests) {
    const Pair times = result.Times();
    std::printf("ratio %s %.3f", result.contest->name.c_str(), result.Ratio());
    if (result.contest->goal) std::printf(" <= %.2f", *result.contest->goal);
    std::printf("%s (%.2f against %.2f; %s against %s)\n", result.Missed() ? " MISSED" : "",
                times.ours, times.theirs, result.contest->ours.c_str(),
                result.contest->theirs.c_str());
    isMet = isMet && !result.Missed();
  }
  return isMet;
}

int RunBench(int argc, char** argv) {
  // Drawn on the calling thread: processor time is then what a frame takes, and others who draw
  // (Cairo) have one thread too.
  setenv("LP_NUM_THREADS", "0", 1);
  // Memory that was given back is had again at once, as from the pools of a host: what the system
  // takes for handing out pages is nobody's here.
  mallopt(M_MMAP_THRESHOLD, kNoMemoryGoes);
  mallopt(M_TRIM_THRESHOLD, kNoMemoryGoes);
  benchmark::Initialize(&argc, argv);
  std::string page;
  CLI::App program(
      "Frame times as ratios of things measured in turn; --benchmark_filter=NAME and "
      "the other options of Google Benchmark hold.",
      "tarvo_bench");
  program.add_option("--page", page, "Write the results with plots to this HTML file");
  try {
    program.parse(argc, argv);
  } catch (const CLI::ParseError& request) {
    return program.exit(request);
  }
  Results results = Everything();
  Register(results);
  benchmark::RunSpecifiedBenchmarks();
  const bool isWhole = std::ranges::none_of(results.contests, &ContestResult::failed);
  KeepWhatRan(results);
  const bool isMet = Print(results.contests);
  if (!page.empty()) standin::WriteWholeFile(standin::FilePath(page), Page(results));
  return isMet && isWhole ? 0 : 1;
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  try {
    return bench::RunBench(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "tarvo_bench: %s\n", error.what());
    return 1;
  }
}
