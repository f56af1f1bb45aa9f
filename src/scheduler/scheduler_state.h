#pragma once

#include <atomic>
#include <memory>

#include "platform/bstr.h"
#include "platform/clock.h"
#include "scheduler/guarded.h"
#include "scheduler/method_calls.h"
#include "scheduler/report_sets.h"
#include "scheduler/settings.h"

namespace orvo {

/// Who is notified of outputs; the identifier is handed on with each notification.
struct NotificationReceiver {
  INotificationSink* sink = nullptr;
  Guid context;
};

/// What a scheduler works with. Method and preferences are held; the others belong to the host, which sets null before
/// they go, so that whoever uses one takes a reference of its own for as long as that takes.
struct SchedulerParts {
  Guarded<ComPtr<IStatsOutputMethod>> method;
  Guarded<ComPtr<IStatsOutputPrefs>> preferences;
  Guarded<IStatsContext*> context;
  Guarded<IGraphCollection*> graphs;
  Guarded<NotificationReceiver> receiver;
  Guarded<Bstr> template_root;
};

/// A reference to an object of the host's, taken before the host can set another.
template <class T>
ComPtr<T> Hold(const Guarded<T*>& borrowed) {
  return borrowed.Read([](T* object) { return ComPtr<T>(object); });
}

/// A new copy; none of none. Raises E_OUTOFMEMORY when it cannot be made.
inline Bstr CopyOf(const Bstr& text) {
  return text.get() ? Bstr(text.view()) : Bstr();
}

/// All that a scheduler and its workers share. It lives as long as one of them.
struct SchedulerState {
  SchedulerSettings settings;
  SchedulerParts parts;
  ReportSets sets;
  MethodCalls calls;
  /// Until the output method has been told its format, which happens once in the scheduler's life.
  std::atomic<bool> format_pending{true};
};

/// How a worker is to leave.
enum class Parting {
  kNone,
  /// Stopped from within a call of its own: it may bring the output that it is at to an end.
  kAfterOutput,
  /// Given up: it does nothing any more when the call returns in which it hangs.
  kAtOnce,
};

/// What a worker and who started it share about its end.
struct WorkerControl {
  Clock& clock = ProcessClock();
  std::unique_ptr<Event> stop = clock.CreateEvent();
  std::unique_ptr<Event> ended = clock.CreateEvent();
  std::atomic<bool> stopping{false};
  std::atomic<Parting> parting{Parting::kNone};
};

}  // namespace orvo
