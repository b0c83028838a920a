#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <functional>
#include <new>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "base/files/escaped_text.h"
#include "base/files/input_error.h"
#include "base/files/out_of_memory.h"
#include "cli/command.h"
#include "cli/options/operands.h"
#include "cli/process/interrupt.h"
#include "cli/process/messages.h"
#include "cli/process/parent_link.h"
#include "cli/process/system.h"
#include "standin/core/crash_record.h"
#include "standin/loader/plugin_library.h"
#include "tool/player/performance.h"

namespace standin {
namespace {

constexpr AddCommand kCommands[] = {AddRender, AddExplain, AddFlips, AddSheet,
                                    AddDiff,   AddWatch,   AddCheck};

constexpr const char* kFooter = R"(Examples:
  tarvo render examples/wave/wave.json -o wave.png
  tarvo explain examples/wave/wave.json --at 650,330
  tarvo check

The plug-in runs in a process of its own. What it prints is written to standard error, each line
behind the name of that process; a crash, or a command that takes longer than --time-limit, is said
with the command, the frame and the last host call.

Exit codes: 0 made; 1 two pictures differ, or the plug-in is not sound; 2 a file, a scene or an
option is wrong; 3 the plug-in returned an error, broke a rule of its host, crashed or hung; 4 the
plug-in cannot be loaded, or this machine cannot run it (no OpenGL, no memory, no processes or
threads left, no ffmpeg for a movie), or standard output cannot be written; 5 frames or the report
of a check are missing at the end, or a process was ended from outside; 130 interrupted.
After -- come names of files, whatever they begin with, and then options again, as in
"tarvo render -- -a.json -o a.png".
No output file is made unless the exit code is 0 or 1, but for the frames of an animation, of which
those that were made before are whole, and where standard output cannot be written: what was made is
told on standard error then.
A file is replaced as a whole and keeps its mode and owner, and is on the disk itself before success
is said. No file that a command reads is replaced, whatever it is called.)";

/// Says why a command failed: at most kMostFaultLines lines, and how many more there are. Names in
/// them come from files: no control character reaches the terminal.
int Fail(const Console& console, int code, const std::vector<std::string>& lines) {
  // SceneFaults have cut theirs, and said so in a line of their own.
  const bool isShort = lines.size() <= kMostFaultLines + 1;
  const std::size_t shown = isShort ? lines.size() : kMostFaultLines;
  for (std::size_t i = 0; i < shown; ++i) {
    console.err << LinesForTerminal(lines[i]) << '\n';
  }
  if (!isShort) {
    console.err << MoreLines(lines.size() - shown) << '\n';
  }
  return code;
}

/// Reads the command line. Throws CLI::ParseError for a wrong one, and for --help and --version.
Work ReadCommandLine(CLI::App& program, std::vector<std::string> words) {
  Work chosen;
  program.allow_windows_style_options(false);  // a file's name may begin with a slash
  program.set_version_flag("--version", "tarvo " TARVO_VERSION, "Print the version and exit");
  program.set_help_flag("-h,--help", "Print this help and exit");
  program.footer(kFooter);
  for (const AddCommand add : kCommands) {
    add(program, chosen);
  }
  words = WithNamesMarked(program, std::move(words));
  std::ranges::reverse(words);  // as CLI11 takes them
  program.parse(std::move(words));
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
  } catch (const OutOfMemory& error) {
    return Fail(console, kCannotRun, {"tarvo: out of memory: " + std::string(error.what())});
  } catch (const std::bad_alloc&) {
    return Fail(console, kCannotRun, {"tarvo: out of memory"});
  } catch (const std::exception& error) {
    return Fail(console, kCannotRun, {"tarvo: " + std::string(error.what())});
  }
}

namespace {

/// Reads the command line and does what it says; the exit code.
int Run(const Console& console) {
  CLI::App program("Shows a rig without the real host: plays a scene file on the plug-in.",
                   "tarvo");
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

/// The same in the process that was started by the user.
int RunForUser(const Console& console) {
  RemoveTemporaryFilesOnInterrupt();
  const int code = Run(console);
  if (console.out.flush()) {
    return code;
  }
  console.err << "tarvo: standard output cannot be written: what was written there is incomplete\n";
  return code == kMade || code == kDifferent ? kOutputLost : code;
}

/// The same in a worker, whose console is the channel to its parent.
int RunAsWorker(const std::string& handles, const std::vector<std::string>& words) {
  EndAtOnceOnCrash();
  std::setvbuf(stdout, nullptr, _IONBF, 0);  // what the plug-in prints before a crash is not lost
  ParentLink link(handles);
  MessageWriter writer([&](const void* bytes, std::size_t size) { link.Write(bytes, size); });
  MessageStream out(writer, MessageKind::kOutput);
  MessageStream err(writer, MessageKind::kError);
  const int code = Run({out, err, &writer, words});
  out.flush();
  err.flush();
  SendEnd(writer, code);
  return code;
}

}  // namespace

int RunTarvo(int argc, const char* const* argv, const Console& console) {
  std::vector<std::string> words(argv + std::min(argc, 1), argv + argc);
  if (words.empty() || !words.front().starts_with(ParentLink::kArgument)) {
    return RunForUser({console.out, console.err, nullptr, words});
  }
  const std::string handles = words.front().substr(std::string_view(ParentLink::kArgument).size());
  words.erase(words.begin());
  try {
    return RunAsWorker(handles, words);
  } catch (const std::bad_alloc&) {
    NoteOutOfMemory();
    return kCannotRun;
  } catch (const std::exception& error) {
    return Fail(console, kWrongInput, {"tarvo: " + std::string(error.what())});
  }
}

}  // namespace standin
