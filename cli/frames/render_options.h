#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/frames/finish.h"
#include "cli/frames/frame_output.h"
#include "cli/frames/progress.h"
#include "cli/options/scene_options.h"
#include "tool/explain/show.h"
#include "tool/rig/animation.h"

namespace CLI {
class App;
}

namespace standin {

/// The command line of `tarvo render` as it was typed.
struct RenderOptions {
  SceneOptions scene;
  std::string output;
  std::string frames;
  bool missing = false;
  int jobs = 1;
  bool raw = false;
  std::string progress = "auto";
  std::string scale = "1/1";
  bool layer = false;
  std::string background;
  std::string show;
  bool quiet = false;
  Sync sync = Sync::kYes;
};

void AddRenderOptions(CLI::App& command, RenderOptions& options);
/// Those of them that say how a picture looks, how it is written and whether it is spoken of.
void AddLookOptions(CLI::App& command, RenderOptions& options);

/// The words of a command line that gives these options: "render", "wave.json", …
std::vector<std::string> CommandLine(const RenderOptions& options);

/// Options as they are used. Throws InputError with a line for each that cannot be.
class RenderWishes {
 public:
  explicit RenderWishes(const RenderOptions& options);

  /// The frames that are asked for: those listed, otherwise all of them for frames and movies, and
  /// frame 0 for one picture. Throws InputError if the animation has not got them, or if they are
  /// too many for the output.
  [[nodiscard]] std::vector<int> Frames(const Animation& animation) const;
  /// The files that these frames make, all together or one each; none for standard output.
  [[nodiscard]] std::vector<std::string> Files(const std::vector<int>& frames) const;
  /// The frame that a performance has just rendered on the host, with the sight of its overlap that
  /// was asked for, if any.
  [[nodiscard]] Picture Shown(Picture frame, const Host& host, const Scene& scene) const;
  /// The part of a picture that was asked for: the layer's (always, if `isOneOfMany`: only so are
  /// all frames of one size and at one place) or all of it.
  [[nodiscard]] Picture Cropped(Picture picture, const Scene& scene, bool isOneOfMany) const;
  /// A picture over the background that was asked for, if any.
  [[nodiscard]] Picture OverBackground(Picture picture) const;
  /// The background as a word of --background: the one that was asked for, otherwise black for
  /// movies that cannot be transparent, otherwise empty.
  [[nodiscard]] std::string BackgroundWord() const;
  /// A side of the layer's frame, in pixels of the pictures.
  [[nodiscard]] int Scaled(int side) const;

 private:
  void ReadScale(const std::string& text);
  void ReadBackgroundOption();
  void ReadShow();
  void ReadOutput();

  const RenderOptions& options_;
  OptionFaults faults_;
  std::optional<Background> background_;
  std::optional<Sight> sight_;

 public:
  PlayOptions play;
  OutputKind kind;
  ProgressForm progress = ProgressForm::kNone;
};

}  // namespace standin
