#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <mutex>
#include <new>
#include <utility>

#include <windows.h>

#include "base/files/file_path.h"
#include "cli/process/process.h"
#include "cli/process/system.h"

namespace tarvo {
/// What Process::Running is made of: a namespace with a name, because sources are compiled in
/// groups and the type is declared in a header.
namespace process_parts {

constexpr DWORD kLargestTransfer = 1U << 20U;
/// What a process that this one ended by force returns; no exit code of ours.
constexpr UINT kKilled = 0x4B49'4C4C;

inline std::string LastError() { return "error " + std::to_string(GetLastError()); }

/// An object of the system, closed at the end of the scope.
class Handle {
 public:
  Handle() = default;
  explicit Handle(HANDLE handle) : handle_(handle) {}
  Handle(Handle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  Handle& operator=(Handle&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~Handle() { Close(); }

  void Close() {
    if (handle_ != nullptr) {
      CloseHandle(std::exchange(handle_, nullptr));
    }
  }
  [[nodiscard]] HANDLE Get() const { return handle_; }
  [[nodiscard]] bool IsOpen() const { return handle_ != nullptr; }
  void MakeInheritable() const {
    SetHandleInformation(handle_, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
  }

 private:
  HANDLE handle_ = nullptr;
};

/// Both ends of a pipe; neither is inherited.
struct PipeEnds {
  explicit PipeEnds(DWORD capacity = 0) {
    HANDLE readingEnd = nullptr;
    HANDLE writingEnd = nullptr;
    if (CreatePipe(&readingEnd, &writingEnd, nullptr, capacity) == 0) {
      throw ProcessError("a pipe cannot be made: " + LastError());
    }
    reading = Handle(readingEnd);
    writing = Handle(writingEnd);
  }

  Handle reading;
  Handle writing;
};

/// A crash record in memory that a child can map too.
class SharedRecord {
 public:
  SharedRecord()
      : mapping_(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
                                    sizeof(standin::CrashRecord), nullptr)) {
    void* const memory = mapping_.IsOpen() ? MapViewOfFile(mapping_.Get(), FILE_MAP_ALL_ACCESS, 0,
                                                           0, sizeof(standin::CrashRecord))
                                           : nullptr;
    if (memory == nullptr) {
      throw ProcessError("memory cannot be shared: " + LastError());
    }
    record_ = new (memory) standin::CrashRecord;
  }
  SharedRecord(const SharedRecord&) = delete;
  SharedRecord& operator=(const SharedRecord&) = delete;
  ~SharedRecord() { UnmapViewOfFile(record_); }

  [[nodiscard]] const Handle& Mapping() const { return mapping_; }
  [[nodiscard]] const standin::CrashRecord& Get() const { return *record_; }

 private:
  Handle mapping_;
  standin::CrashRecord* record_ = nullptr;
};

}  // namespace process_parts

namespace {

using namespace process_parts;

/// A job that ends its processes by force when its last handle is closed, as it is when this
/// process ends for whatever reason.
Handle MakeJob() {
  Handle job(CreateJobObjectW(nullptr, nullptr));
  JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
  limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
  if (!job.IsOpen() || SetInformationJobObject(job.Get(), JobObjectExtendedLimitInformation,
                                               &limits, sizeof limits) == 0) {
    throw ProcessError("a job object cannot be made: " + LastError());
  }
  return job;
}

std::wstring CommandLine(const std::vector<std::string>& command) {
  std::string line;
  for (const std::string& word : command) {
    line += (line.empty() ? "" : " ") + Quoted(word);
  }
  return FilePath(line).Get().wstring();
}

/// Every process that is started inherits all inheritable handles: they are made so, and closed
/// again, under this lock, so that a child started at the same time gets none of another's.
std::mutex& StartLock() {
  static std::mutex lock;
  return lock;
}

struct Streams {
  HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
  HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
  HANDLE error = GetStdHandle(STD_ERROR_HANDLE);
};

/// Starts a program in a job. REQUIRES: StartLock is held.
Handle Start(const std::vector<std::string>& command, const Streams& streams, const Handle& job) {
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdInput = streams.input;
  startup.hStdOutput = streams.output;
  startup.hStdError = streams.error;
  std::wstring line = CommandLine(command);
  PROCESS_INFORMATION made{};
  if (CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE,
                     CREATE_NEW_PROCESS_GROUP | CREATE_SUSPENDED, nullptr, nullptr, &startup,
                     &made) == 0) {
    const DWORD error = GetLastError();
    const std::string text = command.front() + " cannot be started: error " + std::to_string(error);
    if (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND) {
      throw ProgramAbsent(text);
    }
    throw ProcessError(text);
  }
  Handle process(made.hProcess);
  const Handle thread(made.hThread);
  if (AssignProcessToJobObject(job.Get(), process.Get()) == 0) {
    const std::string reason = LastError();
    TerminateProcess(process.Get(), kKilled);
    throw ProcessError(command.front() + " cannot be put into a job object: " + reason);
  }
  ResumeThread(thread.Get());
  return process;
}

/// Bytes that a pipe has now; none, and the pipe closed, at its end.
std::size_t BytesIn(Handle& pipe) {
  DWORD count = 0;
  if (pipe.IsOpen() && PeekNamedPipe(pipe.Get(), nullptr, 0, nullptr, &count, nullptr) == 0) {
    pipe.Close();
    return 0;
  }
  return count;
}

std::size_t ReadNow(Handle& pipe, void* bytes, std::size_t size) {
  const std::size_t here = std::min({BytesIn(pipe), size, std::size_t{kLargestTransfer}});
  DWORD count = 0;
  if (here > 0 && ReadFile(pipe.Get(), bytes, static_cast<DWORD>(here), &count, nullptr) == 0) {
    pipe.Close();
    return 0;
  }
  return count;
}

std::string NumberOf(const Handle& handle) {
  return std::to_string(reinterpret_cast<std::uintptr_t>(handle.Get()));
}

}  // namespace

struct Process::Running {
  Running() = default;
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;
  ~Running() {
    if (process.IsOpen()) {
      Kill();
      WaitForSingleObject(process.Get(), INFINITE);
    }
  }

  void StartWithInputPipe(const std::vector<std::string>& command) {
    const std::scoped_lock lock(StartLock());
    PipeEnds pipe;
    pipe.reading.MakeInheritable();
    job = MakeJob();
    process = Start(command, {.input = pipe.reading.Get()}, job);
    input = std::move(pipe.writing);
  }

  void StartWithOutputPipe(const std::vector<std::string>& command) {
    const std::scoped_lock lock(StartLock());
    PipeEnds pipe;
    pipe.writing.MakeInheritable();
    job = MakeJob();
    process = Start(command, {.output = pipe.writing.Get()}, job);
    output = std::move(pipe.reading);
  }

  void StartWorker(std::vector<std::string> command) {
    const std::scoped_lock lock(StartLock());
    PipeEnds forInput;
    PipeEnds forChannel(kLargestTransfer);
    PipeEnds forOutput;
    record = std::make_unique<SharedRecord>();
    forInput.reading.MakeInheritable();
    forChannel.writing.MakeInheritable();
    forOutput.writing.MakeInheritable();
    record->Mapping().MakeInheritable();
    command.insert(command.begin() + 1,
                   "--worker=" + NumberOf(forChannel.writing) + "," + NumberOf(record->Mapping()));
    job = MakeJob();
    process = Start(command,
                    {.input = forInput.reading.Get(),
                     .output = forOutput.writing.Get(),
                     .error = forOutput.writing.Get()},
                    job);
    SetHandleInformation(record->Mapping().Get(), HANDLE_FLAG_INHERIT, 0);
    input = std::move(forInput.writing);
    channel = std::move(forChannel.reading);
    output = std::move(forOutput.reading);
  }

  void Kill() const { TerminateJobObject(job.Get(), kKilled); }

  bool HasEnded() {
    if (!process.IsOpen()) {
      return true;
    }
    if (WaitForSingleObject(process.Get(), 0) == WAIT_TIMEOUT) {
      return false;
    }
    DWORD number = 0;
    code = GetExitCodeProcess(process.Get(), &number) != 0 ? static_cast<int>(number) : kUnknownEnd;
    Kill();  // what it left behind
    process.Close();
    return true;
  }

  Handle job;
  Handle process;  ///< closed: it has ended
  int code = kUnknownEnd;
  Handle input;
  Handle channel;
  Handle output;
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
    DWORD written = 0;
    const auto part = static_cast<DWORD>(std::min<std::size_t>(size, kLargestTransfer));
    if (WriteFile(running_->input.Get(), next, part, &written, nullptr) == 0) {
      throw ProcessError("the pipe cannot be written: " + LastError());
    }
    next += written;
    size -= written;
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
  // Pipes of this kind cannot be waited for: they are looked at every millisecond.
  const auto isReady = [](const PollTarget& target) {
    Running& running = *target.process->running_;
    return BytesIn(running.output) > 0 || (target.channel && BytesIn(running.channel) > 0) ||
           (running.process.IsOpen() &&
            WaitForSingleObject(running.process.Get(), 0) != WAIT_TIMEOUT);
  };
  const auto end = std::chrono::steady_clock::now() + atMost;
  while (std::ranges::none_of(targets, isReady) && std::chrono::steady_clock::now() < end) {
    Sleep(1);
  }
}

bool Process::HasEnded() { return running_->HasEnded(); }

void Process::Kill() {
  if (running_->process.IsOpen()) {
    running_->Kill();
  }
}

void Process::CloseInput() { running_->input.Close(); }

int Process::EndCode() const { return running_->code; }

bool Process::WasCrash(int code) {
  constexpr unsigned kFirstException = 0x8000'0000;
  return code != kUnknownEnd && static_cast<unsigned>(code) >= kFirstException &&
         !WasEndedFromOutside(code);
}

bool Process::WasEndedFromOutside(int code) {
  constexpr unsigned kControlC = 0xC000'013A;
  return static_cast<unsigned>(code) == kKilled || static_cast<unsigned>(code) == kControlC;
}

std::string Process::EndText(int code) {
  if (code == kUnknownEnd) {
    return "an end that the system does not report";
  }
  if (!WasCrash(code)) {
    return code == 0 ? "" : "exit code " + std::to_string(code);
  }
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "0x%08x", static_cast<unsigned>(code));
  return "exception " + std::string(text.data());
}

}  // namespace tarvo
