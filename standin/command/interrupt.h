#pragma once

namespace standin {

/// While it lives, Ctrl-C, a request to terminate and a closed terminal are taken note of instead
/// of ending the program. A second one ends it as ever. One at a time.
class Interrupt {
 public:
  Interrupt();
  Interrupt(const Interrupt&) = delete;
  Interrupt& operator=(const Interrupt&) = delete;
  ~Interrupt();

  [[nodiscard]] bool Came() const;

 private:
  using Handler = void (*)(int);

  Handler onInterrupt_;
  Handler onTerminate_;
  [[maybe_unused]] Handler onHangUp_ = nullptr;  ///< where the system knows of it
};

}  // namespace standin
