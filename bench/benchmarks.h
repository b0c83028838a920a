#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace bench {

/// Two things measured one right after the other, in milliseconds (for memory: in output-sized
/// buffers).
struct Pair {
  double ours = 0.0;
  double theirs = 0.0;
};

/// Plays one pair; what it needs from pair to pair it holds.
using PlayPair = std::function<Pair()>;

/// What is measured against what.
struct Benchmark {
  std::string name;
  std::string ours;
  std::string theirs;
  /// The most that ours may be of theirs; none: for information.
  std::optional<double> goal;
  /// Pairs of one repetition.
  int pairs;
  PlayPair (*prepare)();
  std::string unit = "ms";  ///< of the values
  std::string note{};       ///< a note for readers of the ratio
};

/// All benchmarks, in the order of their lines.
const std::vector<Benchmark>& Benchmarks();

// How each is prepared. Pictures are compared where two programs draw the same: they throw
// std::runtime_error when they do not.

PlayPair Fast1080();
PlayPair Fast2000();
PlayPair Small270();
PlayPair Exact1();
PlayPair Exact25();
PlayPair ExactRig();
PlayPair ExactFold();
PlayPair ExactWave();
PlayPair ExactKnot();
PlayPair ExactScattered();
PlayPair Contested();
PlayPair GrowPieces();
PlayPair GrowSize();
PlayPair SecondFrame();
PlayPair Upload();
PlayPair Intake();
PlayPair Sort();
PlayPair Memory();
PlayPair MemoryExact();
PlayPair Cairo();
PlayPair Sequence();

/// Milliseconds that the render commands of the sequence take, one after another. For a process of
/// its own, which the program is with this option.
double SequenceRenderCommands();
inline constexpr const char* kSequenceRenderCommands = "--sequence-render-commands";

}  // namespace bench
