#pragma once

#include <string>

namespace fuzz {

/// Ends the program: the input under way is a finding. The fuzzer writes it to a file.
[[noreturn]] void Finding(const std::string& what);

}  // namespace fuzz
