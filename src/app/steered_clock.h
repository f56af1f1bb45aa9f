#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>

#include "platform/clock.h"

namespace orvo::app {

/// The system's clock in front of a scheduler: it tells until when the scheduler waits, and can end a wait before its
/// time, so that the report that it waits for is made at once.
class SteeredClock final : public Clock {
 public:
  /// `system` outlives this object, as does whatever `on_wait` and `on_due` refer to. Both are called by the thread
  /// that waits: when a wait begins, and when one ends because its time has come.
  SteeredClock(Clock& system, std::function<void()> on_wait, std::function<void()> on_due);

  std::uint64_t Now() override { return system_.Now(); }
  std::unique_ptr<Event> CreateEvent() override;

  /// Until when somebody waits, in the clock's time; empty while nobody does.
  std::optional<std::uint64_t> waits_until() const;
  /// Lets the wait that is under way end as if its time had come. Nothing happens while nobody waits.
  void EndWait();

 private:
  class SteeredEvent;

  Clock& system_;
  std::function<void()> on_wait_;
  std::function<void()> on_due_;
  mutable std::mutex mutex_;  // guards what follows, and the events
  std::condition_variable changed_;
  std::optional<std::uint64_t> waits_until_;
  bool ended_early_ = false;
};

}  // namespace orvo::app
