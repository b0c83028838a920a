#pragma once

#include <iosfwd>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace tarvo {

class MessageWriter;

/// What the program ends with.
enum ExitCode : int {
  kMade = 0,
  kDifferent = 1,      ///< two pictures are not the same
  kNotConformant = 1,  ///< a build of the plug-in failed a check
  kWrongInput = 2,     ///< a file, a scene or an option is wrong
  kPluginFault = 3,    ///< the plug-in returned an error, broke a rule, crashed or hung
  kCannotRun = 4,      ///< the library cannot be loaded, or this machine cannot run it
  kOutputLost = 4,     ///< standard output cannot be written
  kIncomplete = 5,     ///< a part of what was asked for is missing at the end
  kInterrupted = 130,
};

/// Ends a command with this exit code; `lines` go to standard error. Also of a command that has
/// done its work: its result may be a code other than 0.
class CommandExit : public std::runtime_error {
 public:
  CommandExit(int exitCode, std::vector<std::string> lines)
      : std::runtime_error(lines.empty() ? "" : lines.front()),
        code_(exitCode),
        lines_(std::move(lines)) {}

  [[nodiscard]] int Code() const { return code_; }
  [[nodiscard]] const std::vector<std::string>& Lines() const { return lines_; }

 private:
  int code_;
  std::vector<std::string> lines_;
};

/// Where a command writes: its results to `out`, everything else to `err`.
struct Console {
  std::ostream& out;
  std::ostream& err;
  /// In a worker (worker.h): the way to the process that started it; null otherwise.
  MessageWriter* channel = nullptr;
  /// The command line, less the program's name.
  std::vector<std::string> words = {};
};

/// Writes a result to `out`, and falls back to `err` where `out` cannot be written, so that the
/// result is not lost.
void PrintResult(const Console& console, const std::string& text);

}  // namespace tarvo
