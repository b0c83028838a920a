#include <cerrno>
#include <csignal>
#include <cstring>
#include <system_error>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "standin/command/process.h"

extern char** environ;  // NOLINT(readability-redundant-declaration): no header need declare it

namespace standin {
namespace {

/// What a program that a signal ended is said to have returned, less the signal.
constexpr int kSignalBase = 128;

std::string Words(int error) { return std::generic_category().message(error); }

/// How a program is started: its streams, in a process group of its own, with usual signals.
class SpawnSettings {
 public:
  SpawnSettings() {
    posix_spawn_file_actions_init(&actions_);
    posix_spawnattr_init(&attributes_);
    sigset_t usual;
    sigemptyset(&usual);
    sigaddset(&usual, SIGPIPE);
    posix_spawnattr_setsigdefault(&attributes_, &usual);
    posix_spawnattr_setpgroup(&attributes_, 0);
    posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF);
  }
  SpawnSettings(const SpawnSettings&) = delete;
  SpawnSettings& operator=(const SpawnSettings&) = delete;
  ~SpawnSettings() {
    posix_spawnattr_destroy(&attributes_);
    posix_spawn_file_actions_destroy(&actions_);
  }

  /// The program's stream `to` is this program's `from`.
  void Connect(int from, int to) { posix_spawn_file_actions_adddup2(&actions_, from, to); }

  [[nodiscard]] const posix_spawn_file_actions_t* Actions() const { return &actions_; }
  [[nodiscard]] const posix_spawnattr_t* Attributes() const { return &attributes_; }

 private:
  posix_spawn_file_actions_t actions_{};
  posix_spawnattr_t attributes_{};
};

}  // namespace

struct Process::Running {
  Running(const std::vector<std::string>& command, Pipe direction) {
    int ends[2];  // to read from, to write to
    if (pipe2(ends, O_CLOEXEC) != 0) {
      throw ProcessError("no pipe to " + command.front() + ": " + Words(errno));
    }
    const bool isInput = direction == Pipe::kToInput;
    pipe = ends[isInput ? 1 : 0];
    const int theirs = ends[isInput ? 0 : 1];
    SpawnSettings settings;
    settings.Connect(theirs, isInput ? STDIN_FILENO : STDOUT_FILENO);
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (const std::string& word : command) {
      arguments.push_back(const_cast<char*>(word.c_str()));  // read only
    }
    arguments.push_back(nullptr);
    const int error = posix_spawnp(&id, arguments.front(), settings.Actions(),
                                   settings.Attributes(), arguments.data(), environ);
    close(theirs);
    if (error != 0) {
      close(pipe);
      const std::string text = command.front() + " cannot be started: " + Words(error);
      if (error == ENOENT) {
        throw ProgramAbsent(text);
      }
      throw ProcessError(text);
    }
  }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;
  ~Running() {
    if (id != 0) {
      Kill();
      Wait();
    }
  }

  void Kill() const { kill(id, SIGKILL); }

  int Wait() {
    close(pipe);
    int status = 0;
    while (waitpid(id, &status, 0) < 0 && errno == EINTR) {
    }
    id = 0;
    return WIFEXITED(status) ? WEXITSTATUS(status) : kSignalBase + WTERMSIG(status);
  }

  pid_t id = 0;
  int pipe = -1;
};

Process::Process(const std::vector<std::string>& command, Pipe pipe) {
  if (pipe == Pipe::kToInput) {
    std::signal(SIGPIPE, SIG_IGN);  // a failed write says so itself
  }
  running_ = std::make_unique<Running>(command, pipe);
}

Process::Process(Process&&) noexcept = default;
Process::~Process() = default;

void Process::Write(const void* bytes, std::size_t size) {
  const char* next = static_cast<const char*>(bytes);
  while (size > 0) {
    const ssize_t written = write(running_->pipe, next, size);
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

std::size_t Process::ReadSome(void* bytes, std::size_t size) {
  ssize_t count = 0;
  do {
    count = read(running_->pipe, bytes, size);
  } while (count < 0 && errno == EINTR);
  return count < 0 ? 0 : static_cast<std::size_t>(count);
}

void Process::Kill() { running_->Kill(); }

int Process::Wait() { return running_->Wait(); }

std::string Process::EndText(int code) {
  if (code <= kSignalBase) {
    return code == 0 ? "" : "exit code " + std::to_string(code);
  }
  const int signal = code - kSignalBase;
  return "signal " + std::to_string(signal) + " (" + strsignal(signal) + ")";
}

}  // namespace standin
