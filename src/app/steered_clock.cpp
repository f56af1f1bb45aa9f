#include "app/steered_clock.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>

namespace orvo::app {
namespace {

constexpr std::uint64_t kNanosecondsPerMillisecond = 1'000'000;

}  // namespace

/// What the clock and its events share.
struct SteeredClock::State {
  State(Clock& clock, std::function<void()> wait, std::function<void()> due)
      : system(clock), on_wait(std::move(wait)), on_due(std::move(due)) {}

  Clock& system;
  const std::function<void()> on_wait;
  const std::function<void()> on_due;
  std::mutex mutex;  // guards what follows, and the events
  std::condition_variable changed;
  std::optional<std::uint64_t> waits_until;
  bool ended_early = false;
};

class SteeredClock::SteeredEvent final : public Event {
 public:
  explicit SteeredEvent(std::shared_ptr<State> state) : state_(std::move(state)) {}

  void Set() override {
    {
      const std::lock_guard lock(state_->mutex);
      set_ = true;
    }
    state_->changed.notify_all();
  }

  WaitResult Wait(std::uint32_t milliseconds) override {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    return std::this_thread::get_id() == maker_ ? WaitPlainly(end) : WaitSteered(milliseconds, end);
  }

 private:
  using Time = std::chrono::steady_clock::time_point;

  WaitResult WaitPlainly(Time end) {
    std::unique_lock lock(state_->mutex);
    state_->changed.wait_until(lock, end, [this] { return set_; });
    return std::exchange(set_, false) ? WaitResult::kSignalled : WaitResult::kTimeOut;
  }

  WaitResult WaitSteered(std::uint32_t milliseconds, Time end) {
    std::unique_lock lock(state_->mutex);
    state_->waits_until = state_->system.Now() + milliseconds * kNanosecondsPerMillisecond;
    state_->ended_early = false;
    lock.unlock();
    state_->on_wait();
    lock.lock();
    state_->changed.wait_until(lock, end, [this] { return set_ || state_->ended_early; });
    state_->waits_until.reset();
    if (std::exchange(set_, false)) return WaitResult::kSignalled;
    lock.unlock();
    state_->on_due();
    return WaitResult::kTimeOut;
  }

  const std::shared_ptr<State> state_;
  const std::thread::id maker_ = std::this_thread::get_id();
  bool set_ = false;
};

SteeredClock::SteeredClock(Clock& system, std::function<void()> on_wait, std::function<void()> on_due)
    : state_(std::make_shared<State>(system, std::move(on_wait), std::move(on_due))) {}

std::uint64_t SteeredClock::Now() {
  return state_->system.Now();
}

std::unique_ptr<Event> SteeredClock::CreateEvent() {
  return std::make_unique<SteeredEvent>(state_);
}

std::optional<std::uint64_t> SteeredClock::waits_until() const {
  const std::lock_guard lock(state_->mutex);
  return state_->waits_until;
}

void SteeredClock::EndWait() {
  {
    const std::lock_guard lock(state_->mutex);
    state_->ended_early = state_->waits_until.has_value();
    state_->waits_until.reset();
  }
  state_->changed.notify_all();
}

}  // namespace orvo::app
