#pragma once

namespace tarvo {

/// While one exists, Ctrl-C, a request to terminate and a closed terminal are noted instead of
/// ending the program. A second one ends it. They can be nested: an inner one changes nothing.
class Interrupt {
 public:
  Interrupt();
  Interrupt(const Interrupt&) = delete;
  Interrupt& operator=(const Interrupt&) = delete;
  ~Interrupt();

  [[nodiscard]] bool Came() const { return Pending(); }
  /// The same, for code that has none at hand; false while none exists.
  [[nodiscard]] static bool Pending();
};

/// From now on an interrupt that is not noted removes the temporary files (temporary_files.h)
/// before it ends the program. Signals that the caller of this program ignores remain ignored.
void RemoveTemporaryFilesOnInterrupt();

}  // namespace tarvo
