#include "capture/context/note_queue.h"

#include <system_error>
#include <utility>

namespace orvo {

NoteQueue::~NoteQueue() {
  {
    std::lock_guard lock(mutex_);
    ending_ = true;
  }
  published_some_.notify_one();
  if (thread_.joinable()) thread_.join();
}

bool NoteQueue::Start() {
  if (thread_.joinable()) return true;
  static const bool alone = std::thread::hardware_concurrency() < 2;
  if (alone) return false;
  if (!batches_) batches_ = std::make_unique<std::array<NoteBatch, kBatches>>();
  try {
    thread_ = std::thread([this] { Run(); });
  } catch (const std::system_error&) {
    return false;
  }
  return true;
}

NoteBatch& NoteQueue::Fill() {
  std::unique_lock lock(mutex_);
  half_empty_.wait(lock, [this] { return published_ - counted_ < kBatches; });
  RaiseProblem();
  return (*batches_)[published_ % kBatches];
}

void NoteQueue::Publish() {
  std::uint64_t waiting = 0;
  {
    std::lock_guard lock(mutex_);
    waiting = ++published_ - counted_;
  }
  if (waiting >= kSome) Flush();
}

void NoteQueue::Drain() {
  std::unique_lock lock(mutex_);
  Flush();
  counted_one_.wait(lock, [this, wanted = published_] { return counted_ >= wanted; });
  RaiseProblem();
}

void NoteQueue::RaiseProblem() {
  if (problem_) std::rethrow_exception(std::exchange(problem_, nullptr));
}

void NoteQueue::Run() {
  std::unique_lock lock(mutex_);
  for (;;) {
    published_some_.wait(lock, [this] { return published_ != counted_ || ending_; });
    if (published_ == counted_) return;
    NoteBatch& batch = (*batches_)[counted_ % kBatches];
    lock.unlock();
    std::exception_ptr problem;
    try {
      count_(batch);
    } catch (...) {
      problem = std::current_exception();
    }
    lock.lock();
    if (!problem_) problem_ = std::move(problem);
    ++counted_;
    counted_one_.notify_all();
    // Who was held up is not woken for every single batch.
    if (published_ - counted_ == kBatches / 2) half_empty_.notify_one();
  }
}

}  // namespace orvo
