#include <algorithm>
#include <iterator>

#include "cli/manual/completion.h"

namespace tarvo {
namespace {

/// Finds the command and the option whose value is being typed, and then completes from the tables.
/// Bash splits --option=value at the sign, which becomes a word of its own.
constexpr const char* kBashFunction = R"(
_tarvo() {
  local current=${COMP_WORDS[COMP_CWORD]} option=${COMP_WORDS[COMP_CWORD - 1]} command= word words=
  if [[ $current == = ]]; then
    current=
  elif [[ $option == = ]]; then
    option=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    if [[ " $(_tarvo_options '') " == *" $word "* && $word != -* ]]; then
      command=$word
      break
    fi
  done
  COMPREPLY=()
  if ! words=$(_tarvo_values "$command $option"); then
    [[ $current == -* || -z $command ]] || return 0
    words=$(_tarvo_options "$command")
  fi
  [[ -n $words ]] || return 0
  compopt +o default 2>/dev/null
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}

complete -o default -F _tarvo tarvo
)";

std::string CaseOfWords(const std::string& pattern, const std::vector<std::string>& words) {
  return "    " + pattern + ") echo " + ShellWord(Join(words, " ")) + " ;;\n";
}

std::string OptionCase(const CommandEntry& command, const std::string& name) {
  std::vector<std::string> words;
  for (const CommandEntry& inner : command.commands) {
    words.push_back(inner.name);
  }
  for (const OptionEntry& option : NamedOptions(command)) {
    words.insert(words.end(), option.names.begin(), option.names.end());
  }
  return CaseOfWords(ShellWord(name), words);
}

std::string ValueCases(const CommandEntry& command) {
  std::string text;
  for (const OptionEntry& option : NamedOptions(command)) {
    if (option.value.empty()) {
      continue;
    }
    std::vector<std::string> patterns;
    std::ranges::transform(
        option.names, std::back_inserter(patterns),
        [&](const std::string& name) { return ShellWord(command.name + ' ' + name); });
    text += CaseOfWords(Join(patterns, " | "), option.suggestions);
  }
  return text;
}

}  // namespace

std::string BashCompletion(const CommandEntry& program) {
  std::string text = "# Completion of the words after " + program.name +
                     ", for bash.\n\n"
                     "# What may follow a command; an empty name: what may follow the program.\n"
                     "_tarvo_options() {\n  case $1 in\n" +
                     OptionCase(program, "");
  for (const CommandEntry& command : program.commands) {
    text += OptionCase(command, command.name);
  }
  text +=
      "  esac\n}\n\n"
      "# The values of an option, none for names of files; fails where no value follows.\n"
      "_tarvo_values() {\n  case $1 in\n";
  for (const CommandEntry& command : program.commands) {
    text += ValueCases(command);
  }
  return text + "    *) return 1 ;;\n  esac\n}\n" + kBashFunction;
}

}  // namespace tarvo
