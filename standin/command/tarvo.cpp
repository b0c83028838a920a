#include <exception>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "standin/command/command.h"
#include "standin/performance.h"
#include "standin/plugin_library.h"
#include "standin/scene_faults.h"

namespace standin {
namespace {

constexpr AddCommand kCommands[] = {AddRender, AddExplain, AddFlips, AddSheet,
                                    AddDiff,   AddWatch,   AddCheck};

constexpr const char* kFooter = R"(Examples:
  tarvo render examples/wave/wave.json -o wave.png
  tarvo explain examples/wave/wave.json --at 650,330
  tarvo check

Exit codes: 0 made; 1 two pictures differ, or the plug-in is not sound; 2 a file, a scene or an option is wrong; 3 the plug-in
returned an error or broke a rule of its host; 4 the plug-in cannot be loaded, or this machine
cannot run it (no OpenGL, no memory, no ffmpeg for a movie); 5 frames are missing at the end;
130 interrupted.
No output file is made unless the exit code is 0 or 1, but for the frames of an animation: those
that were made before are whole.)";

int Fail(const Console& console, int code, const std::vector<std::string>& lines) {
  for (const std::string& line : lines) {
    console.err << line << '\n';
  }
  return code;
}

/// Reads the command line. Throws CLI::ParseError for a wrong one, and for --help and --version.
Work ReadCommandLine(CLI::App& program, int argc, const char* const* argv) {
  Work chosen;
  program.allow_windows_style_options(false);  // a file's name may begin with a slash
  program.set_version_flag("--version", "tarvo " TARVO_VERSION, "Print the version and exit");
  program.set_help_flag("-h,--help", "Print this help and exit");
  program.footer(kFooter);
  for (const AddCommand add : kCommands) {
    add(program, chosen);
  }
  program.parse(argc, argv);
  if (!chosen) {
    throw CLI::RequiredError("A command");
  }
  return chosen;
}

}  // namespace

int Try(const std::function<void()>& work, const Console& console) {
  try {
    work();
    return kMade;
  } catch (const InputError& error) {
    return Fail(console, kWrongInput, error.Lines());
  } catch (const Unfinished& error) {
    return Fail(console, error.Code(), error.Lines());
  } catch (const PluginError& error) {
    return Fail(console, kPluginFault, error.Lines());
  } catch (const std::exception& error) {
    return Fail(console, kNotLoaded, {"tarvo: " + std::string(error.what())});
  }
}

int RunTarvo(int argc, const char* const* argv, const Console& console) {
  CLI::App program("Shows a rig without the real host: plays a scene file on the plug-in.",
                   "tarvo");
  Work work;
  try {
    work = ReadCommandLine(program, argc, argv);
  } catch (const CLI::Success& request) {
    return program.exit(request, console.out, console.err);
  } catch (const CLI::ParseError& error) {
    return Fail(console, kWrongInput, {"tarvo: " + std::string(error.what())});
  }
  const auto workToTheEnd = [&] {
    work(console);
    if (!console.out.flush()) {
      throw InputError({"standard output cannot be written"});
    }
  };
  return Try(workToTheEnd, console);
}

}  // namespace standin
