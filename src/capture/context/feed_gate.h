#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>

namespace orvo {

/// Lets the feeding thread through, batch after batch, and lets others stop it between two of them. What it touches
/// within a Pass may be touched within a Stop as well. Neither is ever taken within the other by one thread.
class FeedGate {
 public:
  /// The feeding thread's; waits while others want it to stop, however quickly it comes back.
  class Pass {
   public:
    explicit Pass(FeedGate& gate) : lock_(gate.mutex_) {
      gate.opened_.wait(lock_, [&] { return gate.wanted_ == 0; });
    }

   private:
    std::unique_lock<std::mutex> lock_;
  };

  /// Anybody else's; one at a time.
  class Stop {
   public:
    explicit Stop(FeedGate& gate) : gate_(gate) {
      ++gate_.wanted_;
      gate_.mutex_.lock();
    }
    Stop(const Stop&) = delete;
    Stop& operator=(const Stop&) = delete;
    ~Stop() {
      --gate_.wanted_;
      gate_.mutex_.unlock();
      gate_.opened_.notify_one();
    }

   private:
    FeedGate& gate_;
  };

 private:
  std::mutex mutex_;
  std::condition_variable opened_;
  std::atomic<int> wanted_ = 0;  // how many stop it, or wait to
};

}  // namespace orvo
