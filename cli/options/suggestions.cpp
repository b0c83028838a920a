#include "cli/options/suggestions.h"

#include <cstddef>
#include <sstream>
#include <string_view>

#include <CLI/CLI.hpp>

#include "cli/options/validators.h"

namespace tarvo {
namespace {

/// The words of "{a,b,c}", as CLI::IsMember describes its set; none for any other text.
std::vector<std::string> WordsOfSet(const std::string& text) {
  std::vector<std::string> words;
  if (!text.starts_with('{') || !text.ends_with('}')) {
    return words;
  }
  std::istringstream inner(text.substr(1, text.size() - 2));
  for (std::string word; std::getline(inner, word, ',');) {
    words.push_back(word);
  }
  return words;
}

std::string Joined(std::span<const char* const> words, std::string_view separator) {
  std::string text;
  for (const char* word : words) {
    text.append(text.empty() ? "" : separator).append(word);
  }
  return text;
}

}  // namespace

CLI::Option* Suggest(CLI::Option* option, std::span<const char* const> words) {
  // CLI11 has no place for them: they are the name of a validator that accepts everything, because
  // --help prints the description of a validator but not its name.
  const auto accept = [](const std::string& /*value*/) { return std::string(); };
  return option->check(CLI::Validator(accept, "", '{' + Joined(words, ",") + '}'));
}

std::vector<std::string> SuggestionsOf(CLI::Option& option) {
  std::vector<std::string> words;
  for (const CLI::Validator* validator : ValidatorsOf(option)) {
    for (const std::string& text : {validator->get_name(), validator->get_description()}) {
      for (std::string& word : WordsOfSet(text)) {
        words.push_back(std::move(word));
      }
    }
  }
  return words;
}

std::string Alternatives(std::span<const char* const> words) {
  const std::string last = words.back();
  const std::string others = Joined(words.first(words.size() - 1), ", ");
  return others.empty() ? last : others + " or " + last;
}

}  // namespace tarvo
