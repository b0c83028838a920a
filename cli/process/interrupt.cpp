#include "cli/process/interrupt.h"

#include <array>
#include <csignal>
#include <cstddef>

#include "base/files/temporary_files.h"
#include "cli/process/console.h"
#include "cli/process/system.h"

namespace tarvo {
namespace {

using Handler = void (*)(int);

constexpr std::array kNoted = {
    SIGINT,
    SIGTERM,
#ifdef SIGHUP  // the terminal was closed
    SIGHUP,
#endif
};

volatile std::sig_atomic_t gCame = 0;
int gInterrupts = 0;  // objects that exist
std::array<Handler, kNoted.size()> gBefore{};

void EndCleanly(int signal) {
  RemoveTemporaryFiles();
  EndBySignal(signal);
}

/// What was there before. A signal that is ignored, as the caller may have wanted, remains so.
Handler SetHandler(int signal, Handler handler) {
  const Handler before = std::signal(signal, handler);
  if (before == SIG_IGN) {
    std::signal(signal, SIG_IGN);
  }
  return before;
}

void TakeNote(int signal) {
  std::signal(signal, EndCleanly);  // a second one
  gCame = 1;
}

}  // namespace

Interrupt::Interrupt() {
  if (gInterrupts++ > 0) {
    return;
  }
  gCame = 0;
  for (std::size_t i = 0; i < kNoted.size(); ++i) {
    gBefore[i] = SetHandler(kNoted[i], TakeNote);
  }
}

Interrupt::~Interrupt() {
  if (--gInterrupts > 0) {
    return;
  }
  for (std::size_t i = 0; i < kNoted.size(); ++i) {
    std::signal(kNoted[i], gBefore[i]);
  }
  gCame = 0;
}

bool Interrupt::Pending() { return gCame != 0; }

void RemoveTemporaryFilesOnInterrupt() {
  for (const int signal : kNoted) {
    SetHandler(signal, EndCleanly);
  }
#ifdef SIGBREAK  // Ctrl-Break, and a closed console, after which the system ends this program
  SetHandler(SIGBREAK, EndCleanly);
#endif
}

}  // namespace tarvo
