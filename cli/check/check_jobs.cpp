#include "cli/check/check_jobs.h"

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

#include "cli/check/check_order.h"
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

/// What a process that ran a check left.
struct JobOutcome {
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

/// Throws MessageError for a message that a worker with this order does not send.
void TakeIn(const Message& message, const CheckOrder& order, JobOutcome& outcome) {
  switch (message.kind) {
    case MessageKind::kChecks:
      outcome.checks = FromJson(message, check::ChecksFrom);
      return;
    case MessageKind::kLoaded:
      outcome.isLoaded = true;
      return;
    case MessageKind::kNotLoaded:
      outcome.notLoaded = message.bytes;
      return;
    case MessageKind::kResult:
      outcome.result = FromJson(message, check::ResultFrom);
      if (std::vector{outcome.result->name} != order.checks) {
        throw MessageError("the result of another check");
      }
      return;
    default:
      throw MessageError("a message of another kind than expected");
  }
}

/// Ends the worker at once when `isUnwanted`.
JobOutcome RunJob(const CheckOrder& order, const CheckOptions& options, const Console& console,
                  const std::function<bool()>& isUnwanted) {
  const Clock::time_point start = Clock::now();
  Worker worker({CheckWorker(), options.plugin},
                order.checks.empty() ? "check" : order.checks.front(),
                {.seconds = options.timeLimit, .of = TimeLimit::Of::kProcess}, console);
  worker.Order(OrderText(order));
  JobOutcome outcome;
  while (!worker.IsOver()) {
    Worker::AwaitAny({&worker});
    worker.Pump();
    if (isUnwanted()) {
      worker.Stop();
    }
    if (worker.HasMessage()) {
      try {
        TakeIn(worker.Take(), order, outcome);
      } catch (const MessageError& error) {
        worker.Refuse(error.what());
      }
    }
  }
  outcome.end = worker.End();
  outcome.seconds = std::chrono::duration<double>(Clock::now() - start).count();
  return outcome;
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
                       const JobOutcome& outcome) {
  check::Result result{.name = check.name,
                       .requirement = check.requirement,
                       .verdict = check::Verdict::kCrashed,
                       .seconds = outcome.seconds,
                       .messages = {},
                       .figures = {}};
  const std::string where = outcome.end.place + "; " + outcome.end.hostCall;
  if (outcome.end.timedOut) {
    result.verdict = check::Verdict::kTimedOut;
    result.messages = {TimeUp(options.timeLimit) + ", " + where};
    return result;
  }
  if (outcome.result) {
    result = *outcome.result;
  }
  const std::string end = BadEnd(outcome.end);
  if (!end.empty()) {
    result.verdict = check::Verdict::kCrashed;
    result.messages.push_back("its process ended with " + end +
                              (outcome.result ? " after the check" : "") + ", " + where);
  } else if (!outcome.result) {
    result.messages.push_back("its process ended without a result, " + where);
  } else if (!outcome.end.announcedExitCode) {
    result.verdict = check::Verdict::kCrashed;
    result.messages.push_back("its process ended too early after the check, " + where);
  }
  return result;
}

/// Threads that each run one check after the other.
class Jobs {
 public:
  Jobs(const CheckOptions& options, const std::vector<check::Check>& checks, const Console& console,
       const TakeResult& take)
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
        const JobOutcome outcome = RunJob(OrderOf(options_, {check->name}), options_, console_,
                                          [this] { return IsUnwanted(); });
        const std::scoped_lock lock(mutex_);
        if (!IsUnwanted()) {
          take_(ResultOf(options_, *check, outcome));
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
JobOutcome RunAlone(const CheckOrder& order, const CheckOptions& options, const Console& console) {
  const Interrupt interrupt;
  JobOutcome outcome = RunJob(order, options, console, [&interrupt] { return interrupt.Came(); });
  if (interrupt.Came()) {
    throw CommandExit(kInterrupted, {"interrupted"});
  }
  return outcome;
}

}  // namespace

std::vector<check::Check> ListChecks(const CheckOptions& options, const Console& console) {
  const JobOutcome outcome = RunAlone({.lists = true}, options, console);
  if (outcome.checks.empty()) {
    const std::string end = BadEnd(outcome.end);
    throw std::runtime_error(CheckWorker() + " did not list its checks" +
                             (end.empty() ? "" : ": it ended with " + end));
  }
  return outcome.checks;
}

void ExpectLoadable(const CheckOptions& options, const Console& console) {
  const JobOutcome outcome = RunAlone(OrderOf(options, {}), options, console);
  if (outcome.end.timedOut) {
    throw standin::PluginLoadError(TimeUp(options.timeLimit));
  }
  if (outcome.notLoaded) {
    throw standin::PluginLoadError(*outcome.notLoaded);
  }
  if (!outcome.isLoaded || !outcome.end.IsGood()) {
    const std::string end = BadEnd(outcome.end);
    throw standin::PluginLoadError("the process that loaded it ended with " +
                                   (end.empty() ? "exit code 0 too early" : end));
  }
}

void RunInJobs(const CheckOptions& options, const std::vector<check::Check>& checks,
               const Console& console, const TakeResult& take) {
  Jobs(options, checks, console, take).Run();
}

}  // namespace tarvo
