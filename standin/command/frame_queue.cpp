#include "standin/command/frame_queue.h"

#include <utility>

namespace standin {

FrameQueue::FrameQueue(std::size_t threads, Consume consume)
    : consume_(std::move(consume)), room_(threads) {
  for (std::size_t i = 0; i < threads; ++i) {
    threads_.emplace_back([this] { Work(); });
  }
}

FrameQueue::~FrameQueue() {
  {
    const std::lock_guard lock(mutex_);
    waiting_.clear();
  }
  End();
}

void FrameQueue::Put(int frame, Picture picture) {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return waiting_.size() < room_ || failure_; });
  ThrowFailure();
  waiting_.push_back({frame, std::move(picture)});
  changed_.notify_all();
}

void FrameQueue::Finish() {
  End();
  ThrowFailure();
}

void FrameQueue::End() {
  {
    const std::lock_guard lock(mutex_);
    isEnding_ = true;
  }
  changed_.notify_all();
  for (std::thread& thread : threads_) {
    if (thread.joinable()) {
      thread.join();
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
    changed_.wait(lock, [this] { return !waiting_.empty() || isEnding_; });
    if (waiting_.empty() || failure_) {
      return;
    }
    Item item = std::move(waiting_.front());
    waiting_.pop_front();
    lock.unlock();
    changed_.notify_all();
    std::exception_ptr failure;
    try {
      consume_(item.frame, std::move(item.picture));
    } catch (...) {
      failure = std::current_exception();
    }
    lock.lock();
    if (failure) {
      failure_ = failure;
      changed_.notify_all();
    }
  }
}

}  // namespace standin
