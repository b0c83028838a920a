#pragma once

#include <functional>
#include <string>
#include <vector>

#include "cli/process/console.h"

/// \file
/// What the programs of this folder's parent have in common, from `main` to their commands.

namespace tarvo {

/// What a program does once its process is prepared: reads the arguments; returns the exit code.
using Run = int (*)(const Console& console);

/// All of a program's `main`: runs it for the user, or as a worker (worker.h) of another process,
/// with which its console is connected then. Returns the exit code.
int RunProgram(int argc, const char* const* argv, Run run);

/// Does some work; writes what it throws to the console's `err`, and returns the exit code for it.
int Try(const std::function<void()>& work, const Console& console);

/// Says why a command failed: at most kMostFaultLines lines, and how many more there are. Names in
/// them come from files: no control character reaches the terminal. Returns `code`.
int Fail(const Console& console, int code, const std::vector<std::string>& lines);

}  // namespace tarvo
