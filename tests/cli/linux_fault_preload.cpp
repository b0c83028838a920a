// Preloaded into `tarvo` by tests: makes the system's functions fail, or block, where the system
// itself cannot be brought to it. Each is chosen by an environment variable. Processes that run the
// plug-in are spared.

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include <dlfcn.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

bool IsWorker() {
  char words[4096]{};
  std::FILE* const file = std::fopen("/proc/self/cmdline", "r");
  const std::size_t size = file != nullptr ? std::fread(words, 1, sizeof words - 1, file) : 0;
  if (file != nullptr) {
    std::fclose(file);
  }
  for (std::size_t i = 0; i < size; ++i) {
    if (words[i] == '\0') {
      words[i] = ' ';
    }
  }
  return std::strstr(words, " --worker=") != nullptr;
}

/// True iff the variable is set and so many calls were made before this one.
bool IsDue(const char* variable, int& calls) {
  const char* const allowed = std::getenv(variable);
  return allowed != nullptr && !IsWorker() && calls++ >= std::atoi(allowed);
}

template <typename Function>
Function Original(const char* name) {
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" {

__attribute__((visibility("default"))) int pthread_create(pthread_t* thread,
                                                          const pthread_attr_t* attributes,
                                                          void* (*start)(void*), void* argument) {
  static int calls = 0;
  if (IsDue("PRELOAD_THREADS", calls)) {
    return EAGAIN;
  }
  return Original<decltype(&pthread_create)>("pthread_create")(thread, attributes, start, argument);
}

/// Before the second one a file, the variable's text up to a ">", takes the name after it.
__attribute__((visibility("default"))) pid_t fork() {
  static int calls = 0;
  static int started = 0;
  const char* const change = std::getenv("PRELOAD_CHANGE");
  if (change != nullptr && !IsWorker() && ++started == 2) {
    const std::string_view names = change;
    const std::size_t sign = names.find('>');
    const std::string from(names.substr(0, sign));
    std::rename(from.c_str(), change + sign + 1);
  }
  if (IsDue("PRELOAD_PROCESSES", calls)) {
    errno = EAGAIN;
    return -1;
  }
  return Original<decltype(&fork)>("fork")();
}

/// Fails for files or for folders, as the variable says.
__attribute__((visibility("default"))) int fsync(int file) {
  struct stat status {};
  const char* const failing = std::getenv("PRELOAD_SYNC");
  if (failing == nullptr || fstat(file, &status) != 0 ||
      S_ISDIR(status.st_mode) != (std::string_view(failing) == "folder")) {
    return 0;
  }
  errno = EIO;
  return -1;
}

/// Blocks before a temporary file gets its final name, and reports that.
__attribute__((visibility("default"))) int rename(const char* from, const char* to) {
  static int calls = 0;
  if (IsDue("PRELOAD_RENAMES", calls)) {
    std::fputs("blocking in rename\n", stderr);
    while (true) {
      pause();
    }
  }
  return Original<decltype(&rename)>("rename")(from, to);
}
}
