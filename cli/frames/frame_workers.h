#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "cli/frames/render_options.h"
#include "cli/process/interrupt.h"
#include "cli/process/messages.h"
#include "cli/process/worker.h"
#include "tool/rig/animation.h"

namespace standin {

/// Frames of an animation, rendered by workers: each of them has every so many-th frame.
class FrameWorkers {
 public:
  /// Starts as many workers as the options ask for, but not more than there are frames. Each reads
  /// the scene anew: what it reads must have the fingerprint of `animation`. With `isOneOfMany` the
  /// pictures are the layer's part, all of `width` x `height` pixels; with `inOrder` they come in
  /// the order of the frames. Throws ProcessError. REQUIRES: all references outlive this object;
  /// there is a frame.
  FrameWorkers(const RenderOptions& options, const Animation& animation,
               const std::vector<int>& frames, bool isOneOfMany, bool inOrder,
               const Interrupt& interrupt, const Console& console);

  /// What the pictures of many frames must measure, in pixels.
  void ExpectSize(int width, int height);
  /// The next picture; none once all have come and the workers have ended, a picture that is due in
  /// the order does not come, or the interrupt came. Where the order does not matter, the failure
  /// of one worker does not keep the others' frames back.
  std::optional<RenderedFrame> Next();
  /// The first failure, if there was any: what FailureOf says, behind the name of the worker where
  /// there are several.
  [[nodiscard]] const std::optional<Unfinished>& Failure() const { return failure_; }
  /// Of a single worker that has sent all its frames.
  [[nodiscard]] std::optional<RunStatistics> Statistics() const {
    return jobs_.size() == 1 ? statistics_ : std::nullopt;
  }

 private:
  /// A worker, and the frames that it has to send.
  struct Job {
    Worker worker;
    std::vector<int> frames;
    std::size_t sent = 0;
    bool hasReadScene = false;
    bool isNoted = false;  ///< its end was looked at
  };

  [[nodiscard]] std::vector<std::string> WordsFor(const std::vector<int>& frames) const;
  bool HaveReadScene();
  void ExpectScene(std::uint64_t fingerprint);
  std::optional<RenderedFrame> TakeFrom(Job& job);
  RenderedFrame Expected(Job& job, const Message& message) const;
  void PumpAll();
  void NoteEnd(const Job& job);
  [[nodiscard]] bool AllAreOver() const;
  void AwaitAny();

  const RenderOptions& options_;
  std::uint64_t fingerprint_;
  bool isOneOfMany_;
  bool inOrder_;
  const Interrupt& interrupt_;
  TimeLimit limit_;
  std::vector<Job> jobs_;
  std::size_t total_;
  std::size_t taken_ = 0;
  std::optional<std::pair<int, int>> size_;
  std::optional<Unfinished> failure_;
  std::optional<RunStatistics> statistics_;
};

/// The other end: renders these frames in this process and sends them.
void SendFrames(const RenderOptions& options, const Console& console);

}  // namespace standin
