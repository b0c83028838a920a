#include "cli/frames/frame_queue.h"

#include <chrono>
#include <utility>

namespace tarvo {

FrameQueue::FrameQueue(std::size_t threads, const Interrupt& interrupt, Consume consume,
                       Abort abort)
    : interrupt_(interrupt),
      consume_(std::move(consume)),
      abort_(std::move(abort)),
      room_(threads) {
  try {
    for (std::size_t i = 0; i < threads; ++i) {
      threads_.Start([this] { Work(); });
    }
  } catch (...) {
    End();
    throw;
  }
}

FrameQueue::~FrameQueue() {
  {
    const std::lock_guard lock(mutex_);
    pending_.clear();
  }
  End();
}

void FrameQueue::Put(int frame, Picture picture) {
  std::unique_lock lock(mutex_);
  Await(lock, [this] { return pending_.size() < room_ || failure_; });
  ThrowFailure();
  pending_.push_back({frame, std::move(picture)});
  changed_.notify_all();
}

void FrameQueue::Finish() {
  End();
  ThrowFailure();
}

void FrameQueue::End() {
  {
    std::unique_lock lock(mutex_);
    isEnding_ = true;
    changed_.notify_all();
    Await(lock, [this] { return consuming_ == 0 && (pending_.empty() || failure_); });
  }
  threads_.Join();
}

/// A signal's handler cannot notify: the interrupt is looked at again and again.
void FrameQueue::Await(std::unique_lock<std::mutex>& lock, const std::function<bool()>& condition) {
  constexpr std::chrono::milliseconds kLook(50);
  while (!changed_.wait_for(lock, kLook, condition)) {
    if (interrupt_.Came() && !std::exchange(isAborted_, true)) {
      abort_();
    }
  }
}

void FrameQueue::ThrowFailure() {
  if (failure_) {
    std::rethrow_exception(failure_);
  }
}

void FrameQueue::Work() {
  std::unique_lock lock(mutex_);
  while (true) {
    changed_.wait(lock, [this] { return !pending_.empty() || isEnding_; });
    if (pending_.empty() || failure_) {
      return;
    }
    Item item = std::move(pending_.front());
    pending_.pop_front();
    Consumed(std::move(item), lock);
    changed_.notify_all();
  }
}

void FrameQueue::Consumed(Item item, std::unique_lock<std::mutex>& lock) {
  ++consuming_;
  lock.unlock();
  changed_.notify_all();
  std::exception_ptr failure;
  try {
    consume_(item.frame, std::move(item.picture));
  } catch (...) {
    failure = std::current_exception();
  }
  lock.lock();
  --consuming_;
  if (failure) {
    failure_ = failure;
  }
}

}  // namespace tarvo
