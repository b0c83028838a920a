#pragma once

#include <functional>
#include <iosfwd>

#include <CLI/CLI.hpp>

namespace standin {

/// What the program ends with.
enum ExitCode : int {
  kMade = 0,
  kWrongInput = 2,   ///< a file, a scene or an option is wrong
  kPluginFault = 3,  ///< the plug-in returned an error or broke a rule
  kNotLoaded = 4,    ///< the library cannot be loaded, or there is no OpenGL to run it with
};

/// Where a command writes: what was made to `out`, everything else to `err`.
struct Console {
  std::ostream& out;
  std::ostream& err;
};

/// What a command does once its options are read. Throws InputError, PluginError or PluginLoadError
/// having written nothing to `out` and left no file.
using Work = std::function<void(const Console&)>;

/// Adds a command with its options to the program; parsing a command line that names the command
/// sets `chosen`.
using AddCommand = void (*)(CLI::App& program, Work& chosen);

/// `tarvo render`: a scene file into a picture.
void AddRender(CLI::App& program, Work& chosen);

/// Runs the program and returns its exit code.
int RunTarvo(int argc, const char* const* argv, const Console& console);

}  // namespace standin
