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
struct FrameOrder {
  std::vector<int> frames;
  bool cropsToLayer = false;
};

std::string OrderText(const FrameOrder& order) {
  return nlohmann::json{{"frames", FrameListText(order.frames)},
                        {"cropsToLayer", order.cropsToLayer}}
      .dump();
}

/// Of an animation of `count` frames.
FrameOrder ReadFrameOrder(int count) {
  const nlohmann::json order = nlohmann::json::parse(ReadOrder());
  return {.frames = ReadFrameList(order.at("frames").get<std::string>(), count).value(),
          .cropsToLayer = order.at("cropsToLayer").get<bool>()};
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
  AddJob();
}

void FrameWorkers::AddJob() {
  jobs_.push_back(
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
  return jobs_.front().scene.value();
}

void FrameWorkers::Start(const std::vector<int>& frames, bool cropsToLayer, bool inOrder) {
  const std::size_t count = std::min(static_cast<std::size_t>(settings_.jobs), frames.size());
  total_ = frames.size();
  inOrder_ = inOrder;
  while (jobs_.size() < count) {
    AddJob();
  }
  for (std::size_t number = 0; number < count; ++number) {
    Job& job = jobs_[number];
    for (std::size_t i = number; i < frames.size(); i += count) {
      job.frames.push_back(frames[i]);
    }
    if (count > 1) {
      job.worker.Rename("job " + std::to_string(number + 1));
    }
    job.worker.Order(OrderText({job.frames, cropsToLayer}));
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
      Job& due = jobs_[taken_ % jobs_.size()];
      if (auto frame = TakeFrom(due)) {
        ++taken_;
        return frame;
      }
      if (due.worker.IsOver()) {
        return std::nullopt;
      }
    } else {
      for (Job& job : jobs_) {
        if (auto frame = TakeFrom(job)) {
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
  for (Job& job : jobs_) {
    if (!job.scene && job.worker.HasMessage()) {
      TakeScene(job);
    }
  }
  return std::ranges::all_of(jobs_,
                             [](const Job& job) { return job.scene || job.worker.IsOver(); });
}

void FrameWorkers::TakeScene(Job& job) {
  try {
    job.scene = SummaryFrom(job.worker.Take());
  } catch (const MessageError& error) {
    return job.worker.Refuse(error.what());
  }
  const std::optional<SceneSummary>& first = jobs_.front().scene;
  if (first && first->fingerprint == job.scene->fingerprint) {
    return;
  }
  isMixed_ = true;
  failure_ = CommandExit(
      kWrongInput, {settings_.scene.scene +
                    ": it or one of its images changed while they were read; run this again"});
  for (Job& any : jobs_) {
    any.worker.Stop();
  }
}

/// The worker's next frame, if it has come. Does not pump: the end of a worker is looked at in one
/// place.
std::optional<RenderedFrame> FrameWorkers::TakeFrom(Job& job) {
  if (!job.worker.HasMessage()) {
    return std::nullopt;
  }
  try {
    const Message message = job.worker.Take();
    if (message.kind != MessageKind::kStatistics) {
      return Expected(job, message);
    }
    statistics_ = StatisticsFrom(message);
  } catch (const MessageError& error) {
    job.worker.Refuse(error.what());
  }
  return std::nullopt;
}

RenderedFrame FrameWorkers::Expected(Job& job, const Message& message) const {
  RenderedFrame frame = FrameFrom(message);
  if (job.sent == job.frames.size() || frame.number != job.frames[job.sent]) {
    throw MessageError("frame " + std::to_string(frame.number) + " out of order");
  }
  if (size_ && *size_ != std::pair(frame.picture.width, frame.picture.height)) {
    throw MessageError("a picture of " + std::to_string(frame.picture.width) + "x" +
                       std::to_string(frame.picture.height));
  }
  ++job.sent;
  return frame;
}

void FrameWorkers::PumpAll() {
  for (Job& job : jobs_) {
    if (!job.worker.IsOver()) {
      job.worker.Pump();
    }
    if (job.worker.IsOver() && !std::exchange(job.isNoted, true)) {
      NoteEnd(job);
    }
  }
}

void FrameWorkers::NoteEnd(const Job& job) {
  std::optional<CommandExit> failure = FailureOf(job.worker.End(), limit_);
  if (!failure && (!job.scene || job.sent < job.frames.size())) {
    failure = CommandExit(kPluginFault,
                          {"the process that runs the plug-in sent " + std::to_string(job.sent) +
                           " of " + std::to_string(job.frames.size()) + " frames"});
  }
  if (!failure || failure_) {
    return;
  }
  std::vector<std::string> lines = failure->Lines();
  if (jobs_.size() > 1 && !lines.empty()) {
    lines.front().insert(0, job.worker.Name() + ": ");
  }
  failure_ = CommandExit(failure->Code(), lines);
}

bool FrameWorkers::AllAreOver() const {
  return std::ranges::all_of(jobs_, [](const Job& job) { return job.worker.IsOver(); });
}

void FrameWorkers::AwaitAny() {
  std::vector<Worker*> workers;
  for (Job& job : jobs_) {
    workers.push_back(&job.worker);
  }
  Worker::AwaitAny(workers);
}

void SendFrames(const RenderSettings& settings, const Console& console) {
  const Animation animation = ReadAnimation(settings.scene.scene);
  Send(*console.channel, SummaryOf(animation));
  const FrameOrder order = ReadFrameOrder(animation.count);
  const PictureComposer composer(settings, animation.scene.width, animation.scene.height);
  RunStatistics statistics;
  HostedPlugin plugin(settings.scene, console);
  const MessageStatistics traffic = PlayFrames(
      plugin.TheHost(), animation, order.frames, settings.play,
      [&](int number, PlayedFrame played) {
        statistics.pluginMilliseconds += played.milliseconds;
        Send(*console.channel,
             RenderedFrame{.number = number,
                           .picture = composer.Compose(std::move(played.picture), plugin.TheHost(),
                                                       order.cropsToLayer),
                           .pieces = played.pieces,
                           .milliseconds = played.milliseconds});
        return true;
      });
  statistics.messages = traffic.messages;
  statistics.images = traffic.images;
  Send(*console.channel, statistics);
}

}  // namespace tarvo
