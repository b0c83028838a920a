#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/files/file_system.h"
#include "cli/frames/frame_output.h"
#include "cli/frames/output_picture.h"
#include "cli/frames/progress.h"
#include "cli/frames/render_options.h"
#include "cli/process/console.h"
#include "tool/explain/visualization.h"
#include "tool/player/scene_player.h"

namespace tarvo {

/// What `tarvo render` is to do: its options, read and checked.
struct RenderSettings {
  SceneOptions scene;
  PlayOptions play;
  std::string output;
  OutputKind kind = OutputKind::kPicture;
  std::string frames;  ///< a list as typed: it can only be checked against the scene
  bool missing = false;
  int jobs = 1;
  bool raw = false;
  bool layer = false;
  std::optional<Background> background;
  std::optional<Visualization> show;
  ProgressForm progress = ProgressForm::kNone;
  bool quiet = false;
  Sync sync = Sync::kYes;
};

/// Throws InputError with a line for each option that cannot be used. A worker makes no files: in
/// one it is not looked whether they can be made.
RenderSettings ReadRenderSettings(const RenderOptions& options, const Console& console);

/// The frames that are asked for, of an animation of `count`: those listed, otherwise all of them
/// for frames and movies, and frame 0 for one picture. Throws InputError if the animation has not
/// got them, or if they are too many for the output.
std::vector<int> FramesAskedFor(const RenderSettings& settings, int count);

/// The files that these frames make, all together or one each; none for standard output.
std::vector<std::string> FilesMade(const RenderSettings& settings, const std::vector<int>& frames);

}  // namespace tarvo
