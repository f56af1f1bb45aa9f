#pragma once

#include <pthread.h>

#include "platform/export.h"
#include "platform/status.h"

namespace orvo {

/// A lock that the holding thread may take again. Made in two steps, since making it can fail.
class ORVO_PLATFORM_API CriticalSection {
 public:
  CriticalSection() = default;
  CriticalSection(const CriticalSection&) = delete;
  CriticalSection& operator=(const CriticalSection&) = delete;
  ~CriticalSection();

  /// Must succeed before the first lock().
  Status Initialise();
  void lock();
  void unlock();

 private:
  pthread_mutex_t mutex_{};
  bool ready_ = false;
};

/// Provokes a failing Initialise on this thread: the next one returns `status` when that is a failure.
ORVO_PLATFORM_API void FailNextCriticalSection(Status status);

}  // namespace orvo
