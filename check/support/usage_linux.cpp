#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "check/support/usage.h"

namespace check {

Usage Usage::Now() {
  Usage usage;
  std::ifstream lines("/proc/self/smaps_rollup");
  for (std::string word; lines >> word;) {
    double kilobytes = 0;
    if (word.starts_with("Private_") && lines >> kilobytes) usage.kilobytes += kilobytes;
  }
  const std::filesystem::directory_iterator files("/proc/self/fd");
  usage.handles = static_cast<double>(std::distance(begin(files), end(files)));
  return usage;
}

}  // namespace check
