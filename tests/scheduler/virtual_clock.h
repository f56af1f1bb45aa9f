#pragma once

#include <algorithm>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

#include "platform/clock.h"
#include "platform/error.h"

namespace orvo::test {

/// The process's clock while it lives. Time passes in waits only, at once, up to the moment that the test allows; a
/// wait that would end later lasts until the test allows more or the event is set.
class VirtualClock final : public Clock {
 public:
  /// Seconds since 1970, as everywhere here.
  explicit VirtualClock(std::int64_t start) : core_(std::make_shared<Core>()) {
    core_->wall = start * kSecond;
    SetProcessClock(this);
  }
  ~VirtualClock() override { SetProcessClock(nullptr); }
  VirtualClock(const VirtualClock&) = delete;
  VirtualClock& operator=(const VirtualClock&) = delete;

  std::uint64_t Now() override {
    std::lock_guard hold(core_->mutex);
    return TimeFromUnix(core_->passed + core_->wall);
  }
  std::int64_t Seconds() { return UnixFromTime(Now()) / kSecond; }

  std::unique_ptr<Event> CreateEvent() override {
    if (Failed(event_status)) Raise(event_status);
    return std::make_unique<VirtualEvent>(core_);
  }
  /// A failure makes events fail.
  Status event_status = S_OK;

  /// Allows time to pass until the clock shows `time`, and gives back control when everybody waits for later.
  void RunTo(std::int64_t time) {
    std::unique_lock hold(core_->mutex);
    core_->limit = time * kSecond - core_->wall;
    core_->changed.notify_all();
    core_->changed.wait(hold, [&] {
      if (core_->waiting.empty()) return false;
      for (auto [event, deadline] : core_->waiting) {
        if (deadline <= core_->limit) return false;
      }
      return true;
    });
    core_->passed = std::max(core_->passed, core_->limit);
  }

  /// Allows time to pass until the clock shows `time`, and gives back control when somebody's wait has ended then.
  void PassTo(std::int64_t time) {
    std::unique_lock hold(core_->mutex);
    core_->limit = time * kSecond - core_->wall;
    core_->changed.notify_all();
    core_->changed.wait(hold, [&] { return core_->passed >= core_->limit; });
  }

  /// Lets every wait end at once that is not longer than this. 0 is how it begins.
  void LetPass(std::int64_t seconds) {
    std::lock_guard hold(core_->mutex);
    core_->let_pass = seconds * kSecond;
    core_->changed.notify_all();
  }

  /// Somebody sets the clock; waits do not notice. Also what a machine looks like after it has slept.
  void Jump(std::int64_t seconds) {
    std::lock_guard hold(core_->mutex);
    core_->wall += seconds * kSecond;
  }

 private:
  static constexpr std::int64_t kSecond = 1'000'000'000;

  struct Core {
    std::mutex mutex;
    std::condition_variable changed;
    std::int64_t passed = 0;  // nanoseconds, as all here
    std::int64_t limit = 0;
    std::int64_t let_pass = 0;
    std::int64_t wall = 0;  // what the clock shows, less what has passed
    std::map<const Event*, std::int64_t> waiting;
  };

  class VirtualEvent final : public Event {
   public:
    explicit VirtualEvent(std::shared_ptr<Core> core) : core_(std::move(core)) {}

    void Set() override {
      std::lock_guard hold(core_->mutex);
      set_ = true;
      core_->changed.notify_all();
    }

    WaitResult Wait(std::uint32_t milliseconds) override {
      std::unique_lock hold(core_->mutex);
      const std::int64_t deadline = core_->passed + std::int64_t{milliseconds} * 1'000'000;
      while (!set_ && deadline > std::max(core_->limit, core_->passed + core_->let_pass)) {
        core_->waiting[this] = deadline;
        core_->changed.notify_all();
        core_->changed.wait(hold);
        core_->waiting.erase(this);
      }
      if (set_) {
        set_ = false;
        return WaitResult::kSignalled;
      }
      core_->passed = std::max(core_->passed, deadline);
      core_->changed.notify_all();
      return WaitResult::kTimeOut;
    }

   private:
    std::shared_ptr<Core> core_;
    bool set_ = false;
  };

  std::shared_ptr<Core> core_;
};

}  // namespace orvo::test
