#include "cli/process/process.h"

#include <array>
#include <charconv>

#include "cli/process/interrupt.h"
#include "cli/process/parent_link.h"

namespace tarvo {

int Process::Wait() {
  ReadAll();
  return EndCode();
}

std::string Process::ReadAll() {
  constexpr std::chrono::milliseconds kBetweenLooks(2);
  CloseInput();
  std::string output;
  for (bool isKilled = false; !HasEnded();) {
    if (Interrupt::Pending() && !isKilled) {
      Kill();
      isKilled = true;
    }
    AwaitAny({{.process = this, .channel = false}}, kBetweenLooks);
    AppendOutput(output);
  }
  AppendOutput(output);
  return output;
}

/// Appends what it has printed until now.
void Process::AppendOutput(std::string& output) {
  std::array<char, 4096> part{};
  while (const std::size_t count = ReadOutput(part.data(), part.size())) {
    output.append(part.data(), count);
  }
}

LinkNumbers::LinkNumbers(const std::string& text) {
  const char* const end = text.data() + text.size();
  const auto first = std::from_chars(text.data(), end, channel);
  const bool isSplit = first.ec == std::errc() && first.ptr != end && *first.ptr == ',';
  const auto second = isSplit ? std::from_chars(first.ptr + 1, end, record) : first;
  if (!isSplit || second.ec != std::errc() || second.ptr != end) {
    throw ProcessError("--worker: an option for processes that tarvo starts itself");
  }
}

}  // namespace tarvo
