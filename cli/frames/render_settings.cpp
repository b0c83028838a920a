#include "cli/frames/render_settings.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <numeric>
#include <string_view>

#include "base/files/input_error.h"
#include "cli/frames/frame_list.h"
#include "cli/frames/movie.h"
#include "cli/options/suggestions.h"
#include "cli/process/system.h"

namespace tarvo {
namespace {

ProgressForm FormOf(const RenderOptions& options) {
  if (options.quiet) {
    return ProgressForm::kNone;
  }
  if (options.progress == "json") {
    return ProgressForm::kJson;
  }
  return ErrorIsTerminal() ? ProgressForm::kBar : ProgressForm::kLines;
}

int ReadScale(const std::string& text, OptionFaults& faults) {
  const auto denominator =
      text.starts_with("1/") ? ReadNumber<int>(std::string_view(text).substr(2)) : std::nullopt;
  if (!denominator || *denominator < 1 || *denominator > kCoarsestDownsample) {
    faults.Expected("--scale", "1/N with N from 1 to " + std::to_string(kCoarsestDownsample), text);
    return 1;
  }
  return *denominator;
}

/// The one that was asked for; otherwise black for movies that cannot be transparent.
std::optional<Background> ReadBackgroundOption(const RenderOptions& options, OutputKind kind,
                                               OptionFaults& faults) {
  const bool isOpaque = kind == OutputKind::kMovie && !MovieHasAlpha(options.output);
  const std::string word = options.background.empty() && isOpaque ? "black" : options.background;
  std::optional<Background> background = ReadBackground(word);
  if (!background && !word.empty()) {
    faults.Expected("--background", BackgroundWords(), word);
  }
  return background;
}

std::optional<Visualization> ReadShow(const std::string& text, OptionFaults& faults) {
  const std::optional<Visualization> visualization = ReadVisualization(text);
  if (!visualization && !text.empty()) {
    faults.Expected("--show", Alternatives(kVisualizationNames), text);
  }
  return visualization;
}

void CheckOutput(const RenderOptions& options, OutputKind kind, OptionFaults& faults) {
  const std::string file =
      kind == OutputKind::kFrames ? FrameFile(options.output, 0) : options.output;
  const bool isPng = kind == OutputKind::kFrames || kind == OutputKind::kPicture;
  if (isPng && EndingOf(file) != ".png") {
    faults.Expected(
        "--output",
        "name of a picture (out.png), of frames (f.%04d.png) or of a movie (.gif, .webm, .mp4)",
        options.output);
  } else if (kind == OutputKind::kFrames) {
    faults.Expect(ExpectFolderWritable, file);
  } else if (kind != OutputKind::kStream) {
    faults.Expect(ExpectWritable, file);
  }
  if (options.raw && kind != OutputKind::kStream) {
    faults.Expected("--raw", "-o - (standard output)", options.output);
  }
  if (options.missing && kind != OutputKind::kFrames) {
    faults.Expected("--missing", "files of frames (-o f.%04d.png)", options.output);
  }
}

}  // namespace

RenderSettings ReadRenderSettings(const RenderOptions& options, const Console& console) {
  OptionFaults faults;
  RenderSettings settings{.scene = options.scene,
                          .play = ReadPlayOptions(options.scene, faults),
                          .output = options.output,
                          .kind = OutputKindOf(options.output),
                          .frames = options.frames,
                          .missing = options.missing,
                          .jobs = options.jobs,
                          .raw = options.raw,
                          .layer = options.layer,
                          .progress = FormOf(options),
                          .quiet = options.quiet,
                          .sync = options.sync};
  settings.play.downsample = ReadScale(options.scale, faults);
  settings.background = ReadBackgroundOption(options, settings.kind, faults);
  settings.show = ReadShow(options.show, faults);
  if (console.channel == nullptr) {
    CheckOutput(options, settings.kind, faults);
  }
  faults.ThrowIfAny();
  return settings;
}

std::vector<int> FramesAskedFor(const RenderSettings& settings, int count) {
  std::vector<int> frames = {0};
  OptionFaults faults;
  if (!settings.frames.empty()) {
    if (const auto listed = ReadFrameList(settings.frames, count)) {
      frames = *listed;
    } else {
      faults.Expected(
          "--frames",
          "list such as 0-9 or 1-3,5,7-10:2 of frames from 0 to " + std::to_string(count - 1),
          settings.frames);
    }
  } else if (settings.kind == OutputKind::kFrames || settings.kind == OutputKind::kMovie) {
    frames.resize(static_cast<std::size_t>(count));
    std::iota(frames.begin(), frames.end(), 0);
  }
  const bool isOfAnimation = settings.frames.empty() && count > 1;
  if (settings.kind == OutputKind::kPicture && isOfAnimation &&
      IsUnsupportedPattern(settings.output)) {
    faults.Expected("--output",
                    "name with the frame's number as %d or %0Nd, N from 1 to 9 (f.%04d.png), or "
                    "--frames 0 for one picture of that very name",
                    settings.output);
  }
  if (settings.kind == OutputKind::kPicture && frames.size() > 1) {
    faults.Expected("--output", "name with the frame's number (f.%04d.png) for several frames",
                    settings.output);
  }
  faults.ThrowIfAny();
  return frames;
}

std::vector<std::string> FilesMade(const RenderSettings& settings, const std::vector<int>& frames) {
  if (settings.kind == OutputKind::kStream) {
    return {};
  }
  if (settings.kind != OutputKind::kFrames) {
    return {settings.output};
  }
  std::vector<std::string> files;
  std::ranges::transform(frames, std::back_inserter(files),
                         [&](int frame) { return FrameFile(settings.output, frame); });
  return files;
}

}  // namespace tarvo
