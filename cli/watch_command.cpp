#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include <CLI/CLI.hpp>

#include "base/files/file_path.h"
#include "base/files/file_system.h"
#include "base/files/watched_files.h"
#include "cli/command.h"
#include "cli/frames/render.h"
#include "cli/frames/render_options.h"
#include "cli/frames/render_settings.h"
#include "cli/options/output_guard.h"
#include "cli/process/interrupt.h"
#include "cli/program/program.h"
#include "tool/rig/file/scene_file.h"

namespace tarvo {
namespace {

/// How often files are looked at. A saved file has to stay unchanged for as long, so that a file of
/// which an editor has written a half is not taken for a fault.
constexpr std::chrono::milliseconds kGlance{100};

/// The stamp of a regular file, or of one that does not exist; none of a pipe or a device, or where
/// the system does not say what it is, which the next attempt to write it reports.
std::optional<FileStamp> StampOfOutput(const std::filesystem::path& file) {
  try {
    const FileKind kind = KindOf(file);
    const bool isKnown = kind == FileKind::kRegular || kind == FileKind::kAbsent;
    return isKnown ? std::optional(StampOf(file)) : std::nullopt;
  } catch (const FileError&) {
    return std::nullopt;
  }
}

/// Renders a scene again whenever it is saved, and when the picture was removed or changed.
/// What cannot be rendered is reported; the last picture stays.
class SceneWatch {
 public:
  SceneWatch(const RenderOptions& options, const Console& console)
      : options_(options), console_(console), scene_(FilePath(options.scene.scene).Get(), FilesOf) {
    ExpectUsable();
  }

  /// Until Ctrl-C. Throws CommandExit if the picture is not that of the scene as it is then.
  void Run() {
    const Interrupt interrupt;
    int code = kMade;
    Say("watching " + options_.scene.scene + " and its images; Ctrl-C ends this");
    while (!interrupt.Came()) {
      code = Try([this] { Make(); }, console_);
      if (code != kMade) {
        Say(options_.output + (isMade_ ? ": the last good picture stays" : ": no picture yet"));
      }
      picture_ = StampOfOutput(output_);
      console_.out
          .flush();  // a program that reads this may change the picture now: its stamp is known
      AwaitChange(interrupt);
    }
    if (code != kMade) {
      throw CommandExit(code, {});
    }
    scene_.Look();
    if (!IsUpToDate()) {
      throw CommandExit(kInterrupted,
                        {options_.output + ": interrupted before the picture was made again"});
    }
  }

 private:
  /// Options that no save of the scene can mend end the command before it begins.
  void ExpectUsable() const {
    if (ReadRenderSettings(options_, console_).kind != OutputKind::kPicture) {
      OptionFaults faults;
      faults.Expected("--output", "name of one picture (out.png)", options_.output);
      faults.ThrowIfAny();
    }
    ExpectOutputsAreNotInputs(
        "--output", {options_.output},
        {FilePath(options_.scene.scene).Get(), FilePath(PluginOf(options_.scene)).Get()});
  }

  /// Returns when a file changed since the picture was made, or `interrupt` came.
  void AwaitChange(const Interrupt& interrupt) {
    while (!interrupt.Came() && (scene_.Look() || IsUpToDate())) {
      std::this_thread::sleep_for(kGlance);
    }
  }

  /// As far as was seen at the last look.
  [[nodiscard]] bool IsUpToDate() const {
    return scene_.Stamps() == rendered_ && StampOfOutput(output_) == picture_;
  }

  void Make() {
    rendered_ = scene_.Stamps();
    Render(options_, console_);
    isMade_ = true;
  }

  void Say(const std::string& line) const {
    if (!options_.quiet) {
      console_.err << line << std::endl;
    }
  }

  const RenderOptions& options_;
  const Console& console_;
  std::filesystem::path output_ = FilePath(options_.output).Get();
  WatchedFiles scene_;
  FileStamps rendered_;               ///< of the scene's files, before they were rendered
  std::optional<FileStamp> picture_;  ///< after it was made
  bool isMade_ = false;
};

}  // namespace

void AddWatch(CLI::App& program, Work& chosen) {
  const auto options = std::make_shared<RenderOptions>();
  CLI::App* command =
      program.add_subcommand("watch", "Render a scene again whenever it or an image is saved");
  AddSceneOptions(*command, options->scene);
  NotEmpty(command->add_option("-o,--output", options->output, "The picture to make"))
      ->required()
      ->type_name("OUT.png");
  command->add_option("--frame", options->frames, "The frame of an animation; the first otherwise")
      ->type_name("N")
      ->check(CLI::NonNegativeNumber);
  AddLookOptions(*command, *options);
  command->footer(
      R"(Errors are printed to standard error, and the last good picture is kept.
Ctrl-C ends it, with exit code 0 if the picture is up to date.

Examples:
  tarvo watch examples/wave/wave.json -o wave.png --background checker
  tarvo watch examples/wave/wave.json -o depth.png --frame 40 --show depth)");
  command->callback([options, &chosen] {
    chosen = [options](const Console& console) {
      if (console.channel != nullptr) {
        Render(*options, console);
      } else {
        SceneWatch(*options, console).Run();
      }
    };
  });
}

}  // namespace tarvo
