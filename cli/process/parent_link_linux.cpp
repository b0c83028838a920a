#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include "cli/process/parent_link.h"
#include "cli/process/process.h"
#include "standin/core/crash_record.h"

namespace tarvo {
namespace {

[[noreturn]] void Refuse() {
  throw ProcessError("--worker: an option for processes that tarvo starts itself");
}

}  // namespace

struct ParentLink::Handles {
  int channel = -1;
};

ParentLink::ParentLink(const std::string& handles) : handles_(std::make_unique<Handles>()) {
  const LinkNumbers numbers(handles);
  const int channel = static_cast<int>(numbers.channel);
  const int file = static_cast<int>(numbers.record);
  struct stat status {};
  if (fstat(channel, &status) != 0 || !S_ISFIFO(status.st_mode) || fstat(file, &status) != 0 ||
      status.st_size != static_cast<off_t>(sizeof(standin::CrashRecord))) {
    Refuse();
  }
  void* const memory =
      mmap(nullptr, sizeof(standin::CrashRecord), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
  if (memory == MAP_FAILED) {
    Refuse();
  }
  close(file);
  fcntl(channel, F_SETFD, FD_CLOEXEC);  // programs that the plug-in starts have no part in it
  handles_->channel = channel;
  standin::UseCrashRecord(
      *static_cast<standin::CrashRecord*>(memory));  // mapped until the process ends
}

ParentLink::~ParentLink() { close(handles_->channel); }

void ParentLink::Write(const void* bytes, std::size_t size) {
  const char* next = static_cast<const char*>(bytes);
  while (size > 0) {
    const ssize_t written = write(handles_->channel, next, size);
    if (written < 0 && errno == EINTR) {
      continue;
    }
    if (written < 0) {
      throw ProcessError("the channel to the parent process cannot be written: " +
                         std::generic_category().message(errno));
    }
    next += written;
    size -= static_cast<std::size_t>(written);
  }
}

}  // namespace tarvo
