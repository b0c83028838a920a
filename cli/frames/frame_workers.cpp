#include "cli/frames/frame_workers.h"

#include <algorithm>
#include <string>
#include <utility>

#include <nlohmann/json.hpp>

#include "cli/frames/frame_list.h"
#include "cli/frames/picture_composer.h"
#include "cli/options/hosted_plugin.h"
#include "cli/process/interrupt.h"
#include "tool/rig/file/scene_file.h"

namespace tarvo {
namespace {

/// What a worker is to render, as it is sent to it.
struct FrameJob {
  std::vector<int> frames;
  bool cropsToLayer = false;
};

std::string JobText(const FrameJob& job) {
  return nlohmann::json{{"frames", FrameListText(job.frames)}, {"cropsToLayer", job.cropsToLayer}}
      .dump();
}

/// Of an animation of `count` frames.
FrameJob ReadFrameJob(int count) {
  const nlohmann::json job = nlohmann::json::parse(ReadJob());
  return {.frames = ReadFrameList(job.at("frames").get<std::string>(), count).value(),
          .cropsToLayer = job.at("cropsToLayer").get<bool>()};
}

SceneSummary SummaryOf(const Animation& animation) {
  return {.frames = animation.count,
          .width = animation.scene.width,
          .height = animation.scene.height,
          .rate = animation.rate,
          .fingerprint = animation.fingerprint,
          .files = animation.files};
}

}  // namespace

FrameWorkers::FrameWorkers(const RenderSettings& settings, const Console& console)
    : settings_(settings), console_(console), limit_{.seconds = settings.scene.timeLimit} {
  AddWorker();
}

void FrameWorkers::AddWorker() {
  workers_.push_back(
      {.worker = Worker(OwnCommandLine(console_), console_.words.front(), limit_, console_)});
}

SceneSummary FrameWorkers::AwaitScene() {
  const Interrupt interrupt;
  for (PumpAll(); !interrupt.Came() && !HaveReadScene(); PumpAll()) {
    AwaitAny();
  }
  if (interrupt.Came()) {
    throw CommandExit(kInterrupted, {"interrupted"});
  }
  if (failure_) {
    throw CommandExit(*failure_);
  }
  return workers_.front().scene.value();
}

void FrameWorkers::Start(const std::vector<int>& frames, bool cropsToLayer, bool inOrder) {
  const std::size_t count = std::min(static_cast<std::size_t>(settings_.jobs), frames.size());
  total_ = frames.size();
  inOrder_ = inOrder;
  while (workers_.size() < count) {
    AddWorker();
  }
  for (std::size_t number = 0; number < count; ++number) {
    RunningWorker& running = workers_[number];
    for (std::size_t i = number; i < frames.size(); i += count) {
      running.frames.push_back(frames[i]);
    }
    if (count > 1) {
      running.worker.Rename("job " + std::to_string(number + 1));
    }
    running.worker.SendJob(JobText({running.frames, cropsToLayer}));
  }
}

void FrameWorkers::ExpectSize(int width, int height) { size_ = std::pair(width, height); }

std::optional<RenderedFrame> FrameWorkers::Next() {
  while (!Interrupt::Pending()) {
    PumpAll();  // also those whose frames are not due: they may print, and have a time limit
    if (!HaveReadScene()) {
      AwaitAny();
      continue;
    }
    if (isMixed_) {
      return std::nullopt;
    }
    if (inOrder_ && taken_ < total_) {
      RunningWorker& due = workers_[taken_ % workers_.size()];
      if (auto frame = TakeFrom(due)) {
        ++taken_;
        return frame;
      }
      if (due.worker.IsOver()) {
        return std::nullopt;
      }
    } else {
      for (RunningWorker& running : workers_) {
        if (auto frame = TakeFrom(running)) {
          return frame;
        }
      }
      if (AllAreOver()) {
        return std::nullopt;
      }
    }
    AwaitAny();
  }
  return std::nullopt;
}

/// True once every worker has sent the summary of the scene it read, or has ended. A scene may be
/// saved while it is rendered: frames of two versions are no animation, and the names of the files
/// to be made were compared with those of the version that was read first.
bool FrameWorkers::HaveReadScene() {
  for (RunningWorker& running : workers_) {
    if (!running.scene && running.worker.HasMessage()) {
      TakeScene(running);
    }
  }
  return std::ranges::all_of(workers_, [](const RunningWorker& running) {
    return running.scene || running.worker.IsOver();
  });
}

void FrameWorkers::TakeScene(RunningWorker& running) {
  try {
    running.scene = SummaryFrom(running.worker.Take());
  } catch (const MessageError& error) {
    return running.worker.Refuse(error.what());
  }
  const std::optional<SceneSummary>& first = workers_.front().scene;
  if (first && first->fingerprint == running.scene->fingerprint) {
    return;
  }
  isMixed_ = true;
  failure_ = CommandExit(
      kWrongInput, {settings_.scene.scene +
                    ": it or one of its images changed while they were read; run this again"});
  for (RunningWorker& any : workers_) {
    any.worker.Stop();
  }
}

/// The worker's next frame, if it has come. Does not pump: the end of a worker is looked at in one
/// place.
std::optional<RenderedFrame> FrameWorkers::TakeFrom(RunningWorker& running) {
  if (!running.worker.HasMessage()) {
    return std::nullopt;
  }
  try {
    const Message message = running.worker.Take();
    if (message.kind != MessageKind::kStatistics) {
      return Expected(running, message);
    }
    statistics_ = StatisticsFrom(message);
  } catch (const MessageError& error) {
    running.worker.Refuse(error.what());
  }
  return std::nullopt;
}

RenderedFrame FrameWorkers::Expected(RunningWorker& running, const Message& message) const {
  RenderedFrame frame = FrameFrom(message);
  if (running.sent == running.frames.size() || frame.number != running.frames[running.sent]) {
    throw MessageError("frame " + std::to_string(frame.number) + " out of order");
  }
  if (size_ && *size_ != std::pair(frame.picture.width, frame.picture.height)) {
    throw MessageError("a picture of " + std::to_string(frame.picture.width) + "x" +
                       std::to_string(frame.picture.height));
  }
  ++running.sent;
  return frame;
}

void FrameWorkers::PumpAll() {
  for (RunningWorker& running : workers_) {
    if (!running.worker.IsOver()) {
      running.worker.Pump();
    }
    if (running.worker.IsOver() && !std::exchange(running.isNoted, true)) {
      NoteEnd(running);
    }
  }
}

void FrameWorkers::NoteEnd(const RunningWorker& running) {
  std::optional<CommandExit> failure = FailureOf(running.worker.End(), limit_);
  if (!failure && (!running.scene || running.sent < running.frames.size())) {
    failure = CommandExit(
        kPluginFault, {"the process that runs the plug-in sent " + std::to_string(running.sent) +
                       " of " + std::to_string(running.frames.size()) + " frames"});
  }
  if (!failure || failure_) {
    return;
  }
  std::vector<std::string> lines = failure->Lines();
  if (workers_.size() > 1 && !lines.empty()) {
    lines.front().insert(0, running.worker.Name() + ": ");
  }
  failure_ = CommandExit(failure->Code(), lines);
}

bool FrameWorkers::AllAreOver() const {
  return std::ranges::all_of(workers_,
                             [](const RunningWorker& running) { return running.worker.IsOver(); });
}

void FrameWorkers::AwaitAny() {
  std::vector<Worker*> workers;
  for (RunningWorker& running : workers_) {
    workers.push_back(&running.worker);
  }
  Worker::AwaitAny(workers);
}

void SendFrames(const RenderSettings& settings, const Console& console) {
  const Animation animation = ReadAnimation(settings.scene.scene);
  Send(*console.channel, SummaryOf(animation));
  const FrameJob job = ReadFrameJob(animation.count);
  const PictureComposer composer(settings, animation.scene.width, animation.scene.height);
  RunStatistics statistics;
  HostedPlugin plugin(settings.scene, console);
  const MessageStatistics messageStatistics = PlayFrames(
      plugin.TheHost(), animation, job.frames, settings.play, [&](int number, PlayedFrame played) {
        statistics.pluginMilliseconds += played.milliseconds;
        Send(*console.channel,
             RenderedFrame{.number = number,
                           .picture = composer.Compose(std::move(played.picture), plugin.TheHost(),
                                                       job.cropsToLayer),
                           .pieces = played.pieces,
                           .milliseconds = played.milliseconds});
        return true;
      });
  statistics.messages = messageStatistics.messages;
  statistics.images = messageStatistics.images;
  Send(*console.channel, statistics);
}

}  // namespace tarvo
