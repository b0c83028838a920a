#include "cli/check/check_processes.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <exception>
#include <filesystem>
#include <mutex>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

#include <nlohmann/json.hpp>

#include "cli/check/check_job.h"
#include "cli/process/interrupt.h"
#include "cli/process/messages.h"
#include "cli/process/system.h"
#include "cli/process/threads.h"
#include "cli/process/worker.h"
#include "standin/loader/plugin_library.h"

namespace tarvo {
namespace {

using Clock = std::chrono::steady_clock;
using json = nlohmann::ordered_json;

/// The program that holds the checks, beside this one. Throws CommandExit if it is missing.
std::string CheckWorker() {
  std::filesystem::path file = ThisProgram();
  file.replace_filename("tarvo-check-worker" + file.extension().string());
  std::error_code ignored;
  if (!std::filesystem::exists(file, ignored)) {
    throw CommandExit(kCannotRun,
                      {file.string() + ": missing; \"tarvo check\" needs this program, which is "
                                       "built with tarvo where GoogleTest is installed"});
  }
  return file.string();
}

/// What the process of a check sent, and how it ended.
struct ProcessReport {
  std::vector<check::Check> checks;  ///< that there are
  bool isLoaded = false;
  std::optional<std::string> notLoaded;  ///< why the plug-in cannot be loaded
  std::optional<check::Result> result;
  WorkerEnd end;
  double seconds = 0;
};

/// Reads a message in JSON. Throws MessageError for what `read` does not take.
template <typename Read>
auto FromJson(const Message& message, Read read) {
  try {
    return read(json::parse(message.bytes));
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {
    throw MessageError(std::string("a result that cannot be read: ") + error.what());
  }
}

/// Throws MessageError for a message that a worker with this job does not send.
void TakeIn(const Message& message, const CheckJob& job, ProcessReport& report) {
  switch (message.kind) {
    case MessageKind::kChecks:
      report.checks = FromJson(message, check::ChecksFrom);
      return;
    case MessageKind::kLoaded:
      report.isLoaded = true;
      return;
    case MessageKind::kNotLoaded:
      report.notLoaded = message.bytes;
      return;
    case MessageKind::kResult:
      report.result = FromJson(message, check::ResultFrom);
      if (std::vector{report.result->name} != job.checks) {
        throw MessageError("the result of another check");
      }
      return;
    default:
      throw MessageError("a message of another kind than expected");
  }
}

/// Ends the worker at once when `isUnwanted`.
ProcessReport RunProcess(const CheckJob& job, const CheckOptions& options, const Console& console,
                         const std::function<bool()>& isUnwanted) {
  const Clock::time_point start = Clock::now();
  Worker worker({CheckWorker(), options.plugin}, job.checks.empty() ? "check" : job.checks.front(),
                {.seconds = options.timeLimit, .of = TimeLimit::Of::kProcess}, console);
  worker.SendJob(JobText(job));
  ProcessReport report;
  while (!worker.IsOver()) {
    Worker::AwaitAny({&worker});
    worker.Pump();
    if (isUnwanted()) {
      worker.Stop();
    }
    if (worker.HasMessage()) {
      try {
        TakeIn(worker.Take(), job, report);
      } catch (const MessageError& error) {
        worker.Refuse(error.what());
      }
    }
  }
  report.end = worker.End();
  report.seconds = std::chrono::duration<double>(Clock::now() - start).count();
  return report;
}

std::string TimeUp(double limit) { return "it did not end within " + SecondsText(limit); }

/// How the process of a check ended, if not well: "signal 11 (Segmentation fault)".
std::string BadEnd(const WorkerEnd& end) {
  if (!end.damage.empty()) {
    return "damaged messages (" + end.damage + ")";
  }
  return Process::EndText(end.code);
}

check::Result ResultOf(const CheckOptions& options, const check::Check& check,
                       const ProcessReport& report) {
  check::Result result{.name = check.name,
                       .requirement = check.requirement,
                       .outcome = check::Outcome::kCrashed,
                       .seconds = report.seconds,
                       .messages = {},
                       .figures = {}};
  const std::string where = report.end.place + "; " + report.end.hostCall;
  if (report.end.timedOut) {
    result.outcome = check::Outcome::kTimedOut;
    result.messages = {TimeUp(options.timeLimit) + ", " + where};
    return result;
  }
  if (report.result) {
    result = *report.result;
  }
  const std::string end = BadEnd(report.end);
  if (!end.empty()) {
    result.outcome = check::Outcome::kCrashed;
    result.messages.push_back("its process ended with " + end +
                              (report.result ? " after the check" : "") + ", " + where);
  } else if (!report.result) {
    result.messages.push_back("its process ended without a result, " + where);
  } else if (!report.end.announcedExitCode) {
    result.outcome = check::Outcome::kCrashed;
    result.messages.push_back("its process ended too early after the check, " + where);
  }
  return result;
}

/// Threads that each run one check after the other.
class ParallelChecks {
 public:
  ParallelChecks(const CheckOptions& options, const std::vector<check::Check>& checks,
                 const Console& console, const TakeResult& take)
      : options_(options), checks_(checks), console_(console), take_(take) {}

  void Run() {
    Threads threads;
    const std::size_t count =
        std::min(static_cast<std::size_t>(options_.jobs), std::max<std::size_t>(checks_.size(), 1));
    try {
      for (std::size_t i = 0; i < count; ++i) {
        threads.Start([this] { Work(); });
      }
    } catch (...) {
      Fail(std::current_exception());
    }
    threads.Join();
    if (error_) {
      std::rethrow_exception(error_);
    }
    if (interrupt_.Came()) {
      throw CommandExit(kInterrupted, {"interrupted"});
    }
  }

 private:
  const check::Check* Next() {
    const std::scoped_lock lock(mutex_);
    return IsUnwanted() || next_ == checks_.size() ? nullptr : &checks_[next_++];
  }

  [[nodiscard]] bool IsUnwanted() const { return hasFailed_ || interrupt_.Came(); }

  void Work() {
    try {
      while (const check::Check* check = Next()) {
        const ProcessReport report = RunProcess(JobFor(options_, {check->name}), options_, console_,
                                                [this] { return IsUnwanted(); });
        const std::scoped_lock lock(mutex_);
        if (!IsUnwanted()) {
          take_(ResultOf(options_, *check, report));
        }
      }
    } catch (...) {
      Fail(std::current_exception());
    }
  }

  void Fail(std::exception_ptr error) {
    const std::scoped_lock lock(mutex_);
    if (!hasFailed_.exchange(true)) {
      error_ = std::move(error);
    }
  }

  const CheckOptions& options_;
  const std::vector<check::Check>& checks_;
  const Console& console_;
  const TakeResult& take_;
  const Interrupt interrupt_;
  std::mutex mutex_;
  std::size_t next_ = 0;
  std::atomic<bool> hasFailed_ = false;
  std::exception_ptr error_;
};

/// Throws CommandExit when the user interrupts.
ProcessReport RunAlone(const CheckJob& job, const CheckOptions& options, const Console& console) {
  const Interrupt interrupt;
  ProcessReport report =
      RunProcess(job, options, console, [&interrupt] { return interrupt.Came(); });
  if (interrupt.Came()) {
    throw CommandExit(kInterrupted, {"interrupted"});
  }
  return report;
}

}  // namespace

std::vector<check::Check> ListChecks(const CheckOptions& options, const Console& console) {
  const ProcessReport report = RunAlone({.lists = true}, options, console);
  if (report.checks.empty()) {
    const std::string end = BadEnd(report.end);
    throw std::runtime_error(CheckWorker() + " did not list its checks" +
                             (end.empty() ? "" : ": it ended with " + end));
  }
  return report.checks;
}

void ExpectLoadable(const CheckOptions& options, const Console& console) {
  const ProcessReport report = RunAlone(JobFor(options, {}), options, console);
  if (report.end.timedOut) {
    throw standin::PluginLoadError(TimeUp(options.timeLimit));
  }
  if (report.notLoaded) {
    throw standin::PluginLoadError(*report.notLoaded);
  }
  if (!report.isLoaded || !report.end.IsGood()) {
    const std::string end = BadEnd(report.end);
    throw standin::PluginLoadError("the process that loaded it ended with " +
                                   (end.empty() ? "exit code 0 too early" : end));
  }
}

void RunInProcesses(const CheckOptions& options, const std::vector<check::Check>& checks,
                    const Console& console, const TakeResult& take) {
  ParallelChecks(options, checks, console, take).Run();
}

}  // namespace tarvo
