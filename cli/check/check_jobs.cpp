#include "cli/check/check_jobs.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <exception>
#include <mutex>
#include <new>
#include <optional>
#include <string>
#include <utility>

#include <nlohmann/json.hpp>

#include "check/support/plugin_under_check.h"
#include "cli/process/interrupt.h"
#include "cli/process/messages.h"
#include "cli/process/threads.h"
#include "cli/process/worker.h"
#include "standin/host/host.h"
#include "standin/loader/plugin_library.h"

namespace standin {
namespace {

using Clock = std::chrono::steady_clock;
using json = nlohmann::ordered_json;

/// A name that no check has: the plug-in is loaded and that is all.
constexpr const char* kNoCheck = "-";

std::string InOneLine(const json& value) {
  return value.dump(-1, ' ', false, json::error_handler_t::replace);  // messages may hold any bytes
}

/// What a process that ran a check left.
struct JobOutcome {
  bool isLoaded = false;
  std::optional<std::string> notLoaded;  ///< why the plug-in cannot be loaded
  std::optional<check::Result> result;
  WorkerEnd end;
  double seconds = 0;
};

/// Throws MessageError for a result that is not that of the check.
check::Result ResultOfMessage(const Message& message, const std::string& check) {
  try {
    check::Result result = check::ResultFrom(json::parse(message.bytes));
    if (result.name == check) {
      return result;
    }
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const std::exception& error) {
    throw MessageError(std::string("a result that cannot be read: ") + error.what());
  }
  throw MessageError("the result of another check");
}

void TakeIn(const Message& message, const std::string& check, JobOutcome& outcome) {
  switch (message.kind) {
    case MessageKind::kLoaded:
      outcome.isLoaded = true;
      return;
    case MessageKind::kNotLoaded:
      outcome.notLoaded = message.bytes;
      return;
    case MessageKind::kResult:
      outcome.result = ResultOfMessage(message, check);
      return;
    default:
      throw MessageError("a message of another kind than expected");
  }
}

/// Ends the worker at once when `isUnwanted`.
JobOutcome RunJob(const CheckOptions& options, const std::string& check, const Console& console,
                  const std::function<bool()>& isUnwanted) {
  const Clock::time_point start = Clock::now();
  Worker worker(ReportingCommandLine(options, check), check,
                {.seconds = options.timeLimit, .of = TimeLimit::Of::kProcess}, console);
  worker.Order("");
  JobOutcome outcome;
  while (!worker.IsOver()) {
    Worker::AwaitAny({&worker});
    worker.Pump();
    if (isUnwanted()) {
      worker.Stop();
    }
    if (worker.HasMessage()) {
      try {
        TakeIn(worker.Take(), check, outcome);
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
                       .promise = check.promise,
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
  } else if (!outcome.end.told) {
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
      throw Unfinished(kInterrupted, {"interrupted"});
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
        const JobOutcome outcome =
            RunJob(options_, check->name, console_, [this] { return IsUnwanted(); });
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

}  // namespace

void ExpectLoadable(const CheckOptions& options, const Console& console) {
  const Interrupt interrupt;
  const JobOutcome outcome =
      RunJob(options, kNoCheck, console, [&interrupt] { return interrupt.Came(); });
  if (interrupt.Came()) {
    throw Unfinished(kInterrupted, {"interrupted"});
  }
  if (outcome.end.timedOut) {
    throw PluginLoadError(TimeUp(options.timeLimit));
  }
  if (outcome.notLoaded) {
    throw PluginLoadError(*outcome.notLoaded);
  }
  if (!outcome.isLoaded || !outcome.end.IsGood()) {
    const std::string end = BadEnd(outcome.end);
    throw PluginLoadError("the process that loaded it ended with " +
                          (end.empty() ? "exit code 0 too early" : end));
  }
}

void RunInJobs(const CheckOptions& options, const std::vector<check::Check>& checks,
               const Console& console, const TakeResult& take) {
  Jobs(options, checks, console, take).Run();
}

void Report(const CheckOptions& options, const std::vector<check::Check>& checks,
            MessageWriter& channel) {
  try {
    check::UsePlugin(options.plugin);
    const Host host(check::PluginUnderCheck());  // and this machine can play the host
  } catch (const std::exception& error) {
    channel.Send(MessageKind::kNotLoaded, error.what());
    return;
  }
  channel.Send(MessageKind::kLoaded, "");
  check::RunHere(checks, [&](const check::Result& result) {
    channel.Send(MessageKind::kResult, InOneLine(check::ToJson(result)));
  });
}

}  // namespace standin
