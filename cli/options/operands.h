#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace tarvo {

/// Removes the "--" of a command line, less the program's name. The operands after it, names of
/// files and as many as the command still needs, get "./" in front where they could be read as an
/// option or a command; the words after those are options again. Other command lines are returned
/// unchanged.
std::vector<std::string> ProtectOperandsAfterDashes(const CLI::App& program,
                                                    std::vector<std::string> words);

}  // namespace tarvo
