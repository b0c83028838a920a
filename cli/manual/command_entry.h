#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace tarvo {

/// One option or operand of a command, as --help describes it.
struct OptionEntry {
  std::vector<std::string> names;  ///< with their dashes, short ones first; empty: only an operand
  bool isOperand = false;          ///< it can be given without a name
  bool isRequired = false;
  bool canRepeat = false;                ///< it can be given several times
  std::string value;                     ///< the placeholder of its value; empty: it takes none
  std::vector<std::string> suggestions;  ///< values to complete; empty: names of files
  std::string limits;                    ///< of the value, in the words of its validators
  std::string standardValue;             ///< where --help names it
  std::vector<std::string> excludes;     ///< names of the options that it cannot be combined with
  std::string description;
};

/// A program or one of its commands, as --help describes it.
struct CommandEntry {
  std::string name;
  std::string description;
  std::string notes;  ///< the text below the options
  std::vector<OptionEntry> options;
  std::vector<CommandEntry> commands;
};

/// Reads what CLI11 keeps of a program, from which --help is made, too.
CommandEntry ReadEntry(CLI::App& program);

/// Those of a command's options that have a name.
std::vector<OptionEntry> NamedOptions(const CommandEntry& command);

/// Those of a command's options that can be given without a name, in their order.
std::vector<OptionEntry> Operands(const CommandEntry& command);

/// Texts one after another, with `separator` between them.
std::string Join(const std::vector<std::string>& texts, const std::string& separator);

}  // namespace tarvo
