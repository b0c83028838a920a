#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/process/console.h"
#include "cli/process/messages.h"
#include "cli/process/process.h"
#include "cli/process/time_limit.h"

namespace tarvo {

/// What a worker may take, in seconds: each command of the plug-in, or all that the process does.
struct TimeLimit {
  enum class Of { kCommand, kProcess };

  double seconds = kUsualTimeLimit;
  Of of = Of::kCommand;
};

/// How a worker ended.
struct WorkerEnd {
  std::optional<int> announcedExitCode;  ///< none if it ended before it sent one
  int code = 0;                          ///< what Process::Wait says
  bool timedOut = false;
  std::string damage;  ///< what was wrong with its messages; empty if nothing was
  bool ranOutOfMemory = false;
  std::string place;     ///< where the plug-in was: PlaceText
  std::string hostCall;  ///< HostCallText

  /// True iff it did what it was started for and announced exit code 0.
  [[nodiscard]] bool IsGood() const {
    return announcedExitCode == kMade && code == kMade && !timedOut && damage.empty();
  }
};

/// This program, or another one of its folder, started to run the plug-in, so that a crash or a
/// hang ends that process alone. It sends messages on a channel of its own; what it prints goes to
/// the console's `err`, behind its name.
///
///   (AwaitAny Pump Take*)* until IsOver; End
class Worker {
 public:
  /// `words` are the arguments, with the program's file first; `name` is what its printed lines
  /// are marked with. Its standard input is empty but for a job. Throws ProcessError. REQUIRES:
  /// the console outlives this object.
  Worker(const std::vector<std::string>& words, std::string name, TimeLimit limit,
         const Console& console);
  Worker(Worker&&) = default;
  Worker& operator=(Worker&&) = delete;
  ~Worker() = default;

  /// Sends its job, where the command line does not say what to do: ReadJob is the other end.
  /// Once at most.
  void SendJob(std::string_view job);
  /// What its printed lines are marked with from now on.
  void Rename(std::string name) { name_ = std::move(name); }

  /// Takes in what has come: output and texts are forwarded, one message is kept for Take. Ends the
  /// worker at its time limit or when its messages are damaged. Never blocks.
  void Pump();
  [[nodiscard]] bool HasMessage() const { return message_.has_value(); }
  /// REQUIRES: HasMessage.
  Message Take();
  /// A message was taken that is not what this worker has to send: ends it.
  void Refuse(const std::string& damage);
  /// Ends it by force.
  void Stop() { process_.Kill(); }
  /// True iff it has ended and there is nothing left of it to be taken in.
  [[nodiscard]] bool IsOver() const { return isOver_; }
  /// REQUIRES: IsOver.
  [[nodiscard]] WorkerEnd End() const;

  [[nodiscard]] const std::string& Name() const { return name_; }

  /// Blocks until one of them has something for Pump, but not for long, so that time limits and
  /// interrupts are noticed.
  static void AwaitAny(const std::vector<Worker*>& workers);

 private:
  using Clock = std::chrono::steady_clock;

  void ForwardOutput(std::size_t most);
  void ForwardLines(bool isLast);
  [[nodiscard]] std::string Marked(std::string line) const;
  bool ReadMessages();
  void TakeIn(Message message);
  void WatchTime();
  Clock::duration OwnWork();

  std::string name_;
  TimeLimit limit_;
  const Console* console_;
  Process process_;
  MessageReader reader_;
  std::optional<Message> message_;
  std::string printed_;  ///< the beginning of a line
  std::uint64_t changes_ = 0;
  Clock::time_point since_ = Clock::now();  ///< of the last change, or of the start
  Clock::time_point watched_ = since_;      ///< when WatchTime was last here
  Clock::duration writing_;                 ///< what its thread had spent on writing then
  Clock::duration passing_;                 ///< and on reading and preparing
  Clock::duration ownWork_{};               ///< that did not count since the last change
  std::optional<int> announcedExitCode_;
  bool timedOut_ = false;
  bool isOver_ = false;
  std::string damage_;
};

/// In a worker: the job that it receives; blocks until it has.
std::string ReadJob();

/// The command line of a worker that is this program and does what this process was asked to do.
std::vector<std::string> OwnCommandLine(const Console& console);

/// Why a worker did not do what it was started for: a sentence and the exit code for it, or no
/// sentence where the worker itself has said why. None if it is good.
std::optional<CommandExit> FailureOf(const WorkerEnd& end, const TimeLimit& limit);

/// "120 s"
std::string SecondsText(double seconds);

}  // namespace tarvo
