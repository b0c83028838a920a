#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace tarvo {

/// A command line, less the program's name, in which "--" was given, as it is parsed without: the
/// arguments behind it are names of files, whatever they begin with, as many as the command still
/// needs; what follows them is read as options again. Such a name gets "./" before it where it
/// would be taken for something else. Any other command line stays as it is.
std::vector<std::string> WithNamesMarked(const CLI::App& program, std::vector<std::string> words);

}  // namespace tarvo
