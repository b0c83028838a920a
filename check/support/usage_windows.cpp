// The second needs what the first declares.
// clang-format off
#include <windows.h>
#include <psapi.h>
// clang-format on

#include "check/support/usage.h"

namespace check {

Usage Usage::Now() {
  PROCESS_MEMORY_COUNTERS_EX counters{};
  counters.cb = sizeof counters;
  GetProcessMemoryInfo(GetCurrentProcess(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters),
                       sizeof counters);
  DWORD handles = 0;
  GetProcessHandleCount(GetCurrentProcess(), &handles);
  constexpr double kBytesPerKilobyte = 1024;
  return {.kilobytes = static_cast<double>(counters.PrivateUsage) / kBytesPerKilobyte,
          .handles = static_cast<double>(handles)};
}

}  // namespace check
