#include "platform/clock.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <ctime>
#include <mutex>

namespace orvo {
namespace {

constexpr std::uint32_t kWithoutEnd = 0xFFFF'FFFF;

class SystemEvent final : public Event {
 public:
  void Set() override {
    {
      std::lock_guard lock(mutex_);
      set_ = true;
    }
    changed_.notify_one();
  }

  WaitResult Wait(std::uint32_t milliseconds) override {
    auto is_set = [this] { return set_; };
    std::unique_lock lock(mutex_);
    if (milliseconds == kWithoutEnd) {
      changed_.wait(lock, is_set);
    } else if (!changed_.wait_for(lock, std::chrono::milliseconds(milliseconds), is_set)) {
      return WaitResult::kTimeOut;
    }
    set_ = false;
    return WaitResult::kSignalled;
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool set_ = false;
};

class SystemClock final : public Clock {
 public:
  std::uint64_t Now() override {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    std::uint64_t time = TimeFromUnix(std::int64_t{now.tv_sec} * 1'000'000'000 + now.tv_nsec);
    return time - time % 100;
  }

  std::unique_ptr<Event> CreateEvent() override { return std::make_unique<SystemEvent>(); }
};

std::atomic<Clock*> replacement{nullptr};

}  // namespace

Clock& ProcessClock() {
  static SystemClock system_clock;
  Clock* clock = replacement.load(std::memory_order_acquire);
  return clock ? *clock : system_clock;
}

void SetProcessClock(Clock* clock) {
  replacement.store(clock, std::memory_order_release);
}

}  // namespace orvo
