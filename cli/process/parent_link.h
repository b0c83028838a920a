#pragma once

#include <cstddef>
#include <memory>
#include <string>

namespace tarvo {

/// The connection of a worker to the process that started it (Process::Pipe::kWorker): a channel of
/// its own for messages, separate from standard output, to which the plug-in may print; and memory
/// that still shows where the plug-in was after a crash.
class ParentLink {
 public:
  /// How the argument that Process adds to a worker's command line begins.
  static constexpr const char* kArgument = "--worker=";

  /// Connects, from what follows kArgument, and directs the notes of crash_record.h to the parent.
  /// Throws ProcessError when this process is no worker.
  explicit ParentLink(const std::string& handles);
  ParentLink(const ParentLink&) = delete;
  ParentLink& operator=(const ParentLink&) = delete;
  ~ParentLink();

  /// Throws ProcessError when the parent reads no more.
  void Write(const void* bytes, std::size_t size);

 private:
  struct Handles;

  std::unique_ptr<Handles> handles_;
};

/// Two numbers as Process writes them. Throws ProcessError for any other text.
struct LinkNumbers {
  explicit LinkNumbers(const std::string& text);

  unsigned long long channel = 0;
  unsigned long long record = 0;
};

}  // namespace tarvo
