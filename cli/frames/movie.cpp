#include "cli/frames/movie.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

#include "base/files/input_error.h"
#include "base/files/text_table.h"
#include "cli/options/scene_options.h"

namespace tarvo {
namespace {

struct Format {
  std::string name;  ///< the ending, and ffmpeg's name for the container
  bool hasAlpha;
  double highestRate;  ///< pictures a second that its time stamps can distinguish
  std::vector<std::string> encoder;
};

const std::vector<Format>& Formats() {
  static const std::vector<Format> formats = {
      // A palette made for the very pictures; what is half transparent is either there or not.
      {"gif",
       true,
       100.0,
       {"-filter_complex",
        "split[shown][counted];[counted]palettegen=reserve_transparent=1[colours];"
        "[shown][colours]paletteuse=alpha_threshold=128"}},
      {"webm",
       true,
       1000.0,
       {"-c:v", "libvpx-vp9", "-pix_fmt", "yuva420p", "-crf", "24", "-b:v", "0", "-auto-alt-ref",
        "0"}},
      // The usual colour format wants even sides.
      {"mp4",
       false,
       1000.0,
       {"-c:v", "libx264", "-pix_fmt", "yuv420p", "-crf", "18", "-movflags", "+faststart", "-vf",
        "pad=ceil(iw/2)*2:ceil(ih/2)*2"}},
  };
  return formats;
}

const Format* FormatOf(const std::string& file) {
  const std::string ending = EndingOf(file);
  const auto found =
      std::ranges::find(Formats(), ending, [](const Format& format) { return "." + format.name; });
  return found == Formats().end() ? nullptr : &*found;
}

std::vector<std::string> EncoderCommand(const std::string& file, const PartFile& part, int width,
                                        int height, double rate) {
  const Format& format = *FormatOf(file);
  std::vector<std::string> command = {"ffmpeg",
                                      "-hide_banner",
                                      "-loglevel",
                                      "error",
                                      "-xerror",  // a full disk is no success
                                      "-y",
                                      "-f",
                                      "rawvideo",
                                      "-pixel_format",
                                      "rgba",
                                      "-video_size",
                                      std::to_string(width) + "x" + std::to_string(height),
                                      "-framerate",
                                      Shortest(rate),
                                      "-i",
                                      "-"};
  command.insert(command.end(), format.encoder.begin(), format.encoder.end());
  command.insert(command.end(), {"-f", format.name, "file:" + part.Name().string()});
  return command;
}

/// Throws std::runtime_error when the program is not installed.
Process Start(const std::string& file, const std::vector<std::string>& command,
              Process::Pipe pipe) {
  try {
    return {command, pipe};
  } catch (const ProgramAbsent&) {
    throw std::runtime_error(file + ": the program " + command.front() +
                             " is needed for movies; install the package ffmpeg");
  }
}

/// Waits for the program's end. Throws InputError when it failed.
void ExpectGoodEnd(const std::string& file, const char* program, Process& process) {
  if (const int code = process.Wait(); code != 0) {
    throw InputError({file + ": " + program + " ended with " + Process::EndText(code)});
  }
}

/// What ffprobe prints for these arguments. Throws InputError when it fails.
std::string ProbeText(const std::string& file, std::vector<std::string> words) {
  words.insert(words.begin(), {"ffprobe", "-hide_banner", "-loglevel", "error"});
  Process probe = Start(file, words, Process::Pipe::kFromOutput);
  std::string text = probe.ReadAll();
  ExpectGoodEnd(file, "ffprobe", probe);
  return text;
}

/// The number behind "KEY=" in a line of its own; none when there is no such line.
std::optional<double> NumberOf(const std::string& key, const std::string& text) {
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    line.erase(line.find_last_not_of('\r') + 1);
    if (line.starts_with(key + "=")) {
      return ReadNumber<double>(std::string_view(line).substr(key.size() + 1));
    }
  }
  return std::nullopt;
}

PartFile MakePart(const std::string& file) {
  try {
    return PartFile(file);
  } catch (const FileError& error) {
    throw InputError({file + ": " + error.what()});
  }
}

/// What can be known to fail is known before the first picture is rendered.
Process StartEncoder(const std::string& file, const PartFile& part, int width, int height,
                     double rate) {
  const Format& format = *FormatOf(file);
  if (rate > format.highestRate) {
    throw InputError({file + ": at most " + Shortest(format.highestRate) +
                      " frames a second of a ." + format.name + " expected, the scene's rate is " +
                      Shortest(rate)});
  }
  ProbeText(file, {"-version"});
  return Start(file, EncoderCommand(file, part, width, height, rate), Process::Pipe::kToInput);
}

}  // namespace

bool IsMovie(const std::string& file) { return FormatOf(file) != nullptr; }

bool MovieHasAlpha(const std::string& file) { return FormatOf(file)->hasAlpha; }

Movie::Movie(std::string file, int width, int height, double rate, Sync sync)
    : file_(std::move(file)),
      rate_(rate),
      sync_(sync),
      part_(MakePart(file_)),
      encoder_(StartEncoder(file_, part_, width, height, rate)) {}

void Movie::Take(int /*frame*/, const Picture& picture) {
  try {
    encoder_.Write(picture.Bytes(), picture.pixels.size() * sizeof(Rgba));
    ++frames_;
  } catch (const ProcessError&) {
    throw InputError({file_ + ": ffmpeg ended with " + Process::EndText(encoder_.Wait())});
  }
}

void Movie::Commit() {
  ExpectGoodEnd(file_, "ffmpeg", encoder_);
  ExpectComplete();
  try {
    part_.Rename(sync_);
  } catch (const FileError& error) {
    throw InputError({file_ + ": " + error.what()});
  }
}

/// Decodes every picture: an encoder may say that all is well and leave a file that is cut off. The
/// times of a GIF are hundredths of a second, and players show short ones longer: a movie is too
/// short or it is not.
void Movie::ExpectComplete() const {
  const std::string text =
      ProbeText(file_, {"-count_frames", "-select_streams", "v:0", "-show_entries",
                        "stream=nb_read_frames:format=duration", "-of",
                        "default=noprint_wrappers=1", "file:" + part_.Name().string()});
  constexpr double kRounding = 0.01;  // seconds
  const auto frames = static_cast<int>(NumberOf("nb_read_frames", text).value_or(0.0));
  const double seconds = NumberOf("duration", text).value_or(0.0);
  const double shortest = (frames_ - 1) / rate_ - kRounding;
  if (frames != frames_ || seconds < shortest) {
    throw InputError({file_ +
                      ": the movie that ffmpeg made is not whole: " + std::to_string(frames_) +
                      " frames in " + Shortest(frames_ / rate_) + " s expected, " +
                      std::to_string(frames) + " in " + Shortest(seconds) + " s found"});
  }
}

}  // namespace tarvo
