#include <cstdlib>

#include <sys/wait.h>

#include "tests/cli/shell.h"

int RunInShell(const std::string& line) {
  return WEXITSTATUS(std::system(line.c_str()));  // NOLINT(cert-env33-c): the command is the test
}

std::string TextOf(std::string printed) { return printed; }
