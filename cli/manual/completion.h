#pragma once

#include <string>

#include "cli/manual/command_entry.h"

namespace tarvo {

/// A completion script for a shell, each complete in itself: commands, options, the values of
/// options that have suggestions, and names of files for all other words.
std::string BashCompletion(const CommandEntry& program);
std::string ZshCompletion(const CommandEntry& program);
std::string FishCompletion(const CommandEntry& program);

/// A text as one word of sh, bash and zsh.
std::string ShellWord(const std::string& text);

/// A text as one word of fish, which takes a backslash between quotation marks for an escape.
std::string FishWord(const std::string& text);

}  // namespace tarvo
