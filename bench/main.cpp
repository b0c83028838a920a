// The cost of frames relative to a lower bound: ratios of alternating measurements, and plots.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <stdexcept>
#include <string>

#include <CLI/CLI.hpp>
#include <benchmark/benchmark.h>
#include <malloc.h>

#include "base/files/whole_file.h"
#include "bench/benchmarks.h"
#include "bench/page.h"
#include "bench/results.h"
#include "bench/sweeps.h"
#include "standin/core/gl_context.h"

namespace bench {
namespace {

constexpr int kSweepFrames = 3;
constexpr int kKeepFreedMemory = 1 << 30;

void RunBenchmark(benchmark::State& state, BenchmarkResult& result) {
  try {
    const MeasurePair measure = result.benchmark->prepare();
    std::vector<double> ratios;
    std::vector<double> measured;
    std::vector<double> baseline;
    for ([[maybe_unused]] auto _ : state) {
      const Pair pair = measure();
      if (!(pair.baseline > 0.0)) {
        throw std::runtime_error("the baseline took no time");
      }
      measured.push_back(pair.measured);
      baseline.push_back(pair.baseline);
      ratios.push_back(pair.measured / pair.baseline);
      state.SetIterationTime(1e-3 * pair.measured);
    }
    result.ratios.push_back(Median(ratios));
    result.times.push_back({.measured = Median(measured), .baseline = Median(baseline)});
    state.counters["ratio"] = result.ratios.back();
    state.counters["against_ms"] = result.times.back().baseline;
  } catch (const std::exception& error) {
    result.failed = true;
    state.SkipWithError(error.what());
  }
}

void Sweep(benchmark::State& state, SweepResult& result) {
  try {
    const std::function<double()> frame = result.point->prepare();
    std::vector<double> times;
    for ([[maybe_unused]] auto _ : state) {
      times.push_back(frame());
      state.SetIterationTime(1e-3 * times.back());
    }
    result.milliseconds = Median(times);
  } catch (const std::exception& error) {
    result.failed = true;
    state.SkipWithError(error.what());
  }
}

/// REQUIRES: the results stay where they are until everything has run.
void Register(Results& results) {
  for (BenchmarkResult& result : results.benchmarks) {
    benchmark::RegisterBenchmark(result.benchmark->name.c_str(),
                                 [&](benchmark::State& state) { RunBenchmark(state, result); })
        ->UseManualTime()
        ->Iterations(result.benchmark->pairs)
        ->Unit(benchmark::kMillisecond);
  }
  for (SweepResult& result : results.sweeps) {
    const std::string name =
        result.point->plot.name + '/' + result.point->series + '/' + result.point->label;
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
  for (const Benchmark& benchmark : Benchmarks()) {
    results.benchmarks.push_back({.benchmark = &benchmark});
  }
  for (const SweepPoint& point : SweepPoints()) {
    results.sweeps.push_back({.point = &point});
  }
  return results;
}

/// Forgets what the filter left out, or what ended in an error.
void KeepWhatRan(Results& results) {
  std::erase_if(results.benchmarks, [](const auto& result) { return result.ratios.empty(); });
  std::erase_if(results.sweeps, [](const auto& result) { return result.milliseconds == 0.0; });
}

/// True iff every goal was reached.
bool Print(const std::vector<BenchmarkResult>& benchmarks) {
  bool isMet = true;
  for (const BenchmarkResult& result : benchmarks) {
    const Pair times = result.Times();
    std::printf("ratio %s %.3f", result.benchmark->name.c_str(), result.Ratio());
    if (result.benchmark->goal) {
      std::printf(" <= %.2f", *result.benchmark->goal);
    }
    const char* const unit = result.benchmark->unit.c_str();
    std::printf("%s (%.2f %s against %.2f %s; %s against %s)\n", result.Missed() ? " MISSED" : "",
                times.measured, unit, times.baseline, unit, result.benchmark->measured.c_str(),
                result.benchmark->baseline.c_str());
    isMet = isMet && !result.Missed();
  }
  return isMet;
}

/// Frames are drawn by a software renderer, on the calling thread: processor time is then what a
/// frame takes, and others who draw (Cairo) have one thread too. Returns the renderer's name.
/// Throws std::runtime_error when another one draws.
std::string DrawOnThisThread() {
  setenv("LIBGL_ALWAYS_SOFTWARE", "1", 1);
  setenv("LP_NUM_THREADS", "0", 1);
  const standin::GlContext context;
  context.MakeCurrent();
  std::string renderer = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
  standin::MakeNoContextCurrent();
  if (renderer.find("llvmpipe") == std::string::npos) {
    throw std::runtime_error("frames would be drawn by " + renderer +
                             ", whose work is not in the processor time; llvmpipe is needed");
  }
  return renderer;
}

/// Freed memory is available again at once, as from the pools of a host: what the system
/// takes for handing out pages is in no frame then, neither for the host's buffers nor for what the
/// renderer makes anew in each, maps above all.
void KeepMemory() {
  mallopt(M_MMAP_THRESHOLD, kKeepFreedMemory);
  mallopt(M_TRIM_THRESHOLD, kKeepFreedMemory);
}

/// True iff everything could be measured and every goal was reached.
bool MeasureAll(const std::string& page) {
  Results results = Everything();
  results.renderer = DrawOnThisThread();
  Register(results);
  benchmark::RunSpecifiedBenchmarks();
  const bool isWhole = std::ranges::none_of(results.benchmarks, &BenchmarkResult::failed) &&
                       std::ranges::none_of(results.sweeps, &SweepResult::failed);
  KeepWhatRan(results);
  const bool isMet = Print(results.benchmarks);
  if (!page.empty()) {
    tarvo::WriteWholeFile(tarvo::FilePath(page), Page(results));
  }
  return isMet && isWhole;
}

int RunBench(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  std::string page;
  bool isMemoryFresh = false;
  bool isPartOfSequence = false;
  CLI::App program(
      "Frame times as ratios of alternating measurements; --benchmark_filter=NAME and "
      "the other options of Google Benchmark hold.",
      "tarvo_bench");
  program.add_option("--page", page, "Write the results with plots to this HTML file");
  program.add_flag("--fresh-memory", isMemoryFresh,
                   "Leave memory to the system, as programs other than hosts do");
  program.add_flag(kSequenceRenderCommands, isPartOfSequence)->group("");
  try {
    program.parse(argc, argv);
  } catch (const CLI::ParseError& request) {
    return program.exit(request);
  }
  if (isPartOfSequence) {
    std::printf("%f\n", SequenceRenderCommands());
    return 0;
  }
  if (!isMemoryFresh) {
    KeepMemory();
  }
  return MeasureAll(page) ? 0 : 1;
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
