#include "app/feeder.h"

#include <chrono>
#include <exception>
#include <new>
#include <utility>
#include <vector>

namespace orvo::app {
namespace {

constexpr std::size_t kMostAtOnce = 1024;
/// Asking the system how many packets were lost costs more than counting one.
constexpr std::chrono::milliseconds kBetweenLooks(250);

}  // namespace

Feeder::Feeder(PacketSource& source, WaitingSource& waiting, CaptureEngine& engine, std::function<void()> on_end)
    : source_(source), waiting_(waiting), engine_(engine), on_end_(std::move(on_end)) {}

void Feeder::Start() {
  thread_ = std::thread([this] { Run(); });
}

void Feeder::Stop() {
  waiting_.Stop();
  if (thread_.joinable()) thread_.join();
}

void Feeder::Run() {
  try {
    Feed();
  } catch (const std::bad_alloc&) {
    failure_ = "there is not enough memory to count more packets; see the limits (--limit)";
  } catch (const std::exception& error) {
    failure_ = error.what();
  }
  ended_ = true;
  on_end_();
}

void Feeder::Feed() {
  using Clock = std::chrono::steady_clock;
  std::vector<Packet> room(kMostAtOnce);
  Clock::time_point next_look = Clock::now();
  while (const std::size_t count = source_.NextBatch(room)) {
    engine_.Feed(std::span(room).first(count));
    packets_ += count;
    if (const Clock::time_point now = Clock::now(); now >= next_look) {
      LookAtDropped();
      next_look = now + kBetweenLooks;
    }
  }
  LookAtDropped();
}

void Feeder::LookAtDropped() {
  dropped_ = source_.dropped();
  engine_.SetDropped(dropped_);
}

}  // namespace orvo::app
