#pragma once

#include <functional>
#include <future>
#include <thread>
#include <vector>

namespace tarvo {

/// Threads that are joined at the end of the scope at the latest.
class Threads {
 public:
  Threads() = default;
  Threads(const Threads&) = delete;
  Threads& operator=(const Threads&) = delete;
  ~Threads() { Join(); }

  /// Throws std::runtime_error, with what to do, when the system has no more threads; those that
  /// were started go on. `work` does not throw.
  void Start(std::function<void()> work);
  void Join();

 private:
  std::vector<std::thread> threads_;
};

/// Does some work in a thread of its own; the future has what it throws. Throws as Threads::Start.
std::future<void> StartTask(std::function<void()> work);

}  // namespace tarvo
