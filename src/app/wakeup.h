#pragma once

#include <optional>

namespace orvo::app {

/// What wakes a thread that waits for several things at once: signals, and other threads that say so.
class Wakeup {
 public:
  /// Keeps the signals that a run is steered by (SIGINT, SIGTERM, SIGHUP, and SIGCHLD) from this thread and from those
  /// that it starts; they are taken by NextSignal instead. Ends the command when the system refuses.
  Wakeup();
  Wakeup(const Wakeup&) = delete;
  Wakeup& operator=(const Wakeup&) = delete;
  ~Wakeup();

  /// Waits for a signal, a Wake, or until the time is over; without end when it is negative. Also until there is
  /// something to be read from a descriptor, if that is not negative.
  void Wait(int milliseconds, int descriptor = -1);
  /// Ends a Wait, or the next one. Called by any thread.
  void Wake() noexcept;
  /// A signal that has arrived and was not taken yet.
  std::optional<int> NextSignal();
  /// Ends the process at once, as if nobody had taken the signal.
  [[noreturn]] static void EndBy(int signal);

 private:
  int signals_;
  int event_;
};

}  // namespace orvo::app
