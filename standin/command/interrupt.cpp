#include "standin/command/interrupt.h"

#include <csignal>

namespace standin {
namespace {

volatile std::sig_atomic_t gCame = 0;

void TakeNote(int signal) {
  std::signal(signal, SIG_DFL);
  gCame = 1;
}

}  // namespace

Interrupt::Interrupt() {
  gCame = 0;
  onInterrupt_ = std::signal(SIGINT, TakeNote);
  onTerminate_ = std::signal(SIGTERM, TakeNote);
#ifdef SIGHUP  // the terminal was closed
  onHangUp_ = std::signal(SIGHUP, TakeNote);
#endif
}

Interrupt::~Interrupt() {
  std::signal(SIGINT, onInterrupt_);
  std::signal(SIGTERM, onTerminate_);
#ifdef SIGHUP
  std::signal(SIGHUP, onHangUp_);
#endif
}

bool Interrupt::Came() const { return gCame != 0; }

}  // namespace standin
