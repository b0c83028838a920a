#include "cli/process/threads.h"

#include <stdexcept>
#include <system_error>
#include <utility>

namespace tarvo {
namespace {

std::runtime_error NoThread(const std::system_error& error) {
  return std::runtime_error("a thread cannot be started: " + error.code().message() +
                            "; end other programs, or raise the limit of processes (ulimit -u)");
}

}  // namespace

void Threads::Start(std::function<void()> work) {
  try {
    threads_.emplace_back(std::move(work));
  } catch (const std::system_error& error) {
    throw NoThread(error);
  }
}

void Threads::Join() {
  for (std::thread& thread : threads_) {
    if (thread.joinable()) {
      thread.join();
    }
  }
}

std::future<void> StartTask(std::function<void()> work) {
  try {
    return std::async(std::launch::async, std::move(work));
  } catch (const std::system_error& error) {
    throw NoThread(error);
  }
}

}  // namespace tarvo
