#include "cli/process/worker.h"

#include <algorithm>
#include <array>
#include <iostream>
#include <iterator>
#include <mutex>
#include <ostream>
#include <sstream>
#include <string_view>
#include <utility>

#include "base/files/escaped_text.h"
#include "cli/process/system.h"

namespace tarvo {
namespace {

constexpr std::size_t kOutputChunk = 1U << 16U;

using Clock = std::chrono::steady_clock;

/// How long this thread was blocked in writes to the console, which blocks its workers too.
thread_local Clock::duration tWriting{};
/// The same of reading what workers print and send, and making lines of it.
thread_local Clock::duration tPassing{};

/// Writes to the console, which workers of several threads share.
template <typename Write>
void WriteInTurn(Write write) {
  static std::mutex turn;
  const Clock::time_point start = Clock::now();
  {
    const std::scoped_lock lock(turn);
    write();
  }
  tWriting += Clock::now() - start;
}

/// "signal 11" of "signal 11 (Segmentation fault)".
std::string ShortEndText(int code) {
  const std::string text = Process::EndText(code);
  return text.empty() ? "exit code 0" : text.substr(0, text.find(" ("));
}

}  // namespace

Worker::Worker(const std::vector<std::string>& words, std::string name, TimeLimit limit,
               const Console& console)
    : name_(std::move(name)),
      limit_(limit),
      console_(&console),
      process_(words, Process::Pipe::kWorker),
      writing_(tWriting),
      passing_(tPassing) {}

void Worker::SendJob(std::string_view job) {
  try {
    process_.Write(job.data(), job.size());
  } catch (const ProcessError&) {  // it has ended, and its exit code says why
  }
  process_.CloseInput();
}

std::string ReadJob() { return {std::istreambuf_iterator<char>(std::cin), {}}; }

std::vector<std::string> OwnCommandLine(const Console& console) {
  std::vector<std::string> words = console.words;
  words.insert(words.begin(), ThisProgram().string());
  return words;
}

void Worker::Pump() {
  constexpr std::size_t kMostAfterEnd = 1U << 24U;  // what escaped may print on and on
  const Clock::time_point start = Clock::now();
  const Clock::duration writing = tWriting;
  const bool hasEnded = process_.HasEnded();
  ForwardOutput(hasEnded ? kMostAfterEnd : kOutputChunk);
  const bool areAllRead = ReadMessages();
  tPassing += Clock::now() - start - (tWriting - writing);
  if (!hasEnded) {
    WatchTime();
  } else if (areAllRead && !message_) {
    ForwardLines(true);
    isOver_ = true;
  }
}

Message Worker::Take() { return std::exchange(message_, std::nullopt).value(); }

void Worker::Refuse(const std::string& damage) {
  if (damage_.empty()) {
    damage_ = damage;
  }
  message_.reset();
  process_.Kill();
}

WorkerEnd Worker::End() const {
  return {.announcedExitCode = announcedExitCode_,
          .code = process_.EndCode(),
          .timedOut = timedOut_,
          .damage = damage_,
          .ranOutOfMemory = process_.Record().ranOutOfMemory,
          .place = standin::PlaceText(process_.Record()),
          .hostCall = standin::HostCallText(process_.Record())};
}

void Worker::AwaitAny(const std::vector<Worker*>& workers) {
  constexpr std::chrono::milliseconds kLook(50);
  std::vector<Process::PollTarget> targets;
  for (Worker* worker : workers) {
    if (!worker->IsOver()) {
      targets.push_back({&worker->process_, !worker->HasMessage() && worker->damage_.empty()});
    }
  }
  if (!targets.empty()) {
    Process::AwaitAny(targets, kLook);
  }
}

void Worker::ForwardOutput(std::size_t most) {
  std::array<char, kOutputChunk> part{};
  std::size_t passed = 0;
  while (passed < most) {
    const std::size_t count = process_.ReadOutput(part.data(), part.size());
    if (count == 0) {
      return;
    }
    printed_.append(part.data(), count);
    passed += count;
    ForwardLines(false);
  }
}

/// A printed line as it is forwarded.
std::string Worker::Marked(std::string line) const {
  if (line.ends_with('\r')) {
    line.pop_back();
  }
  return name_ + ": " + ForTerminal(line) + "\n";
}

void Worker::ForwardLines(bool isLast) {
  std::string text;
  std::size_t at = 0;
  for (std::size_t end = printed_.find('\n'); end != std::string::npos;
       end = printed_.find('\n', at)) {
    text += Marked(printed_.substr(at, end - at));
    at = end + 1;
  }
  printed_.erase(0, at);
  if (!printed_.empty() && (isLast || printed_.size() >= kOutputChunk)) {
    text += Marked(std::exchange(printed_, {}));
  }
  if (!text.empty()) {
    WriteInTurn([&] { console_->err << text << std::flush; });
  }
}

/// True iff no more have come. A few at a time: a plug-in that hangs and is traced may send texts
/// on and on.
bool Worker::ReadMessages() {
  constexpr int kFewMessages = 64;
  try {
    for (int i = 0; i < kFewMessages && !message_ && damage_.empty(); ++i) {
      std::optional<Message> message = reader_.Next(
          [this](void* bytes, std::size_t size) { return process_.ReadChannel(bytes, size); });
      if (!message) {
        return true;
      }
      TakeIn(*std::move(message));
    }
  } catch (const MessageError& error) {
    Refuse(error.what());
  }
  return !damage_.empty();
}

void Worker::TakeIn(Message message) {
  if (announcedExitCode_) {
    throw MessageError("a message after the last one");
  }
  switch (message.kind) {
    case MessageKind::kOutput:
      WriteInTurn([&] { console_->out << message.bytes; });
      return;
    case MessageKind::kError:
      WriteInTurn([&] { console_->err << message.bytes << std::flush; });
      return;
    case MessageKind::kEnd:
      announcedExitCode_ = ExitCodeFrom(message);
      since_ = Clock::now();
      return;
    default:
      message_ = std::move(message);
  }
}

/// What of the time since the last look does not count because this process was at work, for which
/// a plug-in that prints much is blocked. Limited, or one that never stops printing would never
/// time out.
Worker::Clock::duration Worker::OwnWork() {
  constexpr double kMostOfLimit = 3;
  const auto most = std::chrono::duration_cast<Clock::duration>(
      std::chrono::duration<double>(kMostOfLimit * limit_.seconds));
  const Clock::duration work = std::min(tPassing - passing_, most - ownWork_);
  ownWork_ += work;
  return work;
}

void Worker::WatchTime() {
  constexpr std::chrono::milliseconds kUsualAbsence(100);
  const Clock::time_point now = Clock::now();
  // The reader of this program's output may block it, once or repeatedly, and the plug-in
  // with it.
  const Clock::duration absence = now - watched_;
  since_ += absence > kUsualAbsence ? absence : tWriting - writing_ + OwnWork();
  watched_ = now;
  writing_ = tWriting;
  passing_ = tPassing;
  const standin::CrashRecord& record = process_.Record();
  const bool isOfProcess = limit_.of == TimeLimit::Of::kProcess;
  if (const std::uint64_t changes = record.changes; changes != changes_ && !isOfProcess) {
    changes_ = changes;
    since_ = now;
    ownWork_ = {};
  }
  // Between two commands the stand-in itself is running, or its parent has not read yet.
  const bool isWatched = isOfProcess || record.depth > 0 || announcedExitCode_;
  const std::chrono::duration<double> spent = now - since_;
  if (isWatched && !timedOut_ && spent.count() > limit_.seconds) {
    timedOut_ = true;
    process_.Kill();
  }
}

std::string SecondsText(double seconds) {
  std::ostringstream text;
  text << seconds << " s";
  return text.str();
}

std::optional<CommandExit> FailureOf(const WorkerEnd& end, const TimeLimit& limit) {
  if (end.IsGood()) {
    return std::nullopt;
  }
  const std::string details = " (" + ShortEndText(end.code) + "); " + end.hostCall;
  if (end.ranOutOfMemory && !end.announcedExitCode) {
    return CommandExit(kCannotRun, {"tarvo: out of memory " + end.place});
  }
  if (!end.damage.empty()) {
    return CommandExit(kPluginFault, {"the channel from the plug-in's process was damaged " +
                                      end.place + " (" + end.damage + "); " + end.hostCall});
  }
  if (end.timedOut) {
    return CommandExit(kPluginFault, {"the plug-in hung " + end.place + " (no end within " +
                                      SecondsText(limit.seconds) + "); " + end.hostCall +
                                      "; --time-limit sets what a command may take"});
  }
  if (end.announcedExitCode && *end.announcedExitCode == end.code) {
    return CommandExit(end.code, {});
  }
  if (Process::WasCrash(end.code)) {
    return CommandExit(kPluginFault, {"the plug-in crashed " + end.place + details});
  }
  if (Process::WasEndedFromOutside(end.code) || end.code == Process::kUnknownEnd) {
    return CommandExit(kIncomplete, {"the process that runs the plug-in was ended from outside, " +
                                     end.place + details});
  }
  return CommandExit(kPluginFault, {"the plug-in ended the program " + end.place + details});
}

}  // namespace tarvo
