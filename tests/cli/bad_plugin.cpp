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
/// Plug-ins that misbehave, one for each value of BAD_PLUGIN: 1 answers the render with an error, 2
/// never releases a suite and a handle, 3 exports another function than the entry point, 6 prints
/// in every command, 13 crashes when it is unloaded. The others do what they do in the render of
/// frame 5: 4 crashes, 5 hangs, 7 ends the program, 8 hangs and has started two processes, of which
/// one has left its process group, 9 writes to every pipe that it finds, 10 says that it ran out of
/// memory, 11 runs out of memory where nothing may be thrown, 12 calls its host on and on.

namespace {

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

[[noreturn]] void CallOnAndOn(const PF_InData* in) {
  while (true) {
    const void* suite = nullptr;
    in->pica_basicP->AcquireSuite("PF Handle Suite", 2, &suite);
    in->pica_basicP->ReleaseSuite("PF Handle Suite", 2);
  }
}

struct CrashesAtTheEnd {
  ~CrashesAtTheEnd() {
    if (BAD_PLUGIN == 13) {
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
  switch (BAD_PLUGIN) {
    case 4:
      Crash();
    case 5:
      Hang();
    case 7:
      std::exit(std::getenv("TARVO_TEST_EXITS_WITH_130") != nullptr ? 130 : 0);
#ifndef _WIN32
    case 8:
      StartProcess("member", false);
      StartProcess("outsider", true);
      Hang();
    case 9:
      WriteToPipes();
      return PF_Err_NONE;
    case 11:
      RunOutOfMemory();
      return PF_Err_NONE;
    case 12:
      CallOnAndOn(in);
#endif
    case 10:
      return PF_Err_OUT_OF_MEMORY;
    default:
      return PF_Err_NONE;
  }
}

}  // namespace

#if BAD_PLUGIN == 3
#define EntryPointFunc AnotherFunc
#endif

extern "C" __attribute__((visibility("default"))) PF_Err EntryPointFunc(
    PF_Cmd command, PF_InData* in, PF_OutData* out, PF_ParamDef** /*params*/, PF_LayerDef* output,
    void* /*extra*/) {
  if (BAD_PLUGIN == 6) {
    Print(command == PF_Cmd_RENDER && in->current_time == kBadFrame);
  }
  if (command == PF_Cmd_PARAMS_SETUP) {
    out->num_params = 1;
  }
  if (command == PF_Cmd_RENDER && BAD_PLUGIN == 1) {
    return FailToRender(out);
  }
  if (command == PF_Cmd_RENDER && BAD_PLUGIN > 3) {
    Paint(in, output);
    if (in->current_time == kBadFrame) {
      return Misbehave(in);
    }
  }
  return command == PF_Cmd_RENDER && BAD_PLUGIN == 2 ? KeepAHandle(in) : PF_Err_NONE;
}
