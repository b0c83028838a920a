#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>

#include "base/image/picture.h"
#include "cli/process/interrupt.h"
#include "cli/process/threads.h"

namespace tarvo {

/// Threads that do something with each picture while the next one is made. With one thread the
/// pictures come in their order.
class FrameQueue {
 public:
  using Consume = std::function<void(int frame, Picture picture)>;
  using Abort = std::function<void()>;

  /// `abort` makes a `consume` that may block return or throw; it is called once when the interrupt
  /// comes while this queue blocks. Throws std::runtime_error when there are no threads left.
  /// REQUIRES: at least one thread; `consume` can be called by all of them at a time.
  FrameQueue(std::size_t threads, const Interrupt& interrupt, Consume consume, Abort abort);
  FrameQueue(const FrameQueue&) = delete;
  FrameQueue& operator=(const FrameQueue&) = delete;
  /// Drops what is still pending.
  ~FrameQueue();

  /// Hands a picture over; blocks while as many are pending as there are threads, so that pictures
  /// do not pile up. Throws what `consume` threw for an earlier one.
  void Put(int frame, Picture picture);
  /// Returns once everything is done. Throws what `consume` threw.
  void Finish();

 private:
  struct Item {
    int frame = 0;
    Picture picture;
  };

  void Work();
  void Consumed(Item item, std::unique_lock<std::mutex>& lock);
  void End();
  void Await(std::unique_lock<std::mutex>& lock, const std::function<bool()>& condition);
  void ThrowFailure();

  const Interrupt& interrupt_;
  Consume consume_;
  Abort abort_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Item> pending_;
  std::size_t consuming_ = 0;  ///< threads that are in `consume`
  bool isEnding_ = false;
  bool isAborted_ = false;
  std::exception_ptr failure_;
  std::size_t room_;
  Threads threads_;  // last: they use the others
};

}  // namespace tarvo
