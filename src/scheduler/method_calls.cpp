#include "scheduler/method_calls.h"

#include <algorithm>
#include <utility>

namespace orvo {

MethodCalls::Call* MethodCalls::Find(const IStatsOutputMethod* method) {
  const auto found = std::ranges::find(calls_, method, &Call::method);
  return found == calls_.end() ? nullptr : &*found;
}

bool MethodCalls::Begin(IStatsOutputMethod* method, const std::atomic<bool>& stopping) {
  std::unique_lock hold(mutex_);
  changed_.wait(hold, [&] { return stopping || !Find(method); });
  if (stopping) return false;
  calls_.push_back({method, false});
  return true;
}

void MethodCalls::End(IStatsOutputMethod* method) {
  std::unique_lock hold(mutex_);
  while (std::exchange(Find(method)->reset_wanted, false)) {
    hold.unlock();
    method->ResetMark();
    hold.lock();
  }
  std::erase_if(calls_, [&](const Call& call) { return call.method == method; });
  changed_.notify_all();
}

Status MethodCalls::Reset(IStatsOutputMethod* method) {
  {
    std::lock_guard hold(mutex_);
    if (Call* call = Find(method)) {
      call->reset_wanted = true;
      return S_OK;
    }
    calls_.push_back({method, false});
  }
  const Status status = method->ResetMark();
  End(method);
  return status;
}

void MethodCalls::WakeUp() {
  // Whoever has seen `stopping` false holds the mutex until it waits.
  std::lock_guard hold(mutex_);
  changed_.notify_all();
}

}  // namespace orvo
