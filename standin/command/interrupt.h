#pragma once

namespace standin {

/// While it lives, Ctrl-C and a request to terminate are taken note of instead of ending the
/// program. A second one ends it as ever. One at a time.
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
};

}  // namespace standin
