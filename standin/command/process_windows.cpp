#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>

#include <windows.h>

#include "standin/command/process.h"
#include "standin/command/system.h"
#include "standin/file_path.h"

namespace standin {
namespace {

std::wstring CommandLine(const std::vector<std::string>& command) {
  std::string line;
  for (const std::string& word : command) {
    line += (line.empty() ? "" : " ") + Quoted(word);
  }
  return FilePath(line).Get().wstring();
}

constexpr DWORD kLargestTransfer = 1U << 20U;

}  // namespace

struct Process::Running {
  Running(const std::vector<std::string>& command, Pipe direction) {
    SECURITY_ATTRIBUTES inherited{};
    inherited.nLength = sizeof inherited;
    inherited.bInheritHandle = TRUE;
    HANDLE reading = nullptr;
    HANDLE writing = nullptr;
    if (CreatePipe(&reading, &writing, &inherited, 0) == 0) {
      throw ProcessError("no pipe to " + command.front() + ": error " +
                         std::to_string(GetLastError()));
    }
    const bool isInput = direction == Pipe::kToInput;
    pipe = isInput ? writing : reading;
    HANDLE theirs = isInput ? reading : writing;
    SetHandleInformation(pipe, HANDLE_FLAG_INHERIT, 0);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = isInput ? theirs : GetStdHandle(STD_INPUT_HANDLE);
    startup.hStdOutput = isInput ? GetStdHandle(STD_OUTPUT_HANDLE) : theirs;
    startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    std::wstring line = CommandLine(command);
    PROCESS_INFORMATION made{};
    const BOOL started =
        CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, CREATE_NEW_PROCESS_GROUP,
                       nullptr, nullptr, &startup, &made);
    const DWORD error = GetLastError();
    CloseHandle(theirs);
    if (started == 0) {
      CloseHandle(pipe);
      const std::string text =
          command.front() + " cannot be started: error " + std::to_string(error);
      if (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND) {
        throw ProgramAbsent(text);
      }
      throw ProcessError(text);
    }
    CloseHandle(made.hThread);
    process = made.hProcess;
  }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;
  ~Running() {
    if (process != nullptr) {
      Kill();
      Wait();
    }
  }

  void Kill() const { TerminateProcess(process, 1); }

  int Wait() {
    CloseHandle(pipe);
    WaitForSingleObject(process, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(process, &code);
    CloseHandle(process);
    process = nullptr;
    return static_cast<int>(code);
  }

  HANDLE process = nullptr;
  HANDLE pipe = nullptr;
};

Process::Process(const std::vector<std::string>& command, Pipe pipe)
    : running_(std::make_unique<Running>(command, pipe)) {}

Process::Process(Process&&) noexcept = default;
Process::~Process() = default;

void Process::Write(const void* bytes, std::size_t size) {
  const char* next = static_cast<const char*>(bytes);
  while (size > 0) {
    DWORD written = 0;
    const auto part = static_cast<DWORD>(std::min<std::size_t>(size, kLargestTransfer));
    if (WriteFile(running_->pipe, next, part, &written, nullptr) == 0) {
      throw ProcessError("the pipe cannot be written: error " + std::to_string(GetLastError()));
    }
    next += written;
    size -= written;
  }
}

std::size_t Process::ReadSome(void* bytes, std::size_t size) {
  DWORD count = 0;
  const auto part = static_cast<DWORD>(std::min<std::size_t>(size, kLargestTransfer));
  return ReadFile(running_->pipe, bytes, part, &count, nullptr) == 0 ? 0 : count;
}

void Process::Kill() { running_->Kill(); }

int Process::Wait() { return running_->Wait(); }

std::string Process::EndText(int code) {
  constexpr unsigned kFirstException = 0x8000'0000;
  const auto number = static_cast<unsigned>(code);
  if (number < kFirstException) {
    return code == 0 ? "" : "exit code " + std::to_string(code);
  }
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "0x%08x", number);
  return "exception " + std::string(text.data());
}

}  // namespace standin
