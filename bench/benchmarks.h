#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace bench {

/// A measurement and its baseline, taken one right after the other, in milliseconds (for memory: in
/// output-sized buffers).
struct Pair {
  double measured = 0.0;
  double baseline = 0.0;
};

/// Takes one pair; it holds what it needs from one to the next.
using MeasurePair = std::function<Pair()>;

/// What is measured against what.
struct Benchmark {
  std::string name;
  std::string measured;
  std::string baseline;
  /// The largest ratio of measured to baseline; none: for information.
  std::optional<double> goal;
  /// Pairs of one repetition.
  int pairs;
  MeasurePair (*prepare)();
  std::string unit = "ms";  ///< of the values
  std::string note{};       ///< a note for readers of the ratio
};

/// All benchmarks, in the order of their lines.
const std::vector<Benchmark>& Benchmarks();

// How each is prepared. Pictures are compared where two programs draw the same: they throw
// std::runtime_error when they do not.

MeasurePair Fast1080();
MeasurePair Fast2000();
MeasurePair Small270();
MeasurePair Exact1();
MeasurePair Exact25();
MeasurePair ExactRig();
MeasurePair ExactFold();
MeasurePair ExactWave();
MeasurePair ExactKnot();
MeasurePair ExactScattered();
MeasurePair Contested();
MeasurePair GrowPieces();
MeasurePair GrowSize();
MeasurePair SecondFrame();
MeasurePair Upload();
MeasurePair Intake();
MeasurePair Sort();
MeasurePair Memory();
MeasurePair MemoryExact();
MeasurePair Cairo();
MeasurePair Sequence();

/// Milliseconds that the render commands of the sequence take, one after another. For a process of
/// its own, which the program is with this option.
double SequenceRenderCommands();
inline constexpr const char* kSequenceRenderCommands = "--sequence-render-commands";

}  // namespace bench
