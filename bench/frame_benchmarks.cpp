#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <numeric>
#include <stdexcept>
#include <string>

#include "bench/benchmarks.h"
#include "bench/cairo_painter.h"
#include "bench/hosted_rig.h"
#include "bench/measure.h"
#include "bench/stage_times.h"

namespace bench {
namespace {

/// Of a frame's pixels, how many may differ from the bare program's: a pixel on an edge can fall to
/// either side where drivers round differently.
constexpr double kTolerated = 0.001;
constexpr FrameSize kSmall{480, 270};
constexpr FrameSize k4K{3840, 2160};
constexpr FrameSize k8K{7680, 4320};

std::size_t Differences(const tarvo::Picture& one, const tarvo::Picture& other) {
  return std::transform_reduce(one.pixels.begin(), one.pixels.end(), other.pixels.begin(),
                               std::size_t{0}, std::plus(), std::not_equal_to());
}

/// Both must have drawn the same, or their times say nothing about one another.
void RequireSame(const tarvo::Picture& one, const tarvo::Picture& other) {
  const auto pixels = static_cast<double>(one.pixels.size());
  const auto unlike = static_cast<double>(Differences(one, other));
  if (unlike <= kTolerated * pixels) {
    return;
  }
  throw std::runtime_error("the bare program draws another picture than the plug-in: " +
                           std::to_string(unlike) + " pixels");
}

/// Cairo rounds edges in its own way and blends once; where something is painted says enough.
void RequireSameCoverage(const tarvo::Picture& measured, std::size_t baseline) {
  const auto covered = static_cast<double>(std::ranges::count_if(
      measured.pixels, [](const tarvo::Rgba& pixel) { return pixel.alpha != 0; }));
  if (std::abs(covered - static_cast<double>(baseline)) <= 0.01 * covered) {
    return;
  }
  throw std::runtime_error("Cairo covers " + std::to_string(baseline) + " pixels, the plug-in " +
                           std::to_string(covered));
}

/// The plug-in and a bare program with the same rig before them.
class BareGlComparison {
 public:
  explicit BareGlComparison(const Rig& rig)
      : hosted_(rig), bare_(rig.size), drawing_(InOrder(rig)) {
    for (const Bone& bone : rig.bones) {
      bare_.AddImage(bone.image);
    }
    hosted_.TimeRender(true);
    const tarvo::Picture measured = hosted_.LastPicture();
    hosted_.TimeHostCalls(bare_.Draw(drawing_));
    RequireSame(measured, hosted_.LastPicture());
  }

  Pair Play() {
    Pair pair{.measured = hosted_.TimeRender(true)};
    const std::vector<std::uint8_t>* pixels = nullptr;
    pair.baseline = Milliseconds([&] { pixels = &bare_.Draw(drawing_); });
    pair.baseline += hosted_.TimeHostCalls(*pixels);
    return pair;
  }

 private:
  HostedRig hosted_;
  BareGl bare_;
  Drawing drawing_;
};

MeasurePair AgainstBare(const Rig& rig) {
  return [comparison = std::make_shared<BareGlComparison>(rig)] { return comparison->Play(); };
}

MeasurePair ExactAgainstFast(const Rig& rig) {
  return [hosted = std::make_shared<HostedRig>(rig)]() -> Pair {
    return {.measured = hosted->TimeRender(false), .baseline = hosted->TimeRender(true)};
  };
}

/// Fast frames of a large rig, and so many times those of a small one.
MeasurePair Growth(const Rig& large, const Rig& small, double times) {
  const auto one = std::make_shared<HostedRig>(large);
  return [one, other = std::make_shared<HostedRig>(small), times]() -> Pair {
    return {.measured = one->TimeRender(true), .baseline = times * other->TimeRender(true)};
  };
}

}  // namespace

MeasurePair Fast1080() { return AgainstBare(Limbs(kFullHd)); }
MeasurePair Fast2000() { return AgainstBare(Field(2000, 1.5)); }
MeasurePair Small270() { return AgainstBare(Limbs(kSmall)); }
MeasurePair Exact1() { return ExactAgainstFast(Carpet()); }
MeasurePair Exact25() { return ExactAgainstFast(Limbs(kFullHd)); }
MeasurePair ExactRig() { return ExactAgainstFast(Limbs(kFullHd, Slicing::kSideBySide)); }
MeasurePair ExactFold() { return ExactAgainstFast(Limbs(kFullHd, Slicing::kFolded)); }
MeasurePair ExactWave() { return ExactAgainstFast(Sample("wave")); }
MeasurePair ExactKnot() { return ExactAgainstFast(Sample("knot")); }
MeasurePair ExactScattered() { return ExactAgainstFast(Field(2000, 1.5)); }
MeasurePair GrowPieces() { return Growth(Field(10'000, 2.0), Field(1'000, 2.0), 10.0); }
MeasurePair GrowSize() { return Growth(Limbs(k8K), Limbs(k4K), 4.0); }

MeasurePair SecondFrame() {
  return [hosted = std::make_shared<HostedRig>(Limbs(kFullHd))] {
    Pair pair{.measured = hosted->TimeRender(true)};
    hosted->TimeRender(true, StoppedRender);
    const StageTimes& times = LatestStageTimes();
    using enum plugin::FrameStage;
    for (const plugin::FrameStage needed : {kWorlds, kPasses, kReadBack, kTransfer}) {
      pair.baseline += times.at(needed);
    }
    return pair;
  };
}

/// A small frame of large images: what the images cost is not lost in what the frame costs.
MeasurePair Upload() {
  const Rig rig = Limbs(kSmall);
  const auto bare = std::make_shared<BareGl>(rig.size);
  for (const Bone& bone : rig.bones) {
    bare->AddImage(bone.image);
  }
  return [hosted = std::make_shared<HostedRig>(rig), bare, rig] {
    hosted->Send(true);
    const double first = hosted->TimeRender(true);
    const double second = hosted->TimeRender(true);
    return Pair{.measured = first - second,
                .baseline = Milliseconds([&] { bare->UploadAgain(rig); })};
  };
}

/// The most host memory that the plug-in held at once, as counted by the host's object tracker,
/// without the output.
MeasurePair Memory() {
  const Rig rig = Limbs(kFullHd);
  return [hosted = std::make_shared<HostedRig>(rig), size = rig.size] {
    standin::ObjectTracker& tracker = TheHost().tracker;
    tracker.ResetPeakBytes();
    const std::size_t before = tracker.Bytes();
    hosted->TimeRender(false);
    const double buffer = 4.0 * size.width * size.height;
    return Pair{.measured = static_cast<double>(tracker.PeakBytes() - before) / buffer - 1.0,
                .baseline = 1.0};
  };
}

/// Of every texture in the plug-in's context, after an exact frame.
MeasurePair MemoryExact() {
  return [hosted = std::make_shared<HostedRig>(Limbs(kFullHd))] {
    hosted->TimeRender(false);
    return Pair{.measured = TextureBytes() / (4.0 * kFullHd.width * kFullHd.height),
                .baseline = 1.0};
  };
}

MeasurePair Cairo() {
  const Rig rig = Limbs(kFullHd);
  const auto painter = std::make_shared<CairoPainter>(rig);
  const auto hosted = std::make_shared<HostedRig>(rig);
  const Drawing drawing = InOrder(rig);
  painter->Paint(drawing);
  RequireSameCoverage(hosted->LastPicture(), painter->Covered());
  return [hosted, painter, drawing]() -> Pair {
    return {.measured = hosted->TimeRender(true),
            .baseline = Milliseconds([&] { painter->Paint(drawing); })};
  };
}

}  // namespace bench
