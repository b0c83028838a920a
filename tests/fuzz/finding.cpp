#include "tests/fuzz/finding.h"

#include <cstdlib>
#include <iostream>

namespace fuzz {

void Finding(const std::string& what) {
  std::cerr << "finding: " << what << "\n";
  std::abort();
}

}  // namespace fuzz

// Built into the programs, so that a finding is repeated by the program and the input's file alone.

extern "C" const char* __asan_default_options() {
  return "detect_stack_use_after_return=0:strict_string_checks=1:quarantine_size_mb=32";
}

/// The leak checker crashes in the thread-local storage of libraries that are loaded late.
// NOLINTNEXTLINE(readability-redundant-declaration): the sanitizer declares it, too.
extern "C" const char* __lsan_default_options() { return "intercept_tls_get_addr=0"; }

extern "C" const char* __ubsan_default_options() { return "print_stacktrace=1"; }
