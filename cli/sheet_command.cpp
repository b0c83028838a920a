#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include <CLI/CLI.hpp>

#include "base/files/text_table.h"
#include "base/image/sheet.h"
#include "cli/command.h"
#include "cli/frames/frame_list.h"
#include "cli/frames/output_picture.h"
#include "cli/options/hosted_plugin.h"
#include "cli/options/output_guard.h"
#include "cli/options/scene_options.h"
#include "cli/options/suggestions.h"
#include "cli/run_in_worker.h"
#include "tool/player/scene_player.h"
#include "tool/rig/file/scene_file.h"

namespace tarvo {
namespace {

constexpr int kMostSteps = 100;
constexpr long long kMostPixels = 1LL << 28;  // a gigabyte, of all cells together
constexpr int kFramesOfItsOwn = 12;           // without --frames

struct SheetOptions {
  SceneOptions scene;
  std::string output;
  std::string frames;
  bool both = false;
  std::string sweep;
  int cell = 320;
  int columns = 0;
  std::string background = "checker";
  Sync sync = Sync::kYes;
};

/// A slider, and the values that it is given one after the other.
struct Sweep {
  std::string label;
  std::vector<double> values;
};

/// "LABEL=FROM..TO:COUNT"; none for any other text.
std::optional<Sweep> ReadSweep(const std::string& text) {
  const std::size_t sign = text.rfind('=');
  const std::size_t dots = sign == std::string::npos ? sign : text.find("..", sign);
  const std::size_t colon = dots == std::string::npos ? dots : text.find(':', dots);
  if (colon == std::string::npos) {
    return std::nullopt;
  }
  const std::string_view view(text);
  const auto from = ReadNumber<double>(view.substr(sign + 1, dots - sign - 1));
  const auto to = ReadNumber<double>(view.substr(dots + 2, colon - dots - 2));
  const auto count = ReadNumber<int>(view.substr(colon + 1));
  if (!from || !to || !std::isfinite(*from) || !std::isfinite(*to) || !count || *count < 2 ||
      *count > kMostSteps) {
    return std::nullopt;
  }
  Sweep sweep{.label = text.substr(0, sign), .values = {}};
  for (int step = 0; step < *count; ++step) {
    sweep.values.push_back((*from * (*count - 1 - step) + *to * step) / (*count - 1));
  }
  return sweep;
}

/// What is the same in one play of the animation: a name for it, and its options.
struct Variant {
  std::string label;
  PlayOptions play;
};

class SheetMaker {
 public:
  SheetMaker(const SheetOptions& options, const Console& console)
      : options_(options), console_(console), play_(ReadPlayOptions(options.scene, faults_)) {
    ReadOptions();
    faults_.ThrowIfAny();
    animation_ = ReadAnimation(options.scene.scene);
    if (!IsWorker()) {
      ExpectOutputsAreNotInputs("--output", {options.output},
                                FilesRead(options.scene, animation_.files));
    }
    ReadFrames();
    faults_.ThrowIfAny();
    const int side = std::max(animation_.scene.width, animation_.scene.height);
    play_.downsample = std::min((side + options.cell - 1) / options.cell, kCoarsestDownsample);
    ExpectToFit();
  }

  Picture Make() {
    const std::vector<Variant> variants = Variants();
    std::vector<SheetCell> cells(frames_.size() * variants.size());
    for (std::size_t i = 0; i < variants.size(); ++i) {
      std::size_t row = 0;
      HostedPlugin plugin(options_.scene, console_);
      PlayFrames(plugin.TheHost(), animation_, frames_, variants[i].play,
                 [&](int frame, const PlayedFrame& played) {
                   cells[row * variants.size() + i] = Cell(frame, variants[i], played.picture);
                   ++row;
                   return true;
                 });
    }
    return MakeSheet(cells, Columns(variants.size(), cells.size()));
  }

 private:
  /// Only the process that writes the sheet can identify its own files.
  [[nodiscard]] bool IsWorker() const { return console_.channel != nullptr; }

  void ReadOptions() {
    if (!IsWorker()) {
      faults_.ExpectPictureName(options_.output);
    }
    background_ = ReadBackground(options_.background);
    if (!background_) {
      faults_.Expected("--background", BackgroundWords(), options_.background);
    }
    if (!options_.sweep.empty()) {
      sweep_ = ReadSweep(options_.sweep);
      if (!sweep_) {
        faults_.Expected("--sweep", "LABEL=FROM..TO:COUNT with COUNT from 2 to 100",
                         options_.sweep);
      }
    }
  }

  /// Those that are listed; otherwise the first one of a sweep, and of an animation as many as a
  /// sheet holds with ease, evenly apart.
  void ReadFrames() {
    if (!options_.frames.empty()) {
      if (const auto listed = ReadFrameList(options_.frames, animation_.count)) {
        frames_ = *listed;
      } else {
        faults_.Expected("--frames",
                         "list such as 0-9 or 1-3,5,7-10:2 of frames from 0 to " +
                             std::to_string(animation_.count - 1),
                         options_.frames);
      }
      return;
    }
    const int count = sweep_ ? 1 : std::min(animation_.count, kFramesOfItsOwn);
    for (int i = 0; i < count; ++i) {
      frames_.push_back(static_cast<int>(static_cast<long long>(i) * animation_.count / count));
    }
  }

  [[nodiscard]] int Scaled(int side) const {
    return (side + play_.downsample - 1) / play_.downsample;
  }

  /// Better than hours of rendering for a sheet that no file holds.
  void ExpectToFit() {
    const auto cells = static_cast<long long>(frames_.size() * Variants().size());
    const Scene& scene = animation_.scene;
    if (cells * Scaled(scene.width) * Scaled(scene.height) > kMostPixels) {
      faults_.Expected("--cell", "size at which all cells have at most 2^28 pixels",
                       std::to_string(options_.cell) + " for " + std::to_string(cells) + " cells");
      faults_.ThrowIfAny();
    }
  }

  [[nodiscard]] std::vector<Variant> Variants() const {
    std::vector<Variant> variants;
    if (sweep_) {
      for (const double value : sweep_->values) {
        variants.push_back({sweep_->label + " " + Shortest(value), play_});
        variants.back().play.settings.push_back(
            {sweep_->label, value, "--sweep \"" + options_.sweep + "\""});
      }
    } else {
      variants.push_back({"", play_});
    }
    if (!options_.both) {
      return variants;
    }
    std::vector<Variant> both;
    for (const Variant& variant : variants) {
      for (const bool fast : {true, false}) {
        both.push_back(variant);
        both.back().label += (variant.label.empty() ? "" : ", ") + ModeWord(fast);
        both.back().play.fast = fast;
      }
    }
    return both;
  }

  static std::string ModeWord(bool fast) { return fast ? "fast" : "exact"; }

  [[nodiscard]] SheetCell Cell(int frame, const Variant& variant, const Picture& picture) const {
    std::string label = variant.label;
    if (frames_.size() > 1 || label.empty()) {
      label = "frame " + std::to_string(frame) + (label.empty() ? "" : ", ") + label;
    }
    const Scene& scene = animation_.scene;
    return {label,
            Over(CropToLayer(picture, Scaled(scene.width), Scaled(scene.height)), *background_)};
  }

  /// Variants of one frame side by side where there are several, otherwise a sheet about square.
  [[nodiscard]] std::size_t Columns(std::size_t variants, std::size_t cells) const {
    if (options_.columns > 0) {
      return static_cast<std::size_t>(options_.columns);
    }
    if (sweep_) {
      return variants;
    }
    const auto side = static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(cells))));
    return (side + variants - 1) / variants * variants;
  }

  const SheetOptions& options_;
  const Console& console_;
  OptionFaults faults_;
  PlayOptions play_;
  std::optional<Background> background_;
  std::optional<Sweep> sweep_;
  Animation animation_;
  std::vector<int> frames_;
};

void WriteSheet(const SheetOptions& options, const Console& console) {
  SheetMaker maker(options, console);
  const std::optional<Picture> sheet =
      RenderInWorker(options.scene, console, [&] { return maker.Make(); });
  if (sheet) {
    WritePicture(options.output, *sheet, options.sync);
    PrintResult(console, options.output + ": " + std::to_string(sheet->width) + "x" +
                             std::to_string(sheet->height) + "\n");
  }
}

}  // namespace

void AddSheet(CLI::App& program, Work& chosen) {
  const auto options = std::make_shared<SheetOptions>();
  CLI::App* command =
      program.add_subcommand("sheet", "Render labelled pictures of a rig side by side");
  AddSceneOptions(*command, options->scene);
  NotEmpty(command->add_option("-o,--output", options->output, "The picture to make"))
      ->required()
      ->type_name("SHEET.png");
  NotEmpty(command->add_option("--frames", options->frames,
                               "Frames of the animation; otherwise up to 12, evenly spaced"))
      ->type_name("LIST");
  command->add_flag("--both", options->both, "Each in both modes, fast and exact")
      ->excludes("--fast")
      ->excludes("--exact");
  NotEmpty(command->add_option("--sweep", options->sweep,
                               "Set a slider to COUNT values, evenly spaced from FROM to TO"))
      ->type_name("LABEL=FROM..TO:COUNT");
  command->add_option("--cell", options->cell, "Largest side of a cell, in pixels")
      ->check(CLI::Range(16, 4096))
      ->capture_default_str();
  command->add_option("--columns", options->columns, "Cells in a row")->check(CLI::Range(1, 1000));
  Suggest(command->add_option("--background", options->background,
                              "Background behind the rig: " + BackgroundWords()),
          kBackgroundNames)
      ->type_name("COLOUR")
      ->capture_default_str();
  AddSyncOption(*command, options->sync);
  command->footer(R"(Examples:
  tarvo sheet examples/wave/wave.json -o sheet.png
  tarvo sheet examples/wave/wave.json -o sweep.png --sweep "Forearm start Z=-9..3:7"
  tarvo sheet examples/cape/cape.json -o modes.png --both --cell 600)");
  command->callback([options, &chosen] {
    chosen = [options](const Console& console) { WriteSheet(*options, console); };
  });
}

}  // namespace tarvo
