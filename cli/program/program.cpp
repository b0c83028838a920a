#include "cli/program/program.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <new>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/files/escaped_text.h"
#include "base/files/input_error.h"
#include "base/files/out_of_memory.h"
#include "base/files/temporary_files.h"
#include "cli/process/interrupt.h"
#include "cli/process/messages.h"
#include "cli/process/parent_link.h"
#include "cli/process/system.h"
#include "standin/core/crash_record.h"
#include "tool/player/scene_player.h"

namespace tarvo {
namespace {

constexpr const char* kOutOfMemory = "tarvo: out of memory\n";

/// The JSON library takes memory in the destructor of a value, which nothing may leave: where there
/// is none the program ends at once, and still says so.
[[noreturn]] void SayOutOfMemory() {
  try {
    if (const std::exception_ptr current = std::current_exception()) {
      std::rethrow_exception(current);
    }
  } catch (const std::bad_alloc&) {
    standin::NoteOutOfMemory();
    RemoveTemporaryFiles();
    std::fputs(kOutOfMemory, stderr);
    std::_Exit(kCannotRun);
  } catch (...) {  // a crash like any other
  }
  std::abort();
}

/// Runs the program in the process that was started by the user.
int RunForUser(const Console& console, Run run) {
  RemoveTemporaryFilesOnInterrupt();
  const int code = run(console);
  if (console.out.flush()) {
    return code;
  }
  console.err << "tarvo: standard output cannot be written: what was written there is incomplete\n";
  return code == kMade || code == kDifferent ? kOutputLost : code;
}

/// The same in a worker, whose console is the channel to its parent.
int RunAsWorker(const std::string& handles, const std::vector<std::string>& words, Run run) {
  EndAtOnceOnCrash();
  std::setvbuf(stdout, nullptr, _IONBF, 0);  // what the plug-in prints before a crash is not lost
  ParentLink link(handles);
  MessageWriter writer([&](const void* bytes, std::size_t size) { link.Write(bytes, size); });
  MessageStream out(writer, MessageKind::kOutput);
  MessageStream err(writer, MessageKind::kError);
  const int code = run({out, err, &writer, words});
  out.flush();
  err.flush();
  SendEnd(writer, code);
  return code;
}

int RunWith(std::vector<std::string> words, Run run) {
  const Console console{std::cout, std::cerr, nullptr, words};
  if (words.empty() || !words.front().starts_with(ParentLink::kArgument)) {
    return RunForUser(console, run);
  }
  const std::string handles = words.front().substr(std::string_view(ParentLink::kArgument).size());
  words.erase(words.begin());
  try {
    return RunAsWorker(handles, words, run);
  } catch (const std::bad_alloc&) {
    standin::NoteOutOfMemory();
    return kCannotRun;
  } catch (const std::exception& error) {
    return Fail(console, kWrongInput, {"tarvo: " + std::string(error.what())});
  }
}

}  // namespace

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

int Try(const std::function<void()>& work, const Console& console) {
  try {
    work();
    return kMade;
  } catch (const InputError& error) {
    return Fail(console, kWrongInput, error.Lines());
  } catch (const CommandExit& error) {
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

int RunProgram(int argc, const char* const* argv, Run run) {
  std::set_terminate(SayOutOfMemory);
  PrepareProcess();
  try {
    std::vector<std::string> words = CommandLineWords(argc, argv);
    words.erase(words.begin(), words.begin() + std::min<std::ptrdiff_t>(1, std::ssize(words)));
    return RunWith(std::move(words), run);
  } catch (const std::exception&) {  // no memory even to say what is wrong
    std::fputs(kOutOfMemory, stderr);
    return kCannotRun;
  }
}

}  // namespace tarvo
