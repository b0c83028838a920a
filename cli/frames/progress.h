#pragma once

#include <chrono>
#include <iosfwd>
#include <mutex>
#include <string>

namespace tarvo {

/// How progress is shown: not at all; as a bar that is drawn anew; as a line every few seconds; as
/// a JSON object a line for each frame.
enum class ProgressForm { kNone, kBar, kLines, kJson };

/// Shows the progress of a number of frames. Can be called by several threads.
class Progress {
 public:
  /// REQUIRES: the stream outlives this object.
  Progress(std::ostream& stream, ProgressForm form, int total);
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress() { End(); }

  /// This frame is finished.
  void Made(int frame);

  /// Ends the bar's line, if it has not ended yet. Nothing is shown from here on.
  void End();

  [[nodiscard]] int Count() const { return made_; }
  /// Since this object was made.
  [[nodiscard]] double Seconds() const;

 private:
  using Clock = std::chrono::steady_clock;

  /// "43/100 frames, 12.3 a second, 5 s left"
  [[nodiscard]] std::string Words() const;
  [[nodiscard]] std::string Bar() const;
  [[nodiscard]] std::string Json(int frame) const;
  [[nodiscard]] double Rate() const;
  [[nodiscard]] double SecondsLeft() const;

  std::ostream& stream_;
  ProgressForm form_;
  int total_;
  std::mutex mutex_;
  int made_ = 0;
  Clock::time_point start_ = Clock::now();
  Clock::time_point lastLine_ = start_;
};

}  // namespace tarvo
