#include "standin/command/render.h"

#include <cmath>
#include <ostream>
#include <utility>
#include <vector>

#include "standin/command/finish.h"
#include "standin/command/render_frames.h"
#include "standin/scene_file.h"

namespace standin {
namespace {

void RenderPicture(const RenderOptions& options, const RenderWishes& wishes,
                   const Animation& animation, int frame, const Console& console) {
  PlayedFrame played;
  HostedPlugin plugin(options.scene, console);
  PlayFrames(
      plugin.TheHost(), animation, {frame}, wishes.play, [&](int /*number*/, PlayedFrame made) {
        played = std::move(made);
        played.picture = wishes.Shown(std::move(played.picture), plugin.TheHost(), animation.scene);
        return true;
      });
  const Picture picture = wishes.Finish(std::move(played.picture), animation.scene, false);
  if (wishes.kind == OutputKind::kStream) {
    FrameStream(console.out, options.raw).Take(frame, picture);
    return;
  }
  WritePicture(options.output, picture);
  if (!options.quiet) {
    console.out << options.output << ": " << picture.width << "x" << picture.height << ", "
                << played.pieces << " pieces, " << std::lround(played.milliseconds) << " ms\n";
  }
}

}  // namespace

void Render(const RenderOptions& options, const Console& console) {
  const RenderWishes wishes(options);
  const Animation animation = ReadAnimation(options.scene.scene);
  const std::vector<int> frames = wishes.Frames(animation);
  ExpectApart(wishes.Files(frames), FilesOf(options.scene.scene));
  const bool isSingle = wishes.kind == OutputKind::kPicture || wishes.kind == OutputKind::kStream;
  if (isSingle && frames.size() == 1) {
    RenderPicture(options, wishes, animation, frames.front(), console);
  } else {
    RenderFrames(options, wishes, animation, frames, console);
  }
}

}  // namespace standin
