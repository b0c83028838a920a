#pragma once

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace standin {

/// A program that could not be started or written to.
class ProcessError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// There is no program of that name.
class ProgramAbsent : public ProcessError {
 public:
  using ProcessError::ProcessError;
};

/// A program that runs beside this one, with a pipe to its input or from its output; its other
/// streams are this program's. Ctrl-C does not reach it: who started it decides.
class Process {
 public:
  enum class Pipe { kToInput, kFromOutput };

  /// Starts a program, by its path or a name that the system looks for. Throws ProgramAbsent or
  /// ProcessError.
  Process(const std::vector<std::string>& command, Pipe pipe);
  Process(Process&&) noexcept;
  Process& operator=(Process&&) = delete;
  /// Ends it by force if nobody waited for it.
  ~Process();

  /// Throws ProcessError when the program reads no more.
  void Write(const void* bytes, std::size_t size);
  /// Fills the memory; false when the output ends before.
  bool Read(void* bytes, std::size_t size);
  /// Everything that is left of the output.
  std::string ReadAll();
  /// Ends it by force, from any thread; somebody still has to wait for it. Not during Wait.
  void Kill();
  /// Closes the pipe, and waits for the program's exit code; of one that was ended by a signal, 128
  /// and the signal's number.
  int Wait();
  /// How a program ended, by what Wait said: "signal 11 (Segmentation fault)", "exit code 3", "".
  static std::string EndText(int code);

 private:
  struct Running;  // what the system knows it by

  /// Waits for some output; 0 at its end.
  std::size_t ReadSome(void* bytes, std::size_t size);

  std::unique_ptr<Running> running_;
};

}  // namespace standin
