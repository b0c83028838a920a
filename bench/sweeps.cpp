#include "bench/sweeps.h"

#include <algorithm>
#include <memory>

#include "bench/rigs.h"
#include "bench/stage.h"
#include "bench/stopped_render.h"

namespace bench {
namespace {

bool IsFast(const SweepPoint& point) { return point.series == "fast"; }

std::function<double()> FramesOf(const Rig& rig, bool fast) {
  return [stage = std::make_shared<Stage>(rig), fast] { return stage->TimeRender(fast); };
}

std::function<double()> ByPieces(const SweepPoint& point) {
  return FramesOf(Field(static_cast<int>(point.x), 2.0), IsFast(point));
}

std::function<double()> BySize(const SweepPoint& point) {
  const auto height = static_cast<int>(point.x);
  return FramesOf(Limbs({height * 16 / 9, height}), IsFast(point));
}

std::function<double()> ByStage(const SweepPoint& point) {
  return [stage = std::make_shared<Stage>(Limbs(kFullHd)), point] {
    stage->Send(true);  // there is something to upload
    stage->TimeRender(IsFast(point), StoppedRender);
    return LatestStageTimes().at(static_cast<std::size_t>(point.x));
  };
}

std::vector<SweepPoint> MakePoints() {
  std::vector<SweepPoint> points;
  for (const char* const series : {"fast", "exact"}) {
    for (const int pieces : {100, 1000, 2500, 5000, 10'000}) {
      points.push_back({"pieces", series, std::to_string(pieces), 1.0 * pieces, ByPieces});
    }
    for (const int height : {270, 540, 1080, 1620, 2160}) {
      points.push_back({"size", series, std::to_string(height), 1.0 * height, BySize});
    }
    for (std::size_t stage = 0; stage < kFrameStages; ++stage) {
      points.push_back(
          {"stage", series, kFrameStageNames.at(stage), static_cast<double>(stage), ByStage});
    }
  }
  std::ranges::stable_sort(points, {}, &SweepPoint::plot);
  return points;
}

}  // namespace

const std::vector<SweepPoint>& SweepPoints() {
  static const std::vector<SweepPoint> points = MakePoints();
  return points;
}

}  // namespace bench
