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
void RequireSameCoverage(const tarvo::Picture& ours, std::size_t theirs) {
  const auto covered = static_cast<double>(std::ranges::count_if(
      ours.pixels, [](const tarvo::Rgba& pixel) { return pixel.alpha != 0; }));
  if (std::abs(covered - static_cast<double>(theirs)) <= 0.01 * covered) {
    return;
  }
  throw std::runtime_error("Cairo covers " + std::to_string(theirs) + " pixels, the plug-in " +
                           std::to_string(covered));
}

/// The plug-in and a bare program with the same rig before them.
class Match {
 public:
  explicit Match(const Rig& rig) : hosted_(rig), bare_(rig.size), drawing_(InOrder(rig)) {
    for (const Bone& bone : rig.bones) {
      bare_.AddImage(bone.image);
    }
    hosted_.TimeRender(true);
    const tarvo::Picture ours = hosted_.LastPicture();
    hosted_.TimeHostCalls(bare_.Draw(drawing_));
    RequireSame(ours, hosted_.LastPicture());
  }

  Pair Play() {
    Pair pair{.ours = hosted_.TimeRender(true)};
    const std::vector<std::uint8_t>* pixels = nullptr;
    pair.theirs = Milliseconds([&] { pixels = &bare_.Draw(drawing_); });
    pair.theirs += hosted_.TimeHostCalls(*pixels);
    return pair;
  }

 private:
  HostedRig hosted_;
  BareGl bare_;
  Drawing drawing_;
};

PlayPair AgainstBare(const Rig& rig) {
  return [match = std::make_shared<Match>(rig)] { return match->Play(); };
}

PlayPair ExactAgainstFast(const Rig& rig) {
  return [hosted = std::make_shared<HostedRig>(rig)]() -> Pair {
    return {.ours = hosted->TimeRender(false), .theirs = hosted->TimeRender(true)};
  };
}

/// Fast frames of a large rig, and so many times those of a small one.
PlayPair Growth(const Rig& large, const Rig& small, double times) {
  const auto one = std::make_shared<HostedRig>(large);
  return [one, other = std::make_shared<HostedRig>(small), times]() -> Pair {
    return {.ours = one->TimeRender(true), .theirs = times * other->TimeRender(true)};
  };
}

}  // namespace

PlayPair Fast1080() { return AgainstBare(Limbs(kFullHd)); }
PlayPair Fast2000() { return AgainstBare(Field(2000, 1.5)); }
PlayPair Small270() { return AgainstBare(Limbs(kSmall)); }
PlayPair Exact1() { return ExactAgainstFast(Carpet()); }
PlayPair Exact25() { return ExactAgainstFast(Limbs(kFullHd)); }
PlayPair ExactRig() { return ExactAgainstFast(Limbs(kFullHd, Slicing::kSideBySide)); }
PlayPair ExactFold() { return ExactAgainstFast(Limbs(kFullHd, Slicing::kFolded)); }
PlayPair ExactWave() { return ExactAgainstFast(Sample("wave")); }
PlayPair ExactKnot() { return ExactAgainstFast(Sample("knot")); }
PlayPair ExactScattered() { return ExactAgainstFast(Field(2000, 1.5)); }
PlayPair GrowPieces() { return Growth(Field(10'000, 2.0), Field(1'000, 2.0), 10.0); }
PlayPair GrowSize() { return Growth(Limbs(k8K), Limbs(k4K), 4.0); }

PlayPair SecondFrame() {
  return [hosted = std::make_shared<HostedRig>(Limbs(kFullHd))] {
    Pair pair{.ours = hosted->TimeRender(true)};
    hosted->TimeRender(true, StoppedRender);
    const StageTimes& times = LatestStageTimes();
    using enum plugin::FrameStage;
    for (const plugin::FrameStage needed : {kWorlds, kPasses, kReadBack, kTransfer}) {
      pair.theirs += times.at(needed);
    }
    return pair;
  };
}

/// A small frame of large images: what the images cost is not lost in what the frame costs.
PlayPair Upload() {
  const Rig rig = Limbs(kSmall);
  const auto bare = std::make_shared<BareGl>(rig.size);
  for (const Bone& bone : rig.bones) {
    bare->AddImage(bone.image);
  }
  return [hosted = std::make_shared<HostedRig>(rig), bare, rig] {
    hosted->Send(true);
    const double first = hosted->TimeRender(true);
    const double second = hosted->TimeRender(true);
    return Pair{.ours = first - second, .theirs = Milliseconds([&] { bare->UploadAgain(rig); })};
  };
}

/// What the plug-in held at a time, as the host's tracker say; the output is the host's own.
PlayPair Memory() {
  const Rig rig = Limbs(kFullHd);
  return [hosted = std::make_shared<HostedRig>(rig), size = rig.size] {
    standin::ObjectTracker& tracker = TheHost().tracker;
    tracker.ResetPeakBytes();
    const std::size_t before = tracker.Bytes();
    hosted->TimeRender(false);
    const double buffer = 4.0 * size.width * size.height;
    return Pair{.ours = static_cast<double>(tracker.PeakBytes() - before) / buffer - 1.0,
                .theirs = 1.0};
  };
}

/// Of every texture in the plug-in's context, after an exact frame.
PlayPair MemoryExact() {
  return [hosted = std::make_shared<HostedRig>(Limbs(kFullHd))] {
    hosted->TimeRender(false);
    return Pair{.ours = TextureBytes() / (4.0 * kFullHd.width * kFullHd.height), .theirs = 1.0};
  };
}

PlayPair Cairo() {
  const Rig rig = Limbs(kFullHd);
  const auto painter = std::make_shared<CairoPainter>(rig);
  const auto hosted = std::make_shared<HostedRig>(rig);
  const Drawing drawing = InOrder(rig);
  painter->Paint(drawing);
  RequireSameCoverage(hosted->LastPicture(), painter->Covered());
  return [hosted, painter, drawing]() -> Pair {
    return {.ours = hosted->TimeRender(true),
            .theirs = Milliseconds([&] { painter->Paint(drawing); })};
  };
}

}  // namespace bench
