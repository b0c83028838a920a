#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "standin/core/crash_record.h"

namespace tarvo {

/// A program that could not be started or written to.
class ProcessError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// There is no program of that name.
class ProgramAbsent : public ProcessError {
 public:
  using ProcessError::ProcessError;
};

/// A program that runs beside this one, in a process group of its own (Windows: a job object).
/// Ctrl-C does not reach it: who started it decides. The system ends it by force when this process
/// ends, for whatever reason; on Linux the processes that it has started itself are not ended.
///
/// REQUIRES: the thread that started it does not end before it (Linux ends it with that thread).
class Process {
 public:
  enum class Pipe {
    kToInput,     ///< a pipe to its standard input; its other streams are this program's
    kFromOutput,  ///< a pipe from its standard output; its other streams are this program's
    kWorker,      ///< a pipe to its standard input, and what ParentLink, the other end, needs
  };

  /// A process to poll for output and its end, and whether its channel is polled too.
  struct PollTarget {
    Process* process = nullptr;
    bool channel = true;
  };

  /// Starts a program, by its path or a name that the system looks for. A worker gets a
  /// first argument more, which ParentLink reads. Throws ProgramAbsent or ProcessError.
  Process(const std::vector<std::string>& command, Pipe pipe);
  Process(Process&&) noexcept;
  Process& operator=(Process&&) = delete;
  /// Ends it and all that it started by force, if it has not ended.
  ~Process();

  /// Writes to the program's input. Throws ProcessError when the program reads no more.
  void Write(const void* bytes, std::size_t size);
  /// Nothing more is written: the program's input ends.
  void CloseInput();

  /// What a worker has sent and not been read yet, at most `size` bytes; 0 if there is nothing now.
  std::size_t ReadChannel(void* bytes, std::size_t size);
  /// The same of what it printed: to standard output, and as a worker to standard error, too.
  std::size_t ReadOutput(void* bytes, std::size_t size);
  /// Waits for its end as Wait does; all that it printed and was not read yet.
  std::string ReadAll();
  /// Where the plug-in is in a worker.
  [[nodiscard]] const standin::CrashRecord& Record() const;
  /// Returns when one of the processes has printed, sent or ended, and after `atMost` in any case.
  static void AwaitAny(const std::vector<PollTarget>& targets, std::chrono::milliseconds atMost);

  /// True iff it has ended. Never blocks. Does not need the ends of the pipes, which a process that
  /// it started may hold open.
  bool HasEnded();
  /// Ends it and all processes that it started by force, from any thread. Wait is still needed. Not
  /// during Wait.
  void Kill();
  /// Closes the pipe to its input, and returns the program's exit code once it has ended; of one
  /// that was ended by a signal, a number beyond all exit codes, for the functions below;
  /// kUnknownEnd if the system does not say. An interrupt ends the program. May be called again.
  int Wait();

  /// What Wait returns, of a program that has ended. REQUIRES: HasEnded.
  [[nodiscard]] int EndCode() const;

  static constexpr int kUnknownEnd = -1;
  /// How a program ended, by what Wait said: "signal 11 (Segmentation fault)", "exit code 3", "".
  static std::string EndText(int code);
  /// True iff that is how programs end that others end: a kill, a request to terminate.
  static bool WasEndedFromOutside(int code);
  /// True iff that is a crash: a signal or an exception.
  static bool WasCrash(int code);

 private:
  struct Running;  // the system's identifiers

  void AppendOutput(std::string& output);

  std::unique_ptr<Running> running_;
};

}  // namespace tarvo
