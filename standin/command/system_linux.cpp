#include <algorithm>
#include <cctype>
#include <string_view>

#include <unistd.h>

#include "standin/command/system.h"

namespace standin {

const char* const kPluginFile = "Tarvo_overlaps_manager.so";

std::vector<std::string> CommandLineWords(int argc, const char* const* argv) {
  return {argv, argv + argc};
}

std::filesystem::path ThisProgram() { return std::filesystem::read_symlink("/proc/self/exe"); }

bool ErrorIsTerminal() { return isatty(STDERR_FILENO) != 0; }

void EndAtOnceOnCrash() {}  // it always does

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

}  // namespace standin
