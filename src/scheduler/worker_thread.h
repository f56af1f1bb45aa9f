#pragma once

#include <memory>

#include "platform/thread.h"
#include "scheduler/scheduler_state.h"

namespace orvo {

/// A worker in its thread, until it is stopped.
class WorkerThread {
 public:
  /// Starts it. Raises the status with which its events or its thread cannot be made.
  explicit WorkerThread(std::shared_ptr<SchedulerState> state);
  WorkerThread(const WorkerThread&) = delete;
  WorkerThread& operator=(const WorkerThread&) = delete;
  /// Stops the worker and waits for its end, 30 seconds at most. One that hangs in a call by then is given up: it holds
  /// whatever it uses, and the library, until the call returns, and does nothing afterwards. From within a call of the
  /// worker's own nobody waits: the worker ends with the output it is at.
  ~WorkerThread();

 private:
  std::shared_ptr<SchedulerState> state_;
  std::shared_ptr<WorkerControl> control_;
  Thread thread_;
};

}  // namespace orvo
