#include <memory>

#include <CLI/CLI.hpp>

#include "cli/command.h"
#include "cli/frames/render.h"
#include "cli/frames/render_options.h"

namespace tarvo {

void AddRender(CLI::App& program, Work& chosen) {
  const auto options = std::make_shared<RenderOptions>();
  CLI::App* command =
      program.add_subcommand("render", "Render a scene file into a picture, frames or a movie");
  AddRenderOptions(*command, *options);
  command->footer(
      R"(The plug-in runs in a process of its own for each of --jobs. When one crashes or hangs, finished
frames are kept, the other jobs continue, and the command that renders the rest is printed.

Examples:
  tarvo render examples/wave/wave.json -o wave.png --set "Forearm start Z=3" --background checker
  tarvo render examples/wave/wave.json --frames 0-49 -o frames/f.%04d.png --jobs 2
  tarvo render examples/wave/wave.json -o frames/f.%04d.png --missing
  tarvo render examples/wave/wave.json -o wave.gif --scale 1/3 --background white
  tarvo render examples/wave/wave.json --frames 0-99 --raw -o - | consumer)");
  command->callback([options, &chosen] {
    chosen = [options](const Console& console) { Render(*options, console); };
  });
}

}  // namespace tarvo
