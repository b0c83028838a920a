#include <iostream>
#include <string>
#include <vector>

#include "standin/command/command.h"
#include "standin/command/system.h"

// What is thrown here is no memory for a few words: nothing is left but to end.
// NOLINTNEXTLINE(bugprone-exception-escape)
int main(int argc, char** argv) {
  const std::vector<std::string> words = standin::CommandLineWords(argc, argv);
  std::vector<const char*> pointers;
  pointers.reserve(words.size());
  for (const std::string& word : words) {
    pointers.push_back(word.c_str());
  }
  return standin::RunTarvo(static_cast<int>(pointers.size()), pointers.data(),
                           {std::cout, std::cerr});
}
