#include "cli/frames/render_options.h"

#include <CLI/CLI.hpp>

#include "cli/frames/output_picture.h"
#include "cli/options/suggestions.h"
#include "tool/explain/visualization.h"

namespace tarvo {
namespace {

constexpr int kMostJobs = 64;

}  // namespace

void AddLookOptions(CLI::App& command, RenderOptions& options) {
  command
      .add_option("--scale", options.scale,
                  "Resolution, as the host lowers it: 1/1 (all of it) to 1/99")
      ->type_name("1/N");
  command.add_flag(
      "--layer", options.layer,
      "Crop to the layer's frame instead of everything drawn; frames of an animation always are");
  Suggest(NotEmpty(command.add_option("--background", options.background,
                                      "Paint over a background: " + BackgroundWords())),
          kBackgroundNames)
      ->type_name("COLOUR");
  Suggest(NotEmpty(command.add_option("--show", options.show,
                                      "Show the overlap over the frame or in its place: " +
                                          Alternatives(kVisualizationNames))),
          kVisualizationNames)
      ->type_name("WHAT");
  command.add_flag("--quiet", options.quiet, "Do not report files and progress");
  AddSyncOption(command, options.sync);
}

void AddRenderOptions(CLI::App& command, RenderOptions& options) {
  AddSceneOptions(command, options.scene);
  NotEmpty(command.add_option(
               "-o,--output", options.output,
               "The picture to make; frames of an animation (f.%04d.png); a movie (.gif, .webm, "
               ".mp4; needs ffmpeg); - for standard output"))
      ->required()
      ->type_name("OUT");
  NotEmpty(command.add_option(
               "--frames", options.frames,
               "Frames, as in 0-99 or 1-3,5,7-10:2; otherwise all of them for frames and movies, "
               "frame 0 for a picture"))
      ->type_name("LIST");
  command.add_flag("--missing", options.missing,
                   "Only the frames whose file is absent, damaged or of another size");
  command.add_option("--jobs", options.jobs, "Number of processes that render frames in parallel")
      ->type_name("N")
      ->check(CLI::Range(1, kMostJobs));
  command.add_flag("--raw", options.raw,
                   "To standard output: red, green, blue and alpha of every pixel of the layer");
  command
      .add_option("--progress", options.progress,
                  "Form of the progress on standard error: auto (a bar on a terminal, "
                  "a line every few seconds elsewhere) or json (an object a line)")
      ->type_name("FORM")
      ->check(CLI::IsMember({"auto", "json"}));
  AddLookOptions(command, options);
}

}  // namespace tarvo
