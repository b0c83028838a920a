#include "cli/frames/frame_workers.h"

#include <algorithm>
#include <utility>

#include "cli/frames/frame_list.h"
#include "tool/rig/file/scene_file.h"

namespace standin {

FrameWorkers::FrameWorkers(const RenderOptions& options, const Animation& animation,
                           const std::vector<int>& frames, bool isOneOfMany, bool inOrder,
                           const Interrupt& interrupt, const Console& console)
    : options_(options),
      fingerprint_(animation.fingerprint),
      isOneOfMany_(isOneOfMany),
      inOrder_(inOrder),
      interrupt_(interrupt),
      limit_{.seconds = options.scene.timeLimit},
      total_(frames.size()) {
  const std::size_t count = std::min(static_cast<std::size_t>(options.jobs), frames.size());
  for (std::size_t number = 0; number < count; ++number) {
    std::vector<int> own;
    for (std::size_t i = number; i < frames.size(); i += count) {
      own.push_back(frames[i]);
    }
    const std::string name =
        count > 1 ? "job " + std::to_string(number + 1) : console.words.front();
    jobs_.push_back({.worker = Worker(WordsFor(own), name, limit_, console), .frames = own});
  }
}

void FrameWorkers::ExpectSize(int width, int height) { size_ = std::pair(width, height); }

std::optional<RenderedFrame> FrameWorkers::Next() {
  while (!interrupt_.Came()) {
    PumpAll();  // also those whose frames are not due: they may print, and have a time limit
    if (!HaveReadScene()) {
      AwaitAny();
      continue;
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

/// This very command for some frames.
std::vector<std::string> FrameWorkers::WordsFor(const std::vector<int>& frames) const {
  RenderOptions options = options_;
  options.frames = FrameListText(frames);  // short: systems bound the length of an argument
  options.output = "-";
  options.background.clear();                 // what is behind the picture is added here
  options.raw = options.raw || isOneOfMany_;  // the layer's part alone
  options.quiet = true;
  options.missing = false;
  options.progress = "auto";
  options.jobs = 1;
  return CommandLine(options);
}

/// True once every worker has told what scene it read, or has ended. A scene may be saved while it
/// is rendered: frames of two versions are no animation, and the names of the files to be made were
/// compared with those of the version that was read first.
bool FrameWorkers::HaveReadScene() {
  for (Job& job : jobs_) {
    if (job.hasReadScene || !job.worker.HasMessage()) {
      continue;
    }
    try {
      job.hasReadScene = true;
      ExpectScene(FingerprintFrom(job.worker.Take()));
    } catch (const MessageError& error) {
      job.worker.Refuse(error.what());
    }
  }
  return std::ranges::all_of(
      jobs_, [](const Job& job) { return job.hasReadScene || job.worker.IsOver(); });
}

void FrameWorkers::ExpectScene(std::uint64_t fingerprint) {
  if (fingerprint == fingerprint_) {
    return;
  }
  failure_ = Unfinished(kWrongInput,
                        {options_.scene.scene +
                         ": it or one of its images changed while they were read; run this again"});
  for (Job& job : jobs_) {
    job.worker.Stop();
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
    throw MessageError("frame " + std::to_string(frame.number) + " out of its turn");
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
  std::optional<Unfinished> failure = FailureOf(job.worker.End(), limit_);
  if (!failure && job.sent < job.frames.size()) {
    failure = Unfinished(kPluginFault,
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
  failure_ = Unfinished(failure->Code(), lines);
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

void SendFrames(const RenderOptions& options, const Console& console) {
  const RenderWishes wishes(options);
  const Animation animation = ReadAnimation(options.scene.scene);
  SendFingerprint(*console.channel, animation.fingerprint);
  RunStatistics statistics;
  HostedPlugin plugin(options.scene, console);
  const Traffic traffic = PlayFrames(
      plugin.TheHost(), animation, wishes.Frames(animation), wishes.play,
      [&](int number, PlayedFrame played) {
        statistics.pluginMilliseconds += played.milliseconds;
        Picture shown = wishes.Shown(std::move(played.picture), plugin.TheHost(), animation.scene);
        Send(*console.channel, RenderedFrame{.number = number,
                                             .picture = wishes.Cropped(
                                                 std::move(shown), animation.scene, options.raw),
                                             .pieces = played.pieces,
                                             .milliseconds = played.milliseconds});
        return true;
      });
  statistics.messages = traffic.messages;
  statistics.images = traffic.images;
  Send(*console.channel, statistics);
}

}  // namespace standin
