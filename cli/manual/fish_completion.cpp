#include "cli/manual/completion.h"

namespace tarvo {
namespace {

std::string FishNames(const OptionEntry& option) {
  std::string text;
  for (const std::string& name : option.names) {
    text += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
  }
  return text;
}

std::string FishValue(const OptionEntry& option) {
  if (option.value.empty()) {
    return "";
  }
  return option.suggestions.empty() ? " -r"  // a value follows: a name of a file
                                    : " -x -a " + FishWord(Join(option.suggestions, " "));
}

std::string FishLines(const CommandEntry& command, const std::string& begin) {
  std::string text;
  for (const OptionEntry& option : NamedOptions(command)) {
    text += begin + FishNames(option) + FishValue(option) + " -d " + FishWord(option.description) +
            '\n';
  }
  return text;
}

}  // namespace

std::string FishCompletion(const CommandEntry& program) {
  const std::string begin = "complete -c " + program.name + " -n ";
  std::string text = "# Completion of the words after " + program.name + ", for fish.\n\n";
  text += FishLines(program, begin + "__fish_use_subcommand");
  for (const CommandEntry& command : program.commands) {
    text += begin + "__fish_use_subcommand -f -a " + command.name + " -d " +
            FishWord(command.description) + '\n';
  }
  for (const CommandEntry& command : program.commands) {
    text +=
        '\n' + FishLines(command, begin + FishWord("__fish_seen_subcommand_from " + command.name));
  }
  return text;
}

}  // namespace tarvo
