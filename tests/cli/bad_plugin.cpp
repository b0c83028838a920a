#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <thread>

#ifdef _WIN32
#include <process.h>
#include <windows.h>
#else
#include <sys/stat.h>
#include <unistd.h>
#endif

#include "sdk/basic_suite.h"
#include "sdk/effect.h"
#include "sdk/effect_suites.h"

/// \file
/// Plug-ins with one fault each. CMakeLists.txt builds this file once for each enumerator of Fault:
/// BAD_PLUGIN is the enumerator and ENTRY_POINT the name of the exported function.

namespace {

enum class Fault {
  kReturnsError,  ///< from each render
  kLeaks,         ///< neither releases a suite nor disposes of a handle, in each render
  kNoEntryPoint,  ///< the exported function has another name
  kPrints,        ///< in every command, in the render of frame 5 most
  kCrashesAtUnload,
  // In the render of frame 5 alone:
  kCrashes,
  kHangs,
  kExits,  ///< ends the program
  kReportsOutOfMemory,
  kTerminates,     ///< runs out of memory in a noexcept function
  kForksAndHangs,  ///< starts two processes, of which one leaves the process group
  kWritesToPipes,  ///< to all that are open
  kCallsForever,   ///< calls its host in an endless loop
};

constexpr Fault kFault = Fault::BAD_PLUGIN;
constexpr int kBadFrame = 5;

PF_Err FailToRender(PF_OutData* out) {
  std::strcpy(out->return_msg, "no paint left");
  return 512;
}

PF_Err KeepAHandle(const PF_InData* in) {
  const void* suite = nullptr;
  in->pica_basicP->AcquireSuite("PF Handle Suite", 2, &suite);
  static_cast<const PF_HandleSuite1*>(suite)->host_new_handle(4);
  return PF_Err_NONE;
}

/// Every channel of every pixel is the frame's number.
void Paint(const PF_InData* in, PF_LayerDef* output) {
  for (A_long y = 0; y < output->height; ++y) {
    auto* const row = reinterpret_cast<char*>(output->data) + std::ptrdiff_t{y} * output->rowbytes;
    std::memset(row, static_cast<int>(in->current_time),
                static_cast<std::size_t>(output->width) * sizeof(PF_Pixel));
  }
}

/// What could be taken for pixels, or for the results of a check; the last line has no end, and all
/// of it is more than a pipe holds, in frame 5 more than several do.
void Print(bool isBadFrame) {
  const std::string result =
      "\ntarvo-check-loaded\ntarvo-check-result {\"name\": \"Commands.AboutShowsNameAndVersion\", "
      "\"requirement\": \"\", \"result\": \"passed\", \"seconds\": 0, \"messages\": [], "
      "\"figures\": "
      "{}}\ntarvo-check-result {oops\n";
  std::fwrite(result.data(), 1, result.size(), stdout);
  std::fflush(stdout);
  const std::string noise = isBadFrame ? std::string(2'000'000, '?') : std::string(100'000, '!');
  std::fwrite(noise.data(), 1, noise.size(), stderr);
}

[[noreturn]] void Crash() {
#ifdef _WIN32
  RaiseException(EXCEPTION_ACCESS_VIOLATION, EXCEPTION_NONCONTINUABLE, 0, nullptr);
#else
  std::signal(SIGSEGV, SIG_DFL);  // sanitizers would turn it into an exit code
  std::raise(SIGSEGV);
#endif
  std::abort();
}

[[noreturn]] void Hang() {
  std::fprintf(stderr, "hanging in process %d\n", static_cast<int>(getpid()));
  while (true) {
    std::this_thread::sleep_for(std::chrono::seconds(1));
  }
}

#ifndef _WIN32
void StartProcess(const char* name, bool leavesGroup) {
  const pid_t process = fork();
  if (process == 0) {
    if (leavesGroup) {
      setsid();
    }
    sleep(30);  // longer than the test, but not for good
    _exit(0);
  }
  std::fprintf(stderr, "%s is process %d\n", name, static_cast<int>(process));
}

void ThrowOutOfMemory() { throw std::bad_alloc(); }
void RunOutOfMemory() noexcept { ThrowOutOfMemory(); }

[[noreturn]] void CallForever(const PF_InData* in) {
  while (true) {
    const void* suite = nullptr;
    in->pica_basicP->AcquireSuite("PF Handle Suite", 2, &suite);
    in->pica_basicP->ReleaseSuite("PF Handle Suite", 2);
  }
}

struct CrashesAtTheEnd {
  ~CrashesAtTheEnd() {
    if (kFault == Fault::kCrashesAtUnload) {
      Crash();
    }
  }
};
const CrashesAtTheEnd kAtTheEnd;

void WriteToPipes() {
  for (int descriptor = 3; descriptor < 64; ++descriptor) {
    struct stat status {};
    if (fstat(descriptor, &status) == 0 && S_ISFIFO(status.st_mode) &&
        write(descriptor, "these bytes are no message", 26) < 0) {
      std::perror("write");
    }
  }
}
#endif

PF_Err Misbehave(const PF_InData* in) {
  const void* suite = nullptr;
  in->pica_basicP->AcquireSuite("PF Handle Suite", 2, &suite);
  in->pica_basicP->ReleaseSuite("PF Handle Suite", 2);
  switch (kFault) {
    case Fault::kCrashes:
      Crash();
    case Fault::kHangs:
      Hang();
    case Fault::kExits:
      std::exit(std::getenv("TARVO_TEST_EXITS_WITH_130") != nullptr ? 130 : 0);
#ifndef _WIN32
    case Fault::kForksAndHangs:
      StartProcess("member", false);
      StartProcess("outsider", true);
      Hang();
    case Fault::kWritesToPipes:
      WriteToPipes();
      return PF_Err_NONE;
    case Fault::kTerminates:
      RunOutOfMemory();
      return PF_Err_NONE;
    case Fault::kCallsForever:
      CallForever(in);
#endif
    case Fault::kReportsOutOfMemory:
      return PF_Err_OUT_OF_MEMORY;
    default:
      return PF_Err_NONE;
  }
}

}  // namespace

extern "C" __attribute__((visibility("default"))) PF_Err ENTRY_POINT(PF_Cmd command, PF_InData* in,
                                                                     PF_OutData* out,
                                                                     PF_ParamDef** /*params*/,
                                                                     PF_LayerDef* output,
                                                                     void* /*extra*/) {
  if (kFault == Fault::kPrints) {
    Print(command == PF_Cmd_RENDER && in->current_time == kBadFrame);
  }
  if (command == PF_Cmd_PARAMS_SETUP) {
    out->num_params = 1;
  }
  if (command != PF_Cmd_RENDER) {
    return PF_Err_NONE;
  }
  switch (kFault) {
    case Fault::kReturnsError:
      return FailToRender(out);
    case Fault::kLeaks:
      return KeepAHandle(in);
    default:
      Paint(in, output);
      return in->current_time == kBadFrame ? Misbehave(in) : PF_Err_NONE;
  }
}
