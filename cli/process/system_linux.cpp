#include <algorithm>
#include <cctype>
#include <csignal>
#include <string_view>

#include <fcntl.h>
#include <unistd.h>

#include "cli/process/system.h"

namespace tarvo {

const char* const kPluginFile = "Tarvo_overlaps_manager.so";

std::vector<std::string> CommandLineWords(int argc, const char* const* argv) {
  return {argv, argv + argc};
}

std::filesystem::path ThisProgram() { return std::filesystem::read_symlink("/proc/self/exe"); }

bool ErrorIsTerminal() { return isatty(STDERR_FILENO) != 0; }

void PrepareProcess() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(stream, F_GETFD) < 0) {
      // The wrong way round, so that using it fails as it would have.
      open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
  }
  std::signal(SIGXFSZ, SIG_IGN);
  std::signal(SIGPIPE, SIG_IGN);  // a write to a pipe without a reader fails instead
  std::signal(SIGCHLD, SIG_DFL);  // where it is ignored, exit codes are lost
}

void EndAtOnceOnCrash() {}  // it always does

void EndBySignal(int signal) {
  std::signal(signal, SIG_DFL);
  std::raise(signal);  // takes effect when the handler returns
}

void MakeOutputBinary() {}  // it always is

std::string Quoted(const std::string& word) {
  constexpr std::string_view kHarmless = "%+,-./:=@_";
  const bool isPlain = std::ranges::all_of(word, [&](unsigned char letter) {
    return std::isalnum(letter) != 0 || kHarmless.find(static_cast<char>(letter)) != kHarmless.npos;
  });
  if (isPlain && !word.empty()) {
    return word;
  }
  std::string quoted = "'";
  for (const char letter : word) {
    quoted += letter == '\'' ? R"('\'')" : std::string(1, letter);
  }
  return quoted + "'";
}

}  // namespace tarvo
