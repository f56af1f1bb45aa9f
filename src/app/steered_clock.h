#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "platform/clock.h"

namespace orvo::app {

/// The system's clock in front of a scheduler: it tells until when the scheduler waits, and can end a wait before its
/// time, so that the report that it waits for is made at once. Only waits of other threads than the one that made the
/// event are the scheduler's: that one waits for the scheduler's end. Events may outlive the clock; they are waited for
/// not any more by then.
class SteeredClock final : public Clock {
 public:
  /// `system` outlives this object, as does whatever `on_wait` and `on_due` refer to. Both are called by the thread
  /// that waits: when a wait begins, and when one ends because its time has come.
  SteeredClock(Clock& system, std::function<void()> on_wait, std::function<void()> on_due);

  std::uint64_t Now() override;
  std::unique_ptr<Event> CreateEvent() override;

  /// Until when somebody waits, in the clock's time; empty while nobody does.
  std::optional<std::uint64_t> waits_until() const;
  /// Lets the wait that is under way end as if its time had come. Nothing happens while nobody waits.
  void EndWait();

 private:
  struct State;
  class SteeredEvent;

  std::shared_ptr<State> state_;
};

}  // namespace orvo::app
