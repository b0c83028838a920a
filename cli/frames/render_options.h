#pragma once

#include <string>

#include "base/files/file_system.h"
#include "cli/options/scene_options.h"

namespace CLI {
class App;
}

namespace tarvo {

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

}  // namespace tarvo
