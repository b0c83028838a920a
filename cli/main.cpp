#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <new>
#include <string>
#include <vector>

#include "base/files/temporary_files.h"
#include "cli/command.h"
#include "cli/process/system.h"
#include "standin/core/crash_record.h"

namespace {

constexpr const char* kOutOfMemory = "tarvo: out of memory\n";

/// The JSON library takes memory in the destructor of a value, which nothing may leave: where there
/// is none the program ends at once, and still says so.
[[noreturn]] void SayOutOfMemory() {
  try {
    if (const std::exception_ptr current = std::current_exception()) {
      std::rethrow_exception(current);
    }
  } catch (const std::bad_alloc&) {
    standin::NoteOutOfMemory();
    standin::RemoveTemporaryFiles();
    std::fputs(kOutOfMemory, stderr);
    std::_Exit(standin::kCannotRun);
  } catch (...) {  // a crash like any other
  }
  std::abort();
}

}  // namespace

int main(int argc, char** argv) {
  std::set_terminate(SayOutOfMemory);
  standin::PrepareProcess();
  try {
    const std::vector<std::string> words = standin::CommandLineWords(argc, argv);
    std::vector<const char*> pointers;
    pointers.reserve(words.size());
    for (const std::string& word : words) {
      pointers.push_back(word.c_str());
    }
    return standin::RunTarvo(static_cast<int>(pointers.size()), pointers.data(),
                             {std::cout, std::cerr});
  } catch (const std::exception&) {  // no memory even to say what is wrong
    std::fputs(kOutOfMemory, stderr);
    return standin::kCannotRun;
  }
}
