#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <vector>

#include "frame/stats_output_method.h"

namespace orvo {

/// Sees to it that only one thread at a time calls an output method, which has no lock of its own. Nobody waits for a
/// report of his own accord: a worker does until it is told to stop, and a reset is left to the thread that is there.
class MethodCalls {
 public:
  /// Begins a call of the method, once nobody else calls it. False when `stopping` became true before.
  bool Begin(IStatsOutputMethod* method, const std::atomic<bool>& stopping);
  /// Ends the call, with a reset that was asked for meanwhile.
  void End(IStatsOutputMethod* method);
  /// Resets the method's mark: its status, or S_OK when another thread calls the method and will do it.
  Status Reset(IStatsOutputMethod* method);
  /// To be called after `stopping` has become true.
  void WakeUp();

 private:
  struct Call {
    IStatsOutputMethod* method;
    bool reset_wanted;
  };
  /// Null when nobody calls the method; the mutex is held.
  Call* Find(const IStatsOutputMethod* method);

  std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<Call> calls_;
};

/// A call that ends with its block.
class MethodCall {
 public:
  MethodCall(MethodCalls& calls, IStatsOutputMethod* method, const std::atomic<bool>& stopping)
      : calls_(calls), method_(method), begun_(calls.Begin(method, stopping)) {}
  MethodCall(const MethodCall&) = delete;
  MethodCall& operator=(const MethodCall&) = delete;
  ~MethodCall() {
    if (begun_) calls_.End(method_);
  }

  bool begun() const { return begun_; }

 private:
  MethodCalls& calls_;
  IStatsOutputMethod* method_;
  bool begun_;
};

}  // namespace orvo
