#include <algorithm>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>

#include <CLI/CLI.hpp>

#include "cli/command.h"
#include "cli/options/hosted_plugin.h"
#include "cli/options/scene_options.h"
#include "cli/run_in_worker.h"
#include "tool/explain/explanation.h"
#include "tool/player/scene_player.h"
#include "tool/rig/file/scene_file.h"

namespace tarvo {
namespace {

struct ExplainOptions {
  SceneOptions scene;
  int frame = 0;
  bool json = false;
  std::string at;
};

using PixelPlace = std::pair<int, int>;

/// Farther from the layer's corner than anything is drawn, in pixels.
constexpr int kFarthestPlace = 1'000'000;

bool IsNear(int place) { return place >= -kFarthestPlace && place <= kFarthestPlace; }

/// "X,Y"; none for any other text, and for places where nothing can be.
std::optional<PixelPlace> ReadPlace(const std::string& text) {
  const std::size_t comma = std::min(text.find(','), text.size());
  const auto x = ReadNumber<int>(std::string_view(text).substr(0, comma));
  const auto y = comma < text.size() ? ReadNumber<int>(std::string_view(text).substr(comma + 1))
                                     : std::nullopt;
  return x && y && IsNear(*x) && IsNear(*y) ? std::optional(PixelPlace(*x, *y)) : std::nullopt;
}

void Explain(const ExplainOptions& options, const Console& console) {
  OptionFaults faults;
  const PlayOptions play = ReadPlayOptions(options.scene, faults);
  const auto place = ReadPlace(options.at);
  if (!place && !options.at.empty()) {
    faults.Expected("--at", "X,Y in whole layer pixels", options.at);
  }
  faults.ThrowIfAny();
  const Animation animation = ReadAnimation(options.scene.scene);
  if (options.frame < 0 || options.frame >= animation.count) {
    faults.Expected("--frame", "frame from 0 to " + std::to_string(animation.count - 1),
                    std::to_string(options.frame));
    faults.ThrowIfAny();
  }
  HostedPlugin plugin(options.scene, console);
  std::string text;
  PlayFrames(plugin.TheHost(), animation, {options.frame}, play,
             [&](int frame, const PlayedFrame& played) {
               const Explanation explanation =
                   Explain(plugin.TheHost(), SceneAt(animation, frame), played.picture, place);
               text = options.json ? ExplanationJson(explanation) : ExplanationText(explanation);
               return true;
             });
  console.out << text;
}

}  // namespace

void AddExplain(CLI::App& program, Work& chosen) {
  const auto options = std::make_shared<ExplainOptions>();
  CLI::App* command =
      program.add_subcommand("explain", "Explain the depth order of the pieces of a frame");
  AddSceneOptions(*command, options->scene);
  command->add_option("--frame", options->frame, "The frame of an animation; the first otherwise");
  command->add_flag("--json", options->json, "As JSON; docs/explain.md describes its form");
  NotEmpty(command->add_option(
               "--at", options->at,
               "Explain one pixel of the layer too: the pieces there and what each contributes"))
      ->type_name("X,Y");
  command->footer(R"(Examples:
  tarvo explain examples/wave/wave.json --exact --at 650,330
  tarvo explain examples/wave/wave.json --frame 40 --json)");
  command->callback([options, &chosen] {
    chosen = [options](const Console& console) {
      RunInWorker(options->scene, console, [&] { Explain(*options, console); });
    };
  });
}

}  // namespace tarvo
