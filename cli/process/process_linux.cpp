#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <mutex>
#include <new>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "cli/process/process.h"
#include "cli/process/system.h"

namespace tarvo {
/// What Process::Running is made of: a namespace with a name, because sources are compiled in
/// groups and the type is declared in a header.
namespace process_parts {

/// What a program that a signal ended is said to have returned, less the signal: more than any exit
/// code, which has eight bits.
constexpr int kSignalBase = 0x100;
/// What a child returns that cannot become the program, as a shell does.
constexpr int kNotStarted = 127;

inline std::string Words(int error) { return std::generic_category().message(error); }

/// A file descriptor, closed at the end of the scope.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  ~Descriptor() { Close(); }

  void Close() {
    if (number_ >= 0) {
      close(std::exchange(number_, -1));
    }
  }
  [[nodiscard]] int Get() const { return number_; }
  [[nodiscard]] bool IsOpen() const { return number_ >= 0; }

 private:
  int number_ = -1;
};

/// Both ends of a pipe; neither is inherited by programs.
struct PipeEnds {
  PipeEnds() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
      throw ProcessError("a pipe cannot be made: " + Words(errno));
    }
    reading = Descriptor(ends[0]);
    writing = Descriptor(ends[1]);
  }

  Descriptor reading;
  Descriptor writing;
};

/// A crash record in memory that a child can map too.
class SharedRecord {
 public:
  SharedRecord() : file_(memfd_create("tarvo", MFD_CLOEXEC)) {
    if (!file_.IsOpen() || ftruncate(file_.Get(), sizeof(standin::CrashRecord)) != 0) {
      throw ProcessError("memory cannot be shared: " + Words(errno));
    }
    void* const memory = mmap(nullptr, sizeof(standin::CrashRecord), PROT_READ | PROT_WRITE,
                              MAP_SHARED, file_.Get(), 0);
    if (memory == MAP_FAILED) {
      throw ProcessError("memory cannot be shared: " + Words(errno));
    }
    record_ = new (memory) standin::CrashRecord;
  }
  SharedRecord(const SharedRecord&) = delete;
  SharedRecord& operator=(const SharedRecord&) = delete;
  ~SharedRecord() { munmap(record_, sizeof(standin::CrashRecord)); }

  [[nodiscard]] int File() const { return file_.Get(); }
  [[nodiscard]] const standin::CrashRecord& Get() const { return *record_; }

 private:
  Descriptor file_;
  standin::CrashRecord* record_ = nullptr;
};

}  // namespace process_parts

namespace {

using namespace process_parts;

/// How a program is started. Everything is allocated before the fork: after it only functions that
/// are safe in a signal handler may be called, because other threads' locks are never released.
struct StartPlan {
  std::string program;  ///< its file; the command's first word if empty
  std::vector<char*> arguments;
  std::vector<std::pair<int, int>> streams;  ///< this program's descriptor, the child's number
  std::vector<int> inherited;                ///< under the same number
  int failure = -1;                          ///< where the child writes why it cannot be started
};

void ResetSignals() {
  for (const int signal : {SIGPIPE, SIGCHLD, SIGINT, SIGTERM, SIGHUP}) {
    std::signal(signal, SIG_DFL);
  }
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
}

/// The child's side of the fork.
[[noreturn]] void BecomeProgram(const StartPlan& plan, pid_t parent) {
  setpgid(0, 0);
  ResetSignals();
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) {  // it ended before the line above
    _exit(kNotStarted);
  }
  for (const auto& [from, to] : plan.streams) {
    dup2(from, to);
  }
  for (const int descriptor : plan.inherited) {
    fcntl(descriptor, F_SETFD, 0);
  }
  execvp(plan.program.c_str(), plan.arguments.data());
  const int error = errno;
  [[maybe_unused]] const ssize_t written = write(plan.failure, &error, sizeof error);
  _exit(kNotStarted);
}

pid_t Start(const std::vector<std::string>& command, StartPlan plan) {
  for (const std::string& word : command) {
    plan.arguments.push_back(const_cast<char*>(word.c_str()));  // read only
  }
  plan.arguments.push_back(nullptr);
  if (plan.program.empty()) {
    plan.program = command.front();
  }
  PipeEnds failure;
  plan.failure = failure.writing.Get();
  const pid_t parent = getpid();
  const pid_t child = fork();
  if (child == 0) {
    BecomeProgram(plan, parent);
  }
  int error = child < 0 ? errno : 0;
  failure.writing.Close();
  if (child > 0 && read(failure.reading.Get(), &error, sizeof error) == sizeof error) {
    waitpid(child, nullptr, 0);
  }
  if (error != 0) {
    const std::string text = command.front() + " cannot be started: " + Words(error);
    if (error == ENOENT) {
      throw ProgramAbsent(text);
    }
    throw ProcessError(text);
  }
  return child;
}

void MakeNonblocking(const Descriptor& descriptor) {
  fcntl(descriptor.Get(), F_SETFL, fcntl(descriptor.Get(), F_GETFL) | O_NONBLOCK);
}

/// What a descriptor has now; closes it at its end.
std::size_t ReadNow(Descriptor& descriptor, void* bytes, std::size_t size) {
  if (!descriptor.IsOpen() || size == 0) {
    return 0;
  }
  ssize_t count = 0;
  do {
    count = read(descriptor.Get(), bytes, size);
  } while (count < 0 && errno == EINTR);
  if (count == 0 || (count < 0 && errno != EAGAIN)) {
    descriptor.Close();
  }
  return count < 0 ? 0 : static_cast<std::size_t>(count);
}

}  // namespace

struct Process::Running {
  Running() = default;
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;
  ~Running() {
    if (id != 0) {
      KillGroup();
      while (waitpid(id, nullptr, 0) < 0 && errno == EINTR) {
      }
    }
  }

  void StartWithInputPipe(const std::vector<std::string>& command) {
    PipeEnds pipe;
    id = Start(command, {.streams = {{pipe.reading.Get(), STDIN_FILENO}}});
    input = std::move(pipe.writing);
  }

  void StartWithOutputPipe(const std::vector<std::string>& command) {
    PipeEnds pipe;
    id = Start(command, {.streams = {{pipe.writing.Get(), STDOUT_FILENO}}});
    output = std::move(pipe.reading);
    MakeNonblocking(output);
  }

  void StartWorker(std::vector<std::string> command) {
    constexpr int kPipeCapacity = 1 << 20;  // most of a frame at once; systems may grant less
    PipeEnds forInput;
    PipeEnds forChannel;
    PipeEnds forOutput;
    record = std::make_unique<SharedRecord>();
    fcntl(forChannel.writing.Get(), F_SETPIPE_SZ, kPipeCapacity);
    const int theirs = forChannel.writing.Get();
    command.insert(command.begin() + 1,
                   "--worker=" + std::to_string(theirs) + "," + std::to_string(record->File()));
    const int outputs = forOutput.writing.Get();
    // This program also after its file was replaced: both ends of the channel are the same then.
    const bool isThis = command.front() == ThisProgram().string();
    id = Start(command, {.program = isThis ? "/proc/self/exe" : "",
                         .streams = {{forInput.reading.Get(), STDIN_FILENO},
                                     {outputs, STDOUT_FILENO},
                                     {outputs, STDERR_FILENO}},
                         .inherited = {theirs, record->File()}});
    input = std::move(forInput.writing);
    channel = std::move(forChannel.reading);
    output = std::move(forOutput.reading);
    MakeNonblocking(channel);
    MakeNonblocking(output);
  }

  /// The whole group, from any thread. Its number is not used again while the child has not been
  /// waited for, which happens under the same lock.
  void Kill() {
    const std::scoped_lock lock(reaping);
    KillGroup();
  }

  bool HasEnded() {
    const std::scoped_lock lock(reaping);
    if (id == 0) {
      return true;
    }
    siginfo_t info{};
    const int result = waitid(P_PID, static_cast<id_t>(id), &info, WEXITED | WNOHANG | WNOWAIT);
    if (result < 0 && errno == EINTR) {
      return false;
    }
    if (result == 0 && info.si_pid == 0) {
      return false;
    }
    KillGroup();  // what it left behind
    int status = 0;
    if (result < 0 || waitpid(id, &status, 0) != id) {
      code = kUnknownEnd;
    } else {
      code = WIFEXITED(status) ? WEXITSTATUS(status) : kSignalBase + WTERMSIG(status);
    }
    id = 0;
    return true;
  }

  void KillGroup() const {
    if (id != 0) {
      kill(-id, SIGKILL);
    }
  }

  std::mutex reaping;
  pid_t id = 0;  ///< 0: it has ended
  int code = kUnknownEnd;
  Descriptor input;
  Descriptor channel;
  Descriptor output;
  std::unique_ptr<SharedRecord> record;
};

Process::Process(const std::vector<std::string>& command, Pipe pipe)
    : running_(std::make_unique<Running>()) {
  switch (pipe) {
    case Pipe::kToInput:
      running_->StartWithInputPipe(command);
      break;
    case Pipe::kFromOutput:
      running_->StartWithOutputPipe(command);
      break;
    case Pipe::kWorker:
      running_->StartWorker(command);
      break;
  }
}

Process::Process(Process&&) noexcept = default;
Process::~Process() = default;

void Process::Write(const void* bytes, std::size_t size) {
  const char* next = static_cast<const char*>(bytes);
  while (size > 0) {
    const ssize_t written = write(running_->input.Get(), next, size);
    if (written < 0 && errno == EINTR) {
      continue;
    }
    if (written < 0) {
      throw ProcessError("the pipe cannot be written: " + Words(errno));
    }
    next += written;
    size -= static_cast<std::size_t>(written);
  }
}

std::size_t Process::ReadChannel(void* bytes, std::size_t size) {
  return ReadNow(running_->channel, bytes, size);
}

std::size_t Process::ReadOutput(void* bytes, std::size_t size) {
  return ReadNow(running_->output, bytes, size);
}

const standin::CrashRecord& Process::Record() const { return running_->record->Get(); }

void Process::AwaitAny(const std::vector<PollTarget>& targets, std::chrono::milliseconds atMost) {
  constexpr int kPollAfterPipeClosedMs = 1;  // a worker whose channel is closed is about to exit
  std::vector<pollfd> pipes;
  auto timeout = static_cast<int>(atMost.count());
  for (const auto& [process, channel] : targets) {
    const Running& running = *process->running_;
    if (running.output.IsOpen()) {
      pipes.push_back({running.output.Get(), POLLIN, 0});
    }
    if (channel && running.channel.IsOpen()) {
      pipes.push_back({running.channel.Get(), POLLIN, 0});
    }
    if (!running.channel.IsOpen() && running.id != 0) {
      timeout = std::min(timeout, kPollAfterPipeClosedMs);
    }
  }
  poll(pipes.data(), pipes.size(), timeout);
}

bool Process::HasEnded() { return running_->HasEnded(); }

void Process::Kill() { running_->Kill(); }

void Process::CloseInput() { running_->input.Close(); }

int Process::EndCode() const { return running_->code; }

bool Process::WasCrash(int code) { return code > kSignalBase && !WasEndedFromOutside(code); }

bool Process::WasEndedFromOutside(int code) {
  constexpr std::array kFromOutside = {SIGKILL, SIGTERM, SIGINT, SIGHUP};
  return std::ranges::find(kFromOutside, code - kSignalBase) != kFromOutside.end();
}

std::string Process::EndText(int code) {
  if (code == kUnknownEnd) {
    return "an end that the system does not report";
  }
  if (code < kSignalBase) {
    return code == 0 ? "" : "exit code " + std::to_string(code);
  }
  const int signal = code - kSignalBase;
  return "signal " + std::to_string(signal) + " (" + strsignal(signal) + ")";
}

}  // namespace tarvo
