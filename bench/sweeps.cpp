#include "bench/sweeps.h"

#include <memory>

#include "bench/hosted_rig.h"
#include "bench/rigs.h"
#include "bench/stage_times.h"

namespace bench {
namespace {

std::function<double()> FramesOf(const Rig& rig, bool fast) {
  return [hosted = std::make_shared<HostedRig>(rig), fast] { return hosted->TimeRender(fast); };
}

/// One stage of frames with new images.
std::function<double()> StageOf(const Rig& rig, bool fast, plugin::FrameStage stage) {
  return [hosted = std::make_shared<HostedRig>(rig), fast, stage] {
    hosted->Send(true);
    hosted->TimeRender(fast, StoppedRender);
    return LatestStageTimes().at(stage);
  };
}

void AddPieces(std::vector<SweepPoint>& points, const std::string& series, bool fast) {
  const SweepPlot plot{"pieces", "By pieces: " + std::to_string(kBones) +
                                     " images in full HD, the same area covered"};
  for (const int pieces : {100, 1000, 2500, 5000, 10'000}) {
    points.push_back({plot, series, std::to_string(pieces), 1.0 * pieces,
                      [=] { return FramesOf(Field(pieces, 2.0), fast); }});
  }
}

void AddSizes(std::vector<SweepPoint>& points, const std::string& series, bool fast) {
  const SweepPlot plot{
      "size", "By size: " + InWords(kBones, kLimbPieces) + ", height of the frame in pixels"};
  for (const int height : {270, 540, 1080, 1620, 2160}) {
    points.push_back({plot, series, std::to_string(height), 1.0 * height, [=] {
                        return FramesOf(Limbs({height * 16 / 9, height}), fast);
                      }});
  }
}

void AddStages(std::vector<SweepPoint>& points, const std::string& series, bool fast) {
  const SweepPlot plot{
      "stage", "By stage: " + InWords(kBones, kLimbPieces) + " in full HD, with new images"};
  double x = 0.0;
  for (const StageName& each : kStageNames) {
    points.push_back(
        {plot, series, each.name, x, [=] { return StageOf(Limbs(kFullHd), fast, each.stage); }});
    x += 1.0;
  }
}

}  // namespace

const std::vector<SweepPoint>& SweepPoints() {
  static const std::vector<SweepPoint> points = [] {
    std::vector<SweepPoint> all;
    for (const auto& add : {AddPieces, AddSizes, AddStages}) {
      add(all, "fast", true);
      add(all, "exact", false);
    }
    return all;
  }();
  return points;
}

}  // namespace bench
