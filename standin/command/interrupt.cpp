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
}

Interrupt::~Interrupt() {
  std::signal(SIGINT, onInterrupt_);
  std::signal(SIGTERM, onTerminate_);
}

bool Interrupt::Came() const { return gCame != 0; }

}  // namespace standin
