#include <memory>
#include <numeric>
#include <ostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "cli/command.h"
#include "cli/options/hosted_plugin.h"
#include "cli/options/scene_options.h"
#include "cli/run_in_worker.h"
#include "tool/explain/flips.h"
#include "tool/player/scene_player.h"
#include "tool/rig/file/scene_file.h"

namespace tarvo {
namespace {

/// Frames are rendered, because that advances the plug-in, but their pixels are not used.
constexpr int kCoarse = 16;

struct FlipsOptions {
  SceneOptions scene;
  bool json = false;
};

void FindFlips(const FlipsOptions& options, const Console& console) {
  OptionFaults faults;
  PlayOptions play = ReadPlayOptions(options.scene, faults);
  faults.ThrowIfAny();
  play.downsample = kCoarse;
  const Animation animation = ReadAnimation(options.scene.scene);
  std::vector<int> frames(static_cast<std::size_t>(animation.count));
  std::iota(frames.begin(), frames.end(), 0);
  HostedPlugin plugin(options.scene, console);
  FlipFinder finder(animation);
  PlayFrames(plugin.TheHost(), animation, frames, play, [&](int frame, const PlayedFrame&) {
    finder.Follow(frame, plugin.TheHost());
    return true;
  });
  console.out << (options.json ? FlipsJson(animation, finder.Flips())
                               : FlipsText(animation, finder.Flips()));
}

}  // namespace

void AddFlips(CLI::App& program, Work& chosen) {
  const auto options = std::make_shared<FlipsOptions>();
  CLI::App* command = program.add_subcommand(
      "flips", "Find the frames where overlapping bones swap their order, and the cause");
  AddSceneOptions(*command, options->scene);
  command->add_flag("--json", options->json, "As JSON; docs/explain.md describes its form");
  command->footer(R"(Example:
  tarvo flips examples/wave/wave.json)");
  command->callback([options, &chosen] {
    chosen = [options](const Console& console) {
      RunInWorker(options->scene, console, [&] { FindFlips(*options, console); });
    };
  });
}

}  // namespace tarvo
