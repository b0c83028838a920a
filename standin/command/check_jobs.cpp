#include "standin/command/check_jobs.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <iomanip>
#include <mutex>
#include <optional>
#include <ostream>
#include <sstream>
#include <string>
#include <thread>

#include <nlohmann/json.hpp>

#include "check/support/plugin_under_check.h"
#include "standin/command/command.h"
#include "standin/command/interrupt.h"
#include "standin/command/process.h"
#include "standin/command/system.h"
#include "standin/host.h"
#include "standin/plugin_library.h"

namespace standin {
namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;
using json = nlohmann::ordered_json;

/// Lines that begin so are ours; a plug-in may print what it likes.
constexpr const char* kResultMark = "tarvo-check-result ";
constexpr const char* kNotLoadedMark = "tarvo-check-not-loaded ";
constexpr const char* kLoadedMark = "tarvo-check-loaded";

/// A name that no check has: the plug-in is loaded and that is all.
constexpr const char* kNoCheck = "-";

std::string InOneLine(const json& value) {
  return value.dump(-1, ' ', false, json::error_handler_t::replace);  // messages may hold any bytes
}

/// The rest of the line that begins with `mark`.
std::optional<std::string> LineAfter(const std::string& mark, const std::string& output) {
  std::istringstream lines(output);
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with(mark)) {
      return line.substr(mark.size());
    }
  }
  return std::nullopt;
}

/// Ends a process when its time is up, or the user wants no more of it.
class Patience {
 public:
  Patience(Process& process, double seconds, const Interrupt& interrupt)
      : end_(Clock::now() + std::chrono::duration_cast<Clock::duration>(Seconds(seconds))),
        thread_([this, &process, &interrupt] { Watch(process, interrupt); }) {}
  Patience(const Patience&) = delete;
  Patience& operator=(const Patience&) = delete;
  ~Patience() {
    {
      const std::scoped_lock lock(mutex_);
      isOver_ = true;
    }
    over_.notify_one();
    thread_.join();
  }

  [[nodiscard]] bool HadAnEnd() const {
    const std::scoped_lock lock(mutex_);
    return hadAnEnd_;
  }

 private:
  void Watch(Process& process, const Interrupt& interrupt) {
    constexpr std::chrono::milliseconds kLook(50);
    std::unique_lock lock(mutex_);
    while (!over_.wait_for(lock, kLook, [this] { return isOver_; })) {
      if (Clock::now() >= end_ || interrupt.Came()) {
        hadAnEnd_ = true;
        process.Kill();
        return;
      }
    }
  }

  Clock::time_point end_;
  mutable std::mutex mutex_;
  std::condition_variable over_;
  bool isOver_ = false;
  bool hadAnEnd_ = false;
  std::thread thread_;  // last: it uses the others
};

/// What a process that ran a check left.
struct Remains {
  std::string output;
  int code = 0;
  bool timedOut = false;
  double seconds = 0;
};

Remains RunJob(const CheckOptions& options, const std::string& check, const Interrupt& interrupt) {
  std::vector<std::string> words = ReportingCommandLine(options, check);
  words.insert(words.begin(), ThisProgram().string());
  const Clock::time_point start = Clock::now();
  Process process(words, Process::Pipe::kFromOutput);
  Remains remains;
  {
    const Patience patience(process, options.timeLimit, interrupt);
    remains.output = process.ReadAll();
    remains.timedOut = patience.HadAnEnd();
  }
  remains.code = process.Wait();
  remains.seconds = Seconds(Clock::now() - start).count();
  return remains;
}

std::string TimeUp(double limit) {
  std::ostringstream text;
  text << "it did not end within " << limit << " s";
  return text.str();
}

check::Result ResultOf(const CheckOptions& options, const check::Check& check,
                       const Remains& remains) {
  check::Result result{.name = check.name,
                       .promise = check.promise,
                       .verdict = check::Verdict::kCrashed,
                       .seconds = remains.seconds,
                       .messages = {},
                       .figures = {}};
  if (remains.timedOut) {
    result.verdict = check::Verdict::kTimedOut;
    result.messages = {TimeUp(options.timeLimit)};
    return result;
  }
  const std::optional<std::string> told = LineAfter(kResultMark, remains.output);
  if (told) {
    result = check::ResultFrom(json::parse(*told));
  }
  const std::string end = Process::EndText(remains.code);
  if (!end.empty()) {
    result.verdict = check::Verdict::kCrashed;
    result.messages.push_back("its process ended with " + end + (told ? " after the check" : ""));
  } else if (!told) {
    result.messages.emplace_back("its process ended without a result");
  }
  return result;
}

/// Threads that each run one check after the other.
class Jobs {
 public:
  Jobs(const CheckOptions& options, const std::vector<check::Check>& checks, const TakeResult& take)
      : options_(options), checks_(checks), take_(take) {}

  void Run() {
    std::vector<std::thread> threads;
    const std::size_t count =
        std::min(static_cast<std::size_t>(options_.jobs), std::max<std::size_t>(checks_.size(), 1));
    for (std::size_t i = 0; i < count; ++i) {
      threads.emplace_back([this] { Work(); });
    }
    for (std::thread& thread : threads) {
      thread.join();
    }
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
    const bool isOver = error_ || interrupt_.Came() || next_ == checks_.size();
    return isOver ? nullptr : &checks_[next_++];
  }

  void Work() {
    try {
      while (const check::Check* check = Next()) {
        const Remains remains = RunJob(options_, check->name, interrupt_);
        const std::scoped_lock lock(mutex_);
        if (!interrupt_.Came()) {
          take_(ResultOf(options_, *check, remains));
        }
      }
    } catch (...) {
      const std::scoped_lock lock(mutex_);
      error_ = std::current_exception();
    }
  }

  const CheckOptions& options_;
  const std::vector<check::Check>& checks_;
  const TakeResult& take_;
  const Interrupt interrupt_;
  std::mutex mutex_;
  std::size_t next_ = 0;
  std::exception_ptr error_;
};

}  // namespace

void ExpectLoadable(const CheckOptions& options) {
  const Interrupt interrupt;
  const Remains remains = RunJob(options, kNoCheck, interrupt);
  if (interrupt.Came()) {
    throw Unfinished(kInterrupted, {"interrupted"});
  }
  if (remains.timedOut) {
    throw PluginLoadError(TimeUp(options.timeLimit));
  }
  if (const auto why = LineAfter(kNotLoadedMark, remains.output)) {
    throw PluginLoadError(json::parse(*why).get<std::string>());
  }
  if (remains.code != kMade || !LineAfter(kLoadedMark, remains.output)) {
    throw PluginLoadError("the process that loaded it ended with " +
                          Process::EndText(remains.code));
  }
}

void RunInJobs(const CheckOptions& options, const std::vector<check::Check>& checks,
               const TakeResult& take) {
  Jobs(options, checks, take).Run();
}

void Report(const CheckOptions& options, const std::vector<check::Check>& checks,
            std::ostream& out) {
  EndAtOnceOnCrash();
  try {
    check::UsePlugin(options.plugin);
    const Host host(check::PluginUnderCheck());  // and this machine can play the host
  } catch (const std::exception& error) {
    out << '\n' << kNotLoadedMark << InOneLine(error.what()) << std::endl;
    return;
  }
  out << '\n' << kLoadedMark << std::endl;
  check::RunHere(checks, [&](const check::Result& result) {
    out << '\n' << kResultMark << InOneLine(check::ToJson(result)) << std::endl;
  });
}

}  // namespace standin
