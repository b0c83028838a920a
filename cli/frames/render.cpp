#include "cli/frames/render.h"

#include <cmath>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cli/frames/frame_workers.h"
#include "cli/frames/output_picture.h"
#include "cli/frames/picture_composer.h"
#include "cli/frames/render_frames.h"
#include "cli/options/output_guard.h"
#include "cli/process/interrupt.h"

namespace tarvo {
namespace {

/// The frame as a worker renders it. The interrupt is noted for as long alone: what follows is the
/// writing, which an interrupt ends at once.
RenderedFrame RenderInWorker(FrameWorkers& workers, const std::vector<int>& frame,
                             bool cropsToLayer) {
  const Interrupt interrupt;
  workers.Start(frame, cropsToLayer, true);
  std::optional<RenderedFrame> rendered = workers.Next();
  while (workers.Next()) {  // none: it returns once the worker has ended
  }
  if (interrupt.Came()) {
    throw CommandExit(kInterrupted, {"interrupted"});
  }
  if (workers.Failure()) {
    throw CommandExit(*workers.Failure());
  }
  return *std::move(rendered);
}

void RenderPicture(const RenderSettings& settings, const PictureComposer& composer,
                   const std::vector<int>& frame, FrameWorkers& workers, const Console& console) {
  RenderedFrame rendered = RenderInWorker(workers, frame, composer.CropsToLayer(false));
  const Picture picture = composer.OverBackground(std::move(rendered.picture));
  if (settings.kind == OutputKind::kStream) {
    FrameStream(console.out, settings.raw).Take(rendered.number, picture);
    return;
  }
  WritePicture(settings.output, picture, settings.sync);
  if (!settings.quiet) {
    PrintResult(console, settings.output + ": " + std::to_string(picture.width) + "x" +
                             std::to_string(picture.height) + ", " +
                             std::to_string(rendered.pieces) + " pieces, " +
                             std::to_string(std::lround(rendered.milliseconds)) + " ms\n");
  }
}

}  // namespace

void Render(const RenderOptions& options, const Console& console) {
  const RenderSettings settings = ReadRenderSettings(options, console);
  if (console.channel != nullptr) {
    return SendFrames(settings, console);
  }
  FrameWorkers workers(settings, console);
  const SceneSummary scene = workers.AwaitScene();
  const std::vector<int> frames = FramesAskedFor(settings, scene.frames);
  ExpectOutputsAreNotInputs("--output", FilesMade(settings, frames),
                            FilesRead(settings.scene, scene.files));
  const PictureComposer composer(settings, scene.width, scene.height);
  const bool isSingle = settings.kind == OutputKind::kPicture ||
                        (settings.kind == OutputKind::kStream && frames.size() == 1);
  if (isSingle) {
    RenderPicture(settings, composer, frames, workers, console);
  } else {
    RenderFrames(settings, composer, scene.rate, frames, workers, console);
  }
}

}  // namespace tarvo
