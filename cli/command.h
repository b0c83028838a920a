#pragma once

#include <functional>

#include "cli/process/console.h"

namespace CLI {
class App;
}

namespace tarvo {

/// What a command does once its options are read. Throws InputError, PluginError, PluginLoadError
/// or CommandExit, having left no incomplete file.
using Work = std::function<void(const Console&)>;

/// Adds a command with its options to the program; parsing a command line that names the command
/// sets `chosen`.
using AddCommand = void (*)(CLI::App& program, Work& chosen);

/// `tarvo render`: a scene file into a picture, or its animation into many or a movie.
void AddRender(CLI::App& program, Work& chosen);

/// `tarvo explain`: why the pieces of a frame lie as they do.
void AddExplain(CLI::App& program, Work& chosen);
/// `tarvo flips`: where bones change places in an animation.
void AddFlips(CLI::App& program, Work& chosen);
/// `tarvo diff`: two pictures compared.
void AddDiff(CLI::App& program, Work& chosen);
/// `tarvo sheet`: labelled pictures of a rig side by side.
void AddSheet(CLI::App& program, Work& chosen);
/// `tarvo watch`: a picture that is made again whenever its scene is saved.
void AddWatch(CLI::App& program, Work& chosen);

/// `tarvo check`: whether a build of the plug-in is conformant.
void AddCheck(CLI::App& program, Work& chosen);

/// Gives the program `tarvo` its commands with their options, and the text of --help; parsing a
/// command line sets `chosen`.
void AddCommands(CLI::App& program, Work& chosen);

/// The program: reads the command line and does what it says; the exit code.
int RunTarvo(const Console& console);

}  // namespace tarvo
