#include <cstdlib>
#include <filesystem>
#include <memory>
#include <numeric>
#include <stdexcept>
#include <string>

#include "bench/contests.h"
#include "bench/measure.h"
#include "standin/performance.h"
#include "standin/plugin_library.h"
#include "standin/scene_file.h"

namespace bench {
namespace {

constexpr int kFrames = 100;
constexpr const char* kSceneFile = TARVO_EXAMPLES "/wave/wave.json";

// A host calls a plain function, so what it needs to know lies here.
PF_EntryPoint gLibrary = nullptr;
double gRenderMilliseconds = 0.0;

PF_Err ClockedEntryPoint(PF_Cmd command, PF_InData* in, PF_OutData* out, PF_ParamDef* params[],
                         PF_LayerDef* output, void* extra) {
  PF_Err result = PF_Err_NONE;
  const double spent =
      ElapsedMilliseconds([&] { result = gLibrary(command, in, out, params, output, extra); });
  if (command == PF_Cmd_RENDER) gRenderMilliseconds += spent;
  return result;
}

/// Milliseconds of the render commands of all frames, with nothing beside them.
double RenderCommands(const standin::Animation& animation) {
  std::vector<int> frames(kFrames);
  std::iota(frames.begin(), frames.end(), 0);
  gRenderMilliseconds = 0.0;
  standin::Host host(ClockedEntryPoint);
  standin::PlayFrames(host, animation, frames, {},
                      [](int, const standin::PlayedFrame&) { return true; });
  return gRenderMilliseconds;
}

/// Milliseconds that the command takes from its start to its end.
double WholeCommand() {
  const auto folder = std::filesystem::temp_directory_path() / "tarvo_bench_frames";
  std::filesystem::create_directories(folder);
  const std::string command = std::string("\"" TARVO_COMMAND "\" render \"") + kSceneFile +
                              "\" --frames 0-" + std::to_string(kFrames - 1) + " --quiet -o \"" +
                              (folder / "f.%04d.png").string() + '"';
  int code = 0;
  const double spent = ElapsedMilliseconds([&] { code = std::system(command.c_str()); });
  std::filesystem::remove_all(folder);
  if (code != 0) throw std::runtime_error("this failed: " + command);
  return spent;
}

}  // namespace

PlayPair Sequence() {
  const auto library = std::make_shared<standin::PluginLibrary>(
      (std::filesystem::path(TARVO_COMMAND).parent_path() / "Tarvo_overlaps_manager.so").string());
  gLibrary = library->EntryPoint();
  return [library, animation = standin::ReadAnimation(standin::FilePath(kSceneFile))]() -> Pair {
    return {.ours = WholeCommand(), .theirs = RenderCommands(animation)};
  };
}

}  // namespace bench
