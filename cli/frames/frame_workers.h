#pragma once

#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

#include "cli/frames/render_settings.h"
#include "cli/process/messages.h"
#include "cli/process/worker.h"

namespace tarvo {

/// Frames of an animation, rendered by workers. The first one reads the scene and sends its
/// summary; then worker i of n gets frames i, i + n, i + 2n ... of those to render.
///
///   AwaitScene Start ExpectSize? Next*
class FrameWorkers {
 public:
  /// Starts the first worker, with this program's own command line. Throws ProcessError. REQUIRES:
  /// all references outlive this object.
  FrameWorkers(const RenderSettings& settings, const Console& console);

  /// The scene, once the first worker has read it. Throws CommandExit when it could not, or when an
  /// interrupt came.
  SceneSummary AwaitScene();
  /// Starts as many workers as the settings ask for, but not more than there are frames. Each reads
  /// the scene anew: what it reads must have the fingerprint of what the first one read. With
  /// `inOrder` the pictures come in the order of the frames. Throws ProcessError. REQUIRES: there
  /// is a frame; the frames outlive this object.
  void Start(const std::vector<int>& frames, bool cropsToLayer, bool inOrder);

  /// What the pictures of many frames must measure, in pixels.
  void ExpectSize(int width, int height);
  /// The next picture; none once all have come and the workers have ended, a picture that is due in
  /// the order does not come, the scenes differ, or an interrupt came while one is noted. Where the
  /// order does not matter, the failure of one worker does not keep the others' frames back.
  std::optional<RenderedFrame> Next();
  /// The first failure, if there was any: what FailureOf says, behind the name of the worker where
  /// there are several.
  [[nodiscard]] const std::optional<CommandExit>& Failure() const { return failure_; }
  /// Of a single worker that has sent all its frames.
  [[nodiscard]] std::optional<RunStatistics> Statistics() const {
    return workers_.size() == 1 ? statistics_ : std::nullopt;
  }

 private:
  /// A worker, and the frames that it has to send.
  struct RunningWorker {
    Worker worker;
    std::vector<int> frames = {};
    std::size_t sent = 0;
    std::optional<SceneSummary> scene = {};
    bool isNoted = false;  ///< its end was looked at
  };

  void AddWorker();
  void TakeScene(RunningWorker& running);
  bool HaveReadScene();
  std::optional<RenderedFrame> TakeFrom(RunningWorker& running);
  RenderedFrame Expected(RunningWorker& running, const Message& message) const;
  void PumpAll();
  void NoteEnd(const RunningWorker& running);
  [[nodiscard]] bool AllAreOver() const;
  void AwaitAny();

  const RenderSettings& settings_;
  const Console& console_;
  TimeLimit limit_;
  std::vector<RunningWorker> workers_;
  bool inOrder_ = false;
  bool isMixed_ = false;  ///< the workers read different versions of the scene
  std::size_t total_ = 0;
  std::size_t taken_ = 0;
  std::optional<std::pair<int, int>> size_;
  std::optional<CommandExit> failure_;
  std::optional<RunStatistics> statistics_;
};

/// The other end, in a worker: renders the requested frames in this process and sends
/// them.
void SendFrames(const RenderSettings& settings, const Console& console);

}  // namespace tarvo
