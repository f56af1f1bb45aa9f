#include "app/steered_clock.h"

#include <chrono>
#include <utility>

namespace orvo::app {
namespace {

constexpr std::uint64_t kNanosecondsPerMillisecond = 1'000'000;

}  // namespace

class SteeredClock::SteeredEvent final : public Event {
 public:
  explicit SteeredEvent(SteeredClock& clock) : clock_(clock) {}

  void Set() override {
    {
      const std::lock_guard lock(clock_.mutex_);
      set_ = true;
    }
    clock_.changed_.notify_all();
  }

  WaitResult Wait(std::uint32_t milliseconds) override {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    std::unique_lock lock(clock_.mutex_);
    clock_.waits_until_ = clock_.Now() + milliseconds * kNanosecondsPerMillisecond;
    clock_.ended_early_ = false;
    lock.unlock();
    clock_.on_wait_();
    lock.lock();
    clock_.changed_.wait_until(lock, end, [this] { return set_ || clock_.ended_early_; });
    clock_.waits_until_.reset();
    if (std::exchange(set_, false)) return WaitResult::kSignalled;
    lock.unlock();
    clock_.on_due_();
    return WaitResult::kTimeOut;
  }

 private:
  SteeredClock& clock_;
  bool set_ = false;
};

SteeredClock::SteeredClock(Clock& system, std::function<void()> on_wait, std::function<void()> on_due)
    : system_(system), on_wait_(std::move(on_wait)), on_due_(std::move(on_due)) {}

std::unique_ptr<Event> SteeredClock::CreateEvent() {
  return std::make_unique<SteeredEvent>(*this);
}

std::optional<std::uint64_t> SteeredClock::waits_until() const {
  const std::lock_guard lock(mutex_);
  return waits_until_;
}

void SteeredClock::EndWait() {
  {
    const std::lock_guard lock(mutex_);
    ended_early_ = waits_until_.has_value();
    waits_until_.reset();
  }
  changed_.notify_all();
}

}  // namespace orvo::app
