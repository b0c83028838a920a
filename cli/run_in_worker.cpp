#include "cli/run_in_worker.h"

#include "cli/process/interrupt.h"
#include "cli/process/messages.h"
#include "cli/process/worker.h"

namespace tarvo {
namespace {

/// The last picture that the worker sent, if any.
std::optional<Picture> RunWorker(const SceneOptions& options, const Console& console) {
  const TimeLimit limit{.seconds = options.timeLimit};
  const Interrupt interrupt;
  Worker worker(OwnCommandLine(console), console.words.front(), limit, console);
  worker.SendJob("");
  std::optional<Picture> picture;
  while (!worker.IsOver()) {
    Worker::AwaitAny({&worker});
    worker.Pump();
    if (interrupt.Came()) {
      worker.Stop();
    }
    if (worker.HasMessage()) {
      try {
        picture = FrameFrom(worker.Take()).picture;
      } catch (const MessageError& error) {
        worker.Refuse(error.what());
      }
    }
  }
  if (interrupt.Came()) {
    throw CommandExit(kInterrupted, {"interrupted"});
  }
  if (const auto failure = FailureOf(worker.End(), limit)) {
    throw CommandExit(*failure);
  }
  return picture;
}

}  // namespace

void RunInWorker(const SceneOptions& options, const Console& console,
                 const std::function<void()>& work) {
  if (console.channel != nullptr) {
    work();
  } else {
    RunWorker(options, console);
  }
}

std::optional<Picture> RenderInWorker(const SceneOptions& options, const Console& console,
                                      const std::function<Picture()>& make) {
  if (console.channel != nullptr) {
    Send(*console.channel, RenderedFrame{.picture = make()});
    return std::nullopt;
  }
  std::optional<Picture> picture = RunWorker(options, console);
  if (!picture) {
    throw CommandExit(kPluginFault, {"the process that runs the plug-in sent no picture"});
  }
  return picture;
}

}  // namespace tarvo
