#pragma once

#include <string>

#include "cli/manual/command_entry.h"

namespace tarvo {

/// A text as roff prints it: no character of it is taken for a request, an escape or a typographic
/// hyphen or quotation mark.
std::string RoffText(const std::string& text);

/// The manual page of the program itself, in roff with the macros "man".
std::string ProgramPage(const CommandEntry& program, const std::string& version);

/// The manual page PROGRAM-COMMAND of one of its commands.
std::string CommandPage(const CommandEntry& program, const CommandEntry& command,
                        const std::string& version);

}  // namespace tarvo
