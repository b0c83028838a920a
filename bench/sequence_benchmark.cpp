#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <numeric>
#include <stdexcept>
#include <string>

#include "bench/benchmarks.h"
#include "bench/measure.h"
#include "standin/loader/plugin_library.h"
#include "tool/player/scene_player.h"
#include "tool/rig/file/scene_file.h"

namespace bench {
namespace {

constexpr int kFrames = 100;
constexpr const char* kSceneFile = TARVO_EXAMPLES "/wave/wave.json";
/// Before a command: both sides draw as users do, with as many threads as the renderer starts.
constexpr const char* kUsersThreads = "unset LP_NUM_THREADS; ";

// A host calls a plain function, so its state is global.
PF_EntryPoint gLibrary = nullptr;
double gRenderMilliseconds = 0.0;

PF_Err ClockedEntryPoint(PF_Cmd command, PF_InData* in, PF_OutData* out, PF_ParamDef* params[],
                         PF_LayerDef* output, void* extra) {
  PF_Err result = PF_Err_NONE;
  const double spent =
      ElapsedMilliseconds([&] { result = gLibrary(command, in, out, params, output, extra); });
  if (command == PF_Cmd_RENDER) {
    gRenderMilliseconds += spent;
  }
  return result;
}

/// Milliseconds that the command takes from its start to its end.
double WholeCommand() {
  const auto folder = std::filesystem::temp_directory_path() / "tarvo_bench_frames";
  std::filesystem::create_directories(folder);
  const std::string command = std::string(kUsersThreads) + "\"" TARVO_COMMAND "\" render \"" +
                              kSceneFile + "\" --frames 0-" + std::to_string(kFrames - 1) +
                              " --quiet -o \"" + (folder / "f.%04d.png").string() + '"';
  int code = 0;
  const double spent = ElapsedMilliseconds([&] { code = std::system(command.c_str()); });
  std::filesystem::remove_all(folder);
  if (code != 0) {
    throw std::runtime_error("this failed: " + command);
  }
  return spent;
}

/// What SequenceRenderCommands gives in a process of its own: this one draws on one thread.
double RenderCommandsElsewhere() {
  const std::string command = std::string(kUsersThreads) + '"' +
                              std::filesystem::read_symlink("/proc/self/exe").string() + "\" " +
                              kSequenceRenderCommands;
  std::FILE* const output = popen(command.c_str(), "r");
  if (output == nullptr) {
    throw std::runtime_error("this does not start: " + command);
  }
  double milliseconds = 0.0;
  const bool isRead = std::fscanf(output, "%lf", &milliseconds) == 1;
  if (pclose(output) != 0 || !isRead) {
    throw std::runtime_error("this failed: " + command);
  }
  return milliseconds;
}

}  // namespace

double SequenceRenderCommands() {
  const standin::PluginLibrary library(
      (std::filesystem::path(TARVO_COMMAND).parent_path() / "Tarvo_overlaps_manager.so").string());
  gLibrary = library.EntryPoint();
  gRenderMilliseconds = 0.0;
  std::vector<int> frames(kFrames);
  std::iota(frames.begin(), frames.end(), 0);
  standin::Host host(ClockedEntryPoint);
  tarvo::PlayFrames(host, tarvo::ReadAnimation(tarvo::FilePath(kSceneFile)), frames, {},
                    [](int, const tarvo::PlayedFrame&) { return true; });
  return gRenderMilliseconds;
}

MeasurePair Sequence() {
  return
      []() -> Pair { return {.measured = WholeCommand(), .baseline = RenderCommandsElsewhere()}; };
}

}  // namespace bench
