#include "cli/frames/render_options.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <numeric>
#include <string_view>
#include <utility>

#include <CLI/CLI.hpp>

#include "base/files/input_error.h"
#include "cli/frames/frame_list.h"
#include "cli/frames/movie.h"
#include "cli/process/system.h"
#include "tool/player/overlap_bones.h"

namespace standin {
namespace {

constexpr int kMostJobs = 64;

ProgressForm FormOf(const RenderOptions& options) {
  if (options.quiet) {
    return ProgressForm::kNone;
  }
  if (options.progress == "json") {
    return ProgressForm::kJson;
  }
  return ErrorIsTerminal() ? ProgressForm::kBar : ProgressForm::kLines;
}

}  // namespace

void AddLookOptions(CLI::App& command, RenderOptions& options) {
  command
      .add_option("--scale", options.scale,
                  "Resolution, as the host lowers it: 1/1 (all of it) to 1/99")
      ->type_name("1/N");
  command.add_flag("--layer", options.layer,
                   "Crop to the layer's frame instead of all that was drawn; frames of an "
                   "animation always are");
  NotEmpty(command.add_option("--background", options.background,
                              std::string("Paint over a background: ") + kBackgroundWords))
      ->type_name("COLOUR");
  NotEmpty(command.add_option(
               "--show", options.show,
               std::string("Show the overlap over the frame or in its place: ") + kSightWords))
      ->type_name("WHAT");
  command.add_flag("--quiet", options.quiet, "Do not say what is made and how far it is");
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
  command.add_option("--jobs", options.jobs, "Share the frames among so many processes")
      ->type_name("N")
      ->check(CLI::Range(1, kMostJobs));
  command.add_flag("--raw", options.raw,
                   "To standard output: red, green, blue and alpha of every pixel of the layer");
  command
      .add_option(
          "--progress", options.progress,
          "How to tell on standard error how far an animation is: auto (a bar on a terminal, "
          "a line every few seconds elsewhere) or json (an object a line)")
      ->type_name("FORM")
      ->check(CLI::IsMember({"auto", "json"}));
  AddLookOptions(command, options);
}

std::vector<std::string> CommandLine(const RenderOptions& options) {
  std::vector<std::string> words = CommandLine(options.scene);
  words.insert(words.begin(), "render");
  const RenderOptions usual;
  const auto addText = [&](const char* option, const std::string& text,
                           const std::string& otherwise) {
    if (text != otherwise) {
      words.insert(words.end(), {option, text});
    }
  };
  const auto addFlag = [&](const char* option, bool isSet) {
    if (isSet) {
      words.emplace_back(option);
    }
  };
  addText("-o", options.output, usual.output);
  addText("--frames", options.frames, usual.frames);
  addText("--jobs", std::to_string(options.jobs), std::to_string(usual.jobs));
  addText("--scale", options.scale, usual.scale);
  addText("--background", options.background, usual.background);
  addText("--show", options.show, usual.show);
  addText("--progress", options.progress, usual.progress);
  addFlag("--raw", options.raw);
  addFlag("--layer", options.layer);
  addFlag("--quiet", options.quiet);
  addFlag("--missing", options.missing);
  addFlag("--no-sync", options.sync == Sync::kNo);
  return words;
}

RenderWishes::RenderWishes(const RenderOptions& options)
    : options_(options),
      play(ReadPlayOptions(options.scene, faults_)),
      kind(KindOf(options.output)),
      progress(FormOf(options)) {
  ReadScale(options.scale);
  ReadBackgroundOption();
  ReadShow();
  ReadOutput();
  faults_.ThrowIfAny();
}

void RenderWishes::ReadScale(const std::string& text) {
  const auto denominator =
      text.starts_with("1/") ? ReadNumber<int>(std::string_view(text).substr(2)) : std::nullopt;
  if (denominator && *denominator >= 1 && *denominator <= kCoarsestDownsample) {
    play.downsample = *denominator;
  } else {
    faults_.Expected("--scale", "1/N with N from 1 to " + std::to_string(kCoarsestDownsample),
                     text);
  }
}

void RenderWishes::ReadBackgroundOption() {
  const std::string word = BackgroundWord();
  background_ = ReadBackground(word);
  if (!background_ && !word.empty()) {
    faults_.Expected("--background", kBackgroundWords, word);
  }
}

std::string RenderWishes::BackgroundWord() const {
  const bool isOpaque = kind == OutputKind::kMovie && !MovieHasAlpha(options_.output);
  return options_.background.empty() && isOpaque ? "black" : options_.background;
}

void RenderWishes::ReadOutput() {
  const std::string file =
      kind == OutputKind::kFrames ? FrameFile(options_.output, 0) : options_.output;
  const bool isPng = kind == OutputKind::kFrames || kind == OutputKind::kPicture;
  if (isPng && EndingOf(file) != ".png") {
    faults_.Expected(
        "--output",
        "name of a picture (out.png), of frames (f.%04d.png) or of a movie (.gif, .webm, .mp4)",
        options_.output);
  } else if (kind == OutputKind::kFrames) {
    faults_.Expect(ExpectFolderWritable, file);
  } else if (kind != OutputKind::kStream) {
    faults_.Expect(ExpectWritable, file);
  }
  if (options_.raw && kind != OutputKind::kStream) {
    faults_.Expected("--raw", "-o - (standard output)", options_.output);
  }
  if (options_.missing && kind != OutputKind::kFrames) {
    faults_.Expected("--missing", "files of frames (-o f.%04d.png)", options_.output);
  }
}

std::vector<std::string> RenderWishes::Files(const std::vector<int>& frames) const {
  if (kind == OutputKind::kStream) {
    return {};
  }
  if (kind != OutputKind::kFrames) {
    return {options_.output};
  }
  std::vector<std::string> files;
  std::ranges::transform(frames, std::back_inserter(files),
                         [this](int frame) { return FrameFile(options_.output, frame); });
  return files;
}

std::vector<int> RenderWishes::Frames(const Animation& animation) const {
  std::vector<int> frames = {0};
  if (!options_.frames.empty()) {
    const auto listed = ReadFrameList(options_.frames, animation.count);
    if (!listed) {
      OptionFaults faults;
      faults.Expected("--frames",
                      "list such as 0-9 or 1-3,5,7-10:2 of frames from 0 to " +
                          std::to_string(animation.count - 1),
                      options_.frames);
      faults.ThrowIfAny();
    }
    frames = *listed;
  } else if (kind == OutputKind::kFrames || kind == OutputKind::kMovie) {
    frames.resize(static_cast<std::size_t>(animation.count));
    std::iota(frames.begin(), frames.end(), 0);
  }
  if (kind == OutputKind::kPicture && frames.size() > 1) {
    OptionFaults faults;
    faults.Expected("--output", "name with the frame's number (f.%04d.png) for several frames",
                    options_.output);
    faults.ThrowIfAny();
  }
  return frames;
}

int RenderWishes::Scaled(int side) const { return (side + play.downsample - 1) / play.downsample; }

void RenderWishes::ReadShow() {
  sight_ = ReadSight(options_.show);
  if (!sight_ && !options_.show.empty()) {
    faults_.Expected("--show", kSightWords, options_.show);
  }
}

Picture RenderWishes::Shown(Picture frame, const Host& host, const Scene& scene) const {
  if (!sight_) {
    return frame;
  }
  const Overlap overlap = OverlapNow(host, frame, play.downsample);
  return Show(*sight_, frame, overlap, Scaled(scene.width), Scaled(scene.height));
}

Picture RenderWishes::Cropped(Picture picture, const Scene& scene, bool isOneOfMany) const {
  if (options_.layer || options_.raw || isOneOfMany) {
    return CropToLayer(picture, Scaled(scene.width), Scaled(scene.height));
  }
  return picture;
}

Picture RenderWishes::OverBackground(Picture picture) const {
  if (background_) {
    return Over(picture, *background_);
  }
  return picture;
}

}  // namespace standin
