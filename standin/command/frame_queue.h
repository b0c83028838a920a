#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "standin/picture.h"

namespace standin {

/// Threads that do something with each picture while the next one is made. With one thread the
/// pictures come in their order.
class FrameQueue {
 public:
  using Consume = std::function<void(int frame, Picture picture)>;

  /// REQUIRES: at least one thread; `consume` can be called by all of them at a time.
  FrameQueue(std::size_t threads, Consume consume);
  FrameQueue(const FrameQueue&) = delete;
  FrameQueue& operator=(const FrameQueue&) = delete;
  /// Drops what is still waiting.
  ~FrameQueue();

  /// Hands a picture over; waits while as many are waiting as there are threads, so that pictures
  /// do not pile up. Throws what `consume` threw for an earlier one.
  void Put(int frame, Picture picture);
  /// Waits until everything is done. Throws what `consume` threw.
  void Finish();

 private:
  struct Item {
    int frame = 0;
    Picture picture;
  };

  void Work();
  void End();
  void ThrowFailure();

  Consume consume_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Item> waiting_;
  bool isEnding_ = false;
  std::exception_ptr failure_;
  std::size_t room_;
  std::vector<std::thread> threads_;
};

}  // namespace standin
