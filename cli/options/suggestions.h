#pragma once

#include <span>
#include <string>
#include <vector>

namespace CLI {
class Option;
}

namespace tarvo {

/// Names the words that a shell completes an option's value with. It does not restrict the value:
/// the command may take others, or report a wrong one together with other faults.
CLI::Option* Suggest(CLI::Option* option, std::span<const char* const> words);

/// The words of Suggest, or the set that CLI::IsMember restricts the value to; empty where the
/// option has neither.
std::vector<std::string> SuggestionsOf(CLI::Option& option);

/// "a, b or c", for descriptions and messages. REQUIRES: there is a word.
std::string Alternatives(std::span<const char* const> words);

}  // namespace tarvo
