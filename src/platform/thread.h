#pragma once

#include <pthread.h>

#include <cstdint>

#include "platform/export.h"
#include "platform/status.h"

namespace orvo {

/// A thread of the process that runs one function. The library in which the function lies stays loaded until the
/// function has returned, whatever becomes of its objects meanwhile. The thread gets no signals.
class ORVO_PLATFORM_API Thread {
 public:
  using Function = Status(void* argument);

  Thread() = default;
  Thread(const Thread&) = delete;
  Thread& operator=(const Thread&) = delete;
  /// Detaches a thread that was not joined.
  ~Thread() { Detach(); }

  /// Once per object, unless it failed: S_OK and the function has been or will be called, or the platform's error and
  /// it will not. The function must not raise.
  Status Start(Function* function, void* argument);
  /// Whether the function asks, or what it calls; from its first line on.
  bool IsCurrent() const;
  /// Waits for the end, and gives what the function has returned.
  Status Join();
  /// Lets the thread go on by itself.
  void Detach();

 private:
  pthread_t thread_{};
  std::uint64_t number_ = 0;  // while it runs, no other's; set before, for the thread may look before its maker goes on
};

/// Provokes a failing Start on this thread: the next one returns `status` when that is a failure.
ORVO_PLATFORM_API void FailNextThread(Status status);

}  // namespace orvo
