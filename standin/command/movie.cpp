#include "standin/command/movie.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <stdexcept>
#include <utility>
#include <vector>

#include "standin/scene_faults.h"
#include "standin/text_table.h"

namespace standin {
namespace {

struct Format {
  std::string name;  ///< the ending, and ffmpeg's name for the container
  bool hasAlpha;
  std::vector<std::string> encoder;
};

const std::vector<Format>& Formats() {
  static const std::vector<Format> formats = {
      // A palette made for the very pictures; what is half transparent is either there or not.
      {"gif",
       true,
       {"-filter_complex",
        "split[shown][counted];[counted]palettegen=reserve_transparent=1[colours];"
        "[shown][colours]paletteuse=alpha_threshold=128"}},
      {"webm",
       true,
       {"-c:v", "libvpx-vp9", "-pix_fmt", "yuva420p", "-crf", "24", "-b:v", "0", "-auto-alt-ref",
        "0"}},
      // The usual colour format wants even sides.
      {"mp4",
       false,
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

Process StartEncoder(const std::string& file, const std::vector<std::string>& command) {
  try {
    return {command, Process::Pipe::kToInput};
  } catch (const ProgramAbsent&) {
    throw std::runtime_error(file +
                             ": the program ffmpeg makes movies; install the package ffmpeg");
  }
}

}  // namespace

bool IsMovie(const std::string& file) { return FormatOf(file) != nullptr; }

bool MovieHasAlpha(const std::string& file) { return FormatOf(file)->hasAlpha; }

Movie::Movie(std::string file, int width, int height, double rate)
    : file_(std::move(file)),
      part_(file_),
      encoder_(StartEncoder(file_, EncoderCommand(file_, part_, width, height, rate))) {}

void Movie::Take(int /*frame*/, const Picture& picture) {
  try {
    encoder_.Write(picture.Bytes(), picture.pixels.size() * sizeof(Rgba));
  } catch (const ProcessError&) {
    throw InputError({file_ + ": ffmpeg ended with " + std::to_string(encoder_.Wait())});
  }
}

void Movie::Commit() {
  if (const int code = encoder_.Wait(); code != 0) {
    throw InputError({file_ + ": ffmpeg ended with " + std::to_string(code)});
  }
  try {
    part_.Rename();
  } catch (const FileError& error) {
    throw InputError({file_ + ": " + error.what()});
  }
}

}  // namespace standin
