#include "cli/frames/render.h"

#include <cmath>
#include <optional>
#include <ostream>
#include <utility>
#include <vector>

#include "cli/frames/finish.h"
#include "cli/frames/frame_workers.h"
#include "cli/frames/render_frames.h"
#include "cli/options/output_guard.h"
#include "tool/rig/file/scene_file.h"

namespace standin {
namespace {

/// The frame as a worker renders it. The interrupt is noted for as long alone: what follows is the
/// writing, which an interrupt ends at once.
RenderedFrame RenderInWorker(const RenderOptions& options, const Animation& animation, int frame,
                             const Console& console) {
  const Interrupt interrupt;
  FrameWorkers workers(options, animation, {frame}, false, true, interrupt, console);
  std::optional<RenderedFrame> rendered = workers.Next();
  while (workers.Next()) {  // none: it returns once the worker has ended
  }
  if (interrupt.Came()) {
    throw Unfinished(kInterrupted, {"interrupted"});
  }
  if (workers.Failure()) {
    throw Unfinished(*workers.Failure());
  }
  return *std::move(rendered);
}

void RenderPicture(const RenderOptions& options, const RenderWishes& wishes,
                   const Animation& animation, int frame, const Console& console) {
  RenderedFrame rendered = RenderInWorker(options, animation, frame, console);
  const Picture picture = wishes.OverBackground(std::move(rendered.picture));
  if (wishes.kind == OutputKind::kStream) {
    FrameStream(console.out, options.raw).Take(frame, picture);
    return;
  }
  WritePicture(options.output, picture, options.sync);
  if (!options.quiet) {
    Tell(console, options.output + ": " + std::to_string(picture.width) + "x" +
                      std::to_string(picture.height) + ", " + std::to_string(rendered.pieces) +
                      " pieces, " + std::to_string(std::lround(rendered.milliseconds)) + " ms\n");
  }
}

}  // namespace

void Render(const RenderOptions& options, const Console& console) {
  if (console.channel != nullptr) {
    return SendFrames(options, console);
  }
  const RenderWishes wishes(options);
  const Animation animation = ReadAnimation(options.scene.scene);
  const std::vector<int> frames = wishes.Frames(animation);
  ExpectApart("--output", wishes.Files(frames), FilesRead(options.scene, animation));
  const bool isSingle = wishes.kind == OutputKind::kPicture || wishes.kind == OutputKind::kStream;
  if (isSingle && frames.size() == 1) {
    RenderPicture(options, wishes, animation, frames.front(), console);
  } else {
    RenderFrames(options, wishes, animation, frames, console);
  }
}

}  // namespace standin
