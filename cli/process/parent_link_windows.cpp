#include <algorithm>
#include <cstdint>
#include <string>

#include <windows.h>

#include "cli/process/parent_link.h"
#include "cli/process/process.h"
#include "standin/core/crash_record.h"

namespace tarvo {

struct ParentLink::Handles {
  HANDLE channel = nullptr;
};

ParentLink::ParentLink(const std::string& handles) : handles_(std::make_unique<Handles>()) {
  const LinkNumbers numbers(handles);
  auto* const channel = reinterpret_cast<HANDLE>(static_cast<std::uintptr_t>(numbers.channel));
  auto* const mapping = reinterpret_cast<HANDLE>(static_cast<std::uintptr_t>(numbers.record));
  void* const memory =
      GetFileType(channel) == FILE_TYPE_PIPE
          ? MapViewOfFile(mapping, FILE_MAP_ALL_ACCESS, 0, 0, sizeof(standin::CrashRecord))
          : nullptr;
  if (memory == nullptr) {
    throw ProcessError("--worker: an option for processes that tarvo starts itself");
  }
  CloseHandle(mapping);
  SetHandleInformation(channel, HANDLE_FLAG_INHERIT, 0);  // no part for what the plug-in starts
  handles_->channel = channel;
  standin::UseCrashRecord(
      *static_cast<standin::CrashRecord*>(memory));  // mapped until the process ends
}

ParentLink::~ParentLink() { CloseHandle(handles_->channel); }

void ParentLink::Write(const void* bytes, std::size_t size) {
  constexpr std::size_t kLargestTransfer = 1U << 20U;
  const char* next = static_cast<const char*>(bytes);
  while (size > 0) {
    DWORD written = 0;
    const auto part = static_cast<DWORD>(std::min(size, kLargestTransfer));
    if (WriteFile(handles_->channel, next, part, &written, nullptr) == 0) {
      throw ProcessError("the channel to the parent process cannot be written: error " +
                         std::to_string(GetLastError()));
    }
    next += written;
    size -= written;
  }
}

}  // namespace tarvo
