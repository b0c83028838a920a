#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "cli/command.h"
#include "cli/options/operands.h"
#include "cli/program/program.h"

namespace tarvo {
namespace {

constexpr AddCommand kCommands[] = {AddRender, AddExplain, AddFlips, AddSheet,
                                    AddDiff,   AddWatch,   AddCheck};

constexpr const char* kFooter = R"(Examples:
  tarvo render examples/wave/wave.json -o wave.png
  tarvo explain examples/wave/wave.json --at 650,330
  tarvo check

The plug-in runs in a process of its own. What it prints is written to standard error, each line
after the name of that process; a crash, or a command that takes longer than --time-limit, is reported
with the command, the frame and the last host call.

Exit codes: 0 success; 1 two pictures differ, or the plug-in is not conformant; 2 a file, a scene or
an option is wrong; 3 the plug-in returned an error, violated the host's interface, crashed or hung;
4 the plug-in cannot be loaded, or this machine cannot run it (no OpenGL, no memory, no processes or
threads left, no ffmpeg for a movie), or standard output cannot be written; 5 frames or the report
of a check are missing at the end, or a process was ended from outside; 130 interrupted.

Arguments after -- are names of files, whatever they begin with, and then options again, as in
"tarvo render -- -a.json -o a.png".

An output file is written only if the exit code is 0 or 1. Exceptions: finished frames of an
animation, the report of a plug-in that "check" cannot load, and lost standard output, in which case
standard error names the files that were written.

A file is replaced as a whole, keeps its mode and owner, and is flushed to the disk before success
is reported. A file that a command reads is never replaced, under any name.)";

/// Reads the command line. Throws CLI::ParseError for a wrong one, and for --help and --version.
Work ReadCommandLine(CLI::App& program, std::vector<std::string> words) {
  Work chosen;
  AddCommands(program, chosen);
  words = ProtectOperandsAfterDashes(program, std::move(words));
  std::ranges::reverse(words);  // as CLI11 takes them
  program.parse(std::move(words));
  if (!chosen) {
    throw CLI::RequiredError("A command");
  }
  return chosen;
}

}  // namespace

void AddCommands(CLI::App& program, Work& chosen) {
  program.name("tarvo");
  program.description("Renders rigs without the real host: plays a scene file on the plug-in.");
  program.allow_windows_style_options(false);  // a file's name may begin with a slash
  program.set_version_flag("--version", "tarvo " TARVO_VERSION, "Print the version and exit");
  program.set_help_flag("-h,--help", "Print this help and exit");
  program.footer(kFooter);
  for (const AddCommand add : kCommands) {
    add(program, chosen);
  }
}

int RunTarvo(const Console& console) {
  CLI::App program;
  Work work;
  try {
    work = ReadCommandLine(program, console.words);
  } catch (const CLI::Success& request) {
    return program.exit(request, console.out, console.err);
  } catch (const CLI::ParseError& error) {
    return Fail(console, kWrongInput, {"tarvo: " + std::string(error.what())});
  }
  return Try([&] { work(console); }, console);
}

}  // namespace tarvo
