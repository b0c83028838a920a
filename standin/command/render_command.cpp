#include <charconv>
#include <cmath>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "standin/command/command.h"
#include "standin/command/default_plugin.h"
#include "standin/command/finish.h"
#include "standin/image_file.h"
#include "standin/performance.h"
#include "standin/plugin_library.h"
#include "standin/scene_file.h"

namespace standin {
namespace {

constexpr int kCoarsestScale = 99;

/// The command line as it was typed.
struct Options {
  std::string scene;
  std::string output;
  std::string plugin;
  bool exact = false;
  bool fast = false;
  std::vector<std::string> settings;
  std::string scale = "1/1";
  bool layer = false;
  std::string background;
  bool trace = false;
  bool quiet = false;
};

/// The whole text as a number; none when it is something else.
template <typename Number>
std::optional<Number> ReadNumber(std::string_view text) {
  Number number{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size() ? std::optional(number)
                                                                  : std::nullopt;
}

/// Options as they are used. Throws InputError with a line for each that cannot be.
class Wishes {
 public:
  explicit Wishes(const Options& options) {
    ReadSettings(options.settings);
    ReadScale(options.scale);
    ReadBackgroundOption(options.background);
    if (options.exact || options.fast) {
      play.fast = options.fast;
    }
    try {
      ExpectWritable(options.output);
    } catch (const FileError& error) {
      faults_.push_back(options.output + ": " + error.what());
    }
    if (!faults_.empty()) {
      throw InputError(faults_);
    }
  }

  PlayOptions play;
  std::optional<Background> background;

 private:
  void ReadSettings(const std::vector<std::string>& settings) {
    for (const std::string& text : settings) {
      const std::size_t sign = text.rfind('=');
      const auto value = sign == std::string::npos
                             ? std::nullopt
                             : ReadNumber<double>(std::string_view(text).substr(sign + 1));
      if (value && std::isfinite(*value)) {
        play.settings.push_back({text.substr(0, sign), *value, "--set \"" + text + "\""});
      } else {
        Expected("--set", "LABEL=NUMBER", text);
      }
    }
  }

  void ReadScale(const std::string& text) {
    const auto denominator =
        text.starts_with("1/") ? ReadNumber<int>(std::string_view(text).substr(2)) : std::nullopt;
    if (denominator && *denominator >= 1 && *denominator <= kCoarsestScale) {
      play.downsample = *denominator;
    } else {
      Expected("--scale", "1/N with N from 1 to " + std::to_string(kCoarsestScale), text);
    }
  }

  void ReadBackgroundOption(const std::string& text) {
    background = ReadBackground(text);
    if (!background && !text.empty()) {
      Expected("--background", kBackgroundWords, text);
    }
  }

  void Expected(const std::string& option, const std::string& what, const std::string& given) {
    faults_.push_back(option + ": " + what + " expected, \"" + given + "\" given");
  }

  std::vector<std::string> faults_;
};

PlayedFrame PlayScene(const Options& options, const Scene& scene, const PlayOptions& play,
                      const Console& console) {
  const PluginLibrary library(options.plugin.empty() ? DefaultPlugin() : options.plugin);
  HostOptions hostOptions;
  hostOptions.pluginPath = library.Path();
  Host host(library.EntryPoint(), hostOptions);
  host.gate.KeepLog(false);
  if (options.trace) {
    host.gate.TraceTo([&](std::string_view line) { console.err << line << '\n'; });
  }
  return Play(host, scene, play);
}

Picture Finish(Picture picture, const Options& options, const Wishes& wishes, const Scene& scene) {
  if (options.layer) {
    const auto scaled = [&](int side) {
      return (side + wishes.play.downsample - 1) / wishes.play.downsample;
    };
    picture = CropToLayer(picture, scaled(scene.width), scaled(scene.height));
  }
  return wishes.background ? Over(picture, *wishes.background) : picture;
}

void Render(const Options& options, const Console& console) {
  const Wishes wishes(options);
  const Scene scene = ReadScene(std::filesystem::path(options.scene));
  PlayedFrame frame = PlayScene(options, scene, wishes.play, console);
  const Picture picture = Finish(std::move(frame.picture), options, wishes, scene);
  try {
    WritePng(options.output, picture);
  } catch (const FileError& error) {
    throw InputError({options.output + ": " + error.what()});
  }
  if (!options.quiet) {
    console.out << options.output << ": " << picture.width << "x" << picture.height << ", "
                << frame.pieces << " pieces, " << std::lround(frame.milliseconds) << " ms\n";
  }
}

}  // namespace

void AddRender(CLI::App& program, Work& chosen) {
  const auto options = std::make_shared<Options>();
  CLI::App* command = program.add_subcommand("render", "Render a scene file into a PNG picture");
  command->add_option("scene", options->scene, "The scene, a JSON file")
      ->required()
      ->type_name("SCENE.json");
  command->add_option("-o,--output", options->output, "The picture to make")
      ->required()
      ->type_name("OUT.png");
  command
      ->add_option("--plugin", options->plugin,
                   "The plug-in; the one beside this program otherwise")
      ->type_name("FILE");
  CLI::Option* exact = command->add_flag("--exact", options->exact,
                                         "Fast transparency off, whatever the scene says");
  command->add_flag("--fast", options->fast, "Fast transparency on, whatever the scene says")
      ->excludes(exact);
  command
      ->add_option("--set", options->settings,
                   "Move the slider of this label; can be given several times")
      ->type_name("LABEL=NUMBER")
      ->allow_extra_args(false);
  command
      ->add_option("--scale", options->scale,
                   "Resolution, as the host lowers it: 1/1 (all of it) to 1/99")
      ->type_name("1/N");
  command->add_flag("--layer", options->layer,
                    "Crop to the layer's frame instead of all that was drawn");
  command
      ->add_option("--background", options->background,
                   std::string("Paint over a background: ") + kBackgroundWords)
      ->type_name("COLOUR");
  command->add_flag("--trace", options->trace,
                    "Write every command and host operation to standard error");
  command->add_flag("--quiet", options->quiet, "Do not say what was made");
  command->footer(R"(Example:
  tarvo render examples/wave/wave.json -o wave.png --set "Forearm start Z=3" --background checker)");
  command->callback([options, &chosen] {
    chosen = [options](const Console& console) { Render(*options, console); };
  });
}

}  // namespace standin
