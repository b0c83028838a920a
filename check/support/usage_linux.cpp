#include <filesystem>
#include <iterator>

#include <malloc.h>

#include "check/support/usage.h"

namespace check {

Usage Usage::Now() {
  Usage usage;
  // Not what is resident: the system fills and empties pages as it likes. (The address sanitizer
  // brings an allocator that reports nothing; it looks for leaks itself.)
  constexpr double kBytesPerKilobyte = 1024;
  const struct mallinfo2 heap = mallinfo2();
  usage.kilobytes = static_cast<double>(heap.uordblks + heap.hblkhd) / kBytesPerKilobyte;
  const std::filesystem::directory_iterator files("/proc/self/fd");
  usage.handles = static_cast<double>(std::distance(begin(files), end(files)));
  return usage;
}

}  // namespace check
