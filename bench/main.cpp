// Frame times of the plug-in beside a bare OpenGL program, as ratios of frames measured in turn.

#include <algorithm>
#include <array>
#include <cstdio>
#include <exception>
#include <fstream>
#include <functional>
#include <iterator>
#include <stdexcept>
#include <string>

#include <CLI/CLI.hpp>

#include "bench/bench_cases.h"
#include "bench/frame_times.h"
#include "standin/plugin_library.h"

namespace bench {
namespace {

/// Of a frame's pixels, how many may differ from the bare program's: a pixel on an edge can fall to
/// either side where drivers round differently.
constexpr double kTolerated = 0.001;

struct Options {
  std::string plugin = TARVO_PLUGIN_FILE;
  std::string csv;
  std::string only;
  int frames = 15;
};

/// Something to hold against the bare program.
struct Comparison {
  const char* name;
  double Round::*time;
};
constexpr std::array<Comparison, 2> kComparisons{
    {{"fast", &Round::fast}, {"exact", &Round::exact}}};

/// The median of a number found for every round.
template <class Number>
double MedianOf(const FrameTimes& times, Number number) {
  std::vector<double> values;
  std::ranges::transform(times.rounds, std::back_inserter(values),
                         [&](const Round& round) { return std::invoke(number, round); });
  return Median(values);
}

void PrintRatio(const BenchCase& benchCase, const Comparison& comparison, const FrameTimes& times) {
  const auto bare = [&](const Round& round) { return round.*comparison.time / round.bare; };
  const auto withHost = [&](const Round& round) {
    return round.*comparison.time / (round.bare + round.host);
  };
  std::printf("ratio %s_%s %.2f (plug-in %.1f ms, bare %.1f ms)\n", benchCase.name.c_str(),
              comparison.name, MedianOf(times, bare), MedianOf(times, comparison.time),
              MedianOf(times, &Round::bare));
  std::printf("ratio %s_%s_host %.2f (the host's own %.1f ms added to bare)\n",
              benchCase.name.c_str(), comparison.name, MedianOf(times, withHost),
              MedianOf(times, &Round::host));
}

void Print(const BenchCase& benchCase, const FrameTimes& times) {
  std::printf("%s: %zu pieces, %d x %d, %zu rounds, %zu pixels unlike the bare program's\n",
              benchCase.name.c_str(), times.pieces, times.canvas.width, times.canvas.height,
              times.rounds.size(), times.differingPixels);
  for (const Comparison& comparison : kComparisons) PrintRatio(benchCase, comparison, times);
  std::fflush(stdout);
}

void WriteRounds(std::ostream& csv, const BenchCase& benchCase, const FrameTimes& times) {
  for (std::size_t round = 0; round < times.rounds.size(); ++round) {
    const auto& [fast, exact, bare, host] = times.rounds[round];
    csv << benchCase.name << ',' << round << ',' << fast << ',' << exact << ',' << bare << ','
        << host << '\n';
  }
}

/// Both programs must have drawn the same, or their times say nothing about one another.
void RequireSamePicture(const BenchCase& benchCase, const FrameTimes& times) {
  const double pixels = static_cast<double>(times.canvas.width) * times.canvas.height;
  if (static_cast<double>(times.differingPixels) > kTolerated * pixels) {
    throw std::runtime_error(benchCase.name +
                             ": the bare program draws another picture than the plug-in");
  }
}

void MeasureCases(const Options& options) {
  const standin::PluginLibrary library(options.plugin);
  std::ofstream csv;
  if (!options.csv.empty()) {
    csv.exceptions(std::ios::failbit | std::ios::badbit);
    csv.open(options.csv);
    csv << "case,round,fast_ms,exact_ms,bare_ms,host_ms\n";
  }
  for (const BenchCase& benchCase : BenchCases()) {
    if (!options.only.empty() && options.only != benchCase.name) continue;
    const FrameTimes times = MeasureFrames(library.EntryPoint(), benchCase, options.frames);
    Print(benchCase, times);
    RequireSamePicture(benchCase, times);
    if (csv.is_open()) WriteRounds(csv, benchCase, times);
  }
}

std::vector<std::string> CaseNames() {
  std::vector<std::string> names;
  std::ranges::transform(BenchCases(), std::back_inserter(names), &BenchCase::name);
  return names;
}

int RunBench(int argc, const char* const* argv) {
  Options options;
  CLI::App program("Frame times of the plug-in beside a bare OpenGL program, as ratios.",
                   "tarvo_bench");
  program.add_option("--frames", options.frames, "Rounds measured for each case")
      ->check(CLI::Range(1, 10'000))
      ->capture_default_str();
  program.add_option("--case", options.only, "Measure this case alone")
      ->check(CLI::IsMember(CaseNames()));
  program.add_option("--csv", options.csv, "Write every round's milliseconds to this file");
  program.add_option("--plugin", options.plugin, "The plug-in; this build's own otherwise");
  try {
    program.parse(argc, argv);
  } catch (const CLI::ParseError& request) {
    return program.exit(request);
  }
  MeasureCases(options);
  return 0;
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
