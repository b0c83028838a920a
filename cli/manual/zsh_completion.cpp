#include <string_view>

#include "cli/manual/completion.h"

namespace tarvo {
namespace {

/// A text inside an argument of _arguments, where these characters end a part.
std::string InArgument(const std::string& text) {
  std::string escaped;
  for (const char character : text) {
    if (std::string_view(R"([]:\)").find(character) != std::string_view::npos) {
      escaped += '\\';
    }
    escaped += character;
  }
  return escaped;
}

std::string ZshAction(const OptionEntry& option) {
  return ':' + InArgument(option.value) + ':' +
         (option.suggestions.empty() ? "_files" : '(' + Join(option.suggestions, " ") + ')');
}

/// The options that must not be offered any more once this one is given: itself by all its names,
/// unless it can be repeated, and those that it excludes.
std::string Exclusions(const OptionEntry& option) {
  std::vector<std::string> names = option.excludes;
  if (!option.canRepeat) {
    names.insert(names.end(), option.names.begin(), option.names.end());
  }
  const std::string excluded = names.empty() ? "" : '(' + Join(names, " ") + ')';
  return option.canRepeat ? excluded + '*' : excluded;
}

/// A value may follow in the next word or in the same one: behind "=" where the name is long.
std::string NameWithMark(const OptionEntry& option, const std::string& name) {
  if (option.value.empty()) {
    return name;
  }
  return name + (name.starts_with("--") ? "=" : "+");
}

std::string ZshOptions(const CommandEntry& command) {
  std::string text;
  for (const OptionEntry& option : NamedOptions(command)) {
    for (const std::string& name : option.names) {
      text += " \\\n    " + ShellWord(Exclusions(option) + NameWithMark(option, name) + '[' +
                                      InArgument(option.description) + ']' +
                                      (option.value.empty() ? "" : ZshAction(option)));
    }
  }
  return text;
}

std::string CommandFunction(const CommandEntry& command) {
  std::string text = "_tarvo_" + command.name + "() {\n  _arguments" + ZshOptions(command);
  int place = 0;
  for (const OptionEntry& operand : Operands(command)) {
    text += " \\\n    " + ShellWord(std::to_string(++place) + ZshAction(operand));
  }
  return text + "\n}\n\n";
}

std::string ProgramFunction(const CommandEntry& program) {
  std::string text =
      "_tarvo() {\n  local curcontext=$curcontext state line\n  local -A opt_args\n  local -a "
      "commands=(";
  for (const CommandEntry& command : program.commands) {
    text += "\n    " + ShellWord(command.name + ':' + command.description);
  }
  return text + "\n  )\n  _arguments -C" + ZshOptions(program) +
         " \\\n    '1:command:->command' '*::argument:->argument'\n"
         "  case $state in\n"
         "    command) _describe command commands ;;\n"
         "    argument) (( $+functions[_tarvo_$words[1]] )) && _tarvo_$words[1] ;;\n"
         "  esac\n"
         "}\n\n";
}

}  // namespace

std::string ZshCompletion(const CommandEntry& program) {
  std::string text = "#compdef " + program.name + "\n# Completion of the words after " +
                     program.name + ", for zsh.\n\n";
  for (const CommandEntry& command : program.commands) {
    text += CommandFunction(command);
  }
  return text + ProgramFunction(program) + "_tarvo \"$@\"\n";
}

}  // namespace tarvo
