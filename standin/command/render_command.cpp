#include <cmath>
#include <memory>
#include <ostream>
#include <utility>
#include <vector>

#include "standin/command/command.h"
#include "standin/command/finish.h"
#include "standin/command/render_frames.h"
#include "standin/command/render_options.h"
#include "standin/scene_file.h"

namespace standin {
namespace {

/// One picture, which is written only once everything went well.
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

void Render(const RenderOptions& options, const Console& console) {
  const RenderWishes wishes(options);
  const Animation animation = ReadAnimation(options.scene.scene);
  const std::vector<int> frames = wishes.Frames(animation);
  const bool isSingle = wishes.kind == OutputKind::kPicture || wishes.kind == OutputKind::kStream;
  if (isSingle && frames.size() == 1) {
    RenderPicture(options, wishes, animation, frames.front(), console);
  } else {
    RenderFrames(options, wishes, animation, frames, console);
  }
}

}  // namespace

void AddRender(CLI::App& program, Work& chosen) {
  const auto options = std::make_shared<RenderOptions>();
  CLI::App* command =
      program.add_subcommand("render", "Render a scene file into a picture, frames or a movie");
  AddRenderOptions(*command, *options);
  command->footer(R"(Examples:
  tarvo render examples/wave/wave.json -o wave.png --set "Forearm start Z=3" --background checker
  tarvo render examples/wave/wave.json --frames 0-49 -o frames/f.%04d.png --jobs 2
  tarvo render examples/wave/wave.json -o frames/f.%04d.png --missing
  tarvo render examples/wave/wave.json -o wave.gif --scale 1/3 --background white
  tarvo render examples/wave/wave.json --frames 0-99 --raw -o - | consumer)");
  command->callback([options, &chosen] {
    chosen = [options](const Console& console) { Render(*options, console); };
  });
}

}  // namespace standin
