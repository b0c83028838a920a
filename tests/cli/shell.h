#pragma once

#include <string>

/// Runs a command line in the system's shell and returns the exit code of the last command.
int RunInShell(const std::string& line);

/// What a program printed, with its lines ended by a line feed alone.
std::string TextOf(std::string printed);
