#include <cstdlib>
#include <string>

#include "base/files/file_path.h"
#include "tests/cli/shell.h"

int RunInShell(const std::string& line) {
  // The shell takes the outermost quotes away. A path turns UTF-8 into the system's wide letters.
  return _wsystem(tarvo::FilePath("\"" + line + "\"").Get().c_str());
}

std::string TextOf(std::string printed) {
  std::erase(printed, '\r');
  return printed;
}
