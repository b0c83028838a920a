#include "bench/frame_times.h"

#include <algorithm>
#include <functional>
#include <numeric>

#include "bench/plugin_stage.h"

namespace bench {
namespace {

constexpr int kWarmUpRounds = 1;

std::size_t Differences(const standin::Picture& one, const standin::Picture& other) {
  return std::transform_reduce(one.pixels.begin(), one.pixels.end(), other.pixels.begin(),
                               std::size_t{0}, std::plus(), std::not_equal_to());
}

/// A plug-in and a bare program with the same pieces before them.
class Match {
 public:
  Match(PF_EntryPoint plugin, const BenchCase& benchCase)
      : stage_(plugin, benchCase), bare_(stage_.Size()), drawing_(stage_.Ordered()) {
    for (const standin::NamedImage& image : stage_.Scene().images) bare_.AddImage(image.picture);
  }

  Round Play() {
    Round round{};
    stage_.SetFast(true);
    round.fast = stage_.TimeRender();
    const standin::Picture fastPicture = stage_.LastPicture();
    const std::vector<std::uint8_t>* pixels = nullptr;
    round.bare = Milliseconds([&] { pixels = &bare_.Draw(drawing_); });
    stage_.SetFast(false);
    round.exact = stage_.TimeRender();
    round.host = stage_.TimeHostCalls(*pixels);
    differingPixels_ = Differences(fastPicture, stage_.LastPicture());
    return round;
  }

  [[nodiscard]] std::size_t DifferingPixels() const { return differingPixels_; }
  [[nodiscard]] const Canvas& Size() const { return stage_.Size(); }
  [[nodiscard]] std::size_t Pieces() const { return drawing_.vertices.size() / 4; }

 private:
  PluginStage stage_;
  BareGl bare_;
  Drawing drawing_;
  std::size_t differingPixels_ = 0;
};

}  // namespace

FrameTimes MeasureFrames(PF_EntryPoint plugin, const BenchCase& benchCase, int rounds) {
  Match match(plugin, benchCase);
  for (int round = 0; round < kWarmUpRounds; ++round) match.Play();
  FrameTimes times;
  times.pieces = match.Pieces();
  times.canvas = match.Size();
  for (int round = 0; round < rounds; ++round) times.rounds.push_back(match.Play());
  times.differingPixels = match.DifferingPixels();
  return times;
}

double Median(std::vector<double> values) {
  std::ranges::sort(values);
  const std::size_t middle = values.size() / 2;
  return values.size() % 2 == 1 ? values[middle] : 0.5 * (values[middle - 1] + values[middle]);
}

}  // namespace bench
