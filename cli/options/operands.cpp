#include "cli/options/operands.h"

#include <algorithm>
#include <cstddef>

#include <CLI/CLI.hpp>

namespace tarvo {
namespace {

const CLI::App* FindCommand(const CLI::App& program, const std::string& name) {
  const auto found =
      program.get_subcommands([&](const CLI::App* command) { return command->get_name() == name; });
  return found.empty() ? nullptr : found.front();
}

std::size_t CountOperands(const CLI::App& command) {
  return command.get_options([](const CLI::Option* option) { return option->get_positional(); })
      .size();
}

/// True iff the next word is this one's value.
bool TakesNext(const CLI::App& command, const std::string& word) {
  const CLI::Option* option = word.starts_with('-') ? command.get_option_no_throw(word) : nullptr;
  return option != nullptr && option->get_items_expected_max() > 0;
}

std::string AsOperand(const CLI::App& program, const std::string& name) {
  return name.starts_with('-') || FindCommand(program, name) != nullptr ? "./" + name : name;
}

}  // namespace

std::vector<std::string> ProtectOperandsAfterDashes(const CLI::App& program,
                                                    std::vector<std::string> words) {
  constexpr std::size_t kAfterCommand = 1;
  const CLI::App* command = words.size() > kAfterCommand ? FindCommand(program, words[0]) : nullptr;
  if (command == nullptr) {
    return words;
  }
  std::size_t needed = CountOperands(*command);
  std::size_t place = kAfterCommand;
  for (; place < words.size() && words[place] != "--"; ++place) {
    if (TakesNext(*command, words[place])) {
      ++place;
    } else if (!words[place].starts_with('-') && needed > 0) {
      --needed;
    }
  }
  if (place >= words.size()) {
    return words;
  }
  words.erase(words.begin() + static_cast<std::ptrdiff_t>(place));
  for (; needed > 0 && place < words.size(); --needed, ++place) {
    words[place] = AsOperand(program, words[place]);
  }
  return words;
}

}  // namespace tarvo
