#include "capture/source/replay_source.h"

#include <algorithm>

namespace orvo {
namespace {

constexpr std::size_t kReadAhead = 1024;
constexpr std::uint64_t kLongestJump = 86'400 * kNanosecondsPerSecond;
constexpr std::uint64_t kNanosecondsPerMillisecond = 1'000'000;
/// Far less than a wait can take, and often enough to notice that the system's clock was set.
constexpr std::uint64_t kLongestWait = 60'000;

std::uint64_t Distance(std::uint64_t a, std::uint64_t b) {
  return a < b ? b - a : a - b;
}

}  // namespace

ReplaySource::ReplaySource(PacketSource* source, double speed, Clock& clock)
    : source_(source), speed_(speed), clock_(clock), stop_(clock.CreateEvent()), ahead_(kReadAhead) {}

void ReplaySource::Stop() {
  stopped_ = true;
  stop_->Set();
}

bool ReplaySource::ReadAhead() {
  if (next_ < end_) return true;
  next_ = 0;
  end_ = source_->NextBatch(ahead_);
  return end_ != 0;
}

std::uint64_t ReplaySource::MillisecondsTo(const Packet& packet) {
  const std::uint64_t now = clock_.Now();
  if (latest_ == 0 || Distance(packet.time, latest_) > kLongestJump) {
    begin_ = packet.time;
    begun_ = now;
  }
  latest_ = packet.time;
  if (packet.time <= begin_) return 0;
  const double wait = static_cast<double>(packet.time - begin_) / speed_;
  const double passed = now > begun_ ? static_cast<double>(now - begun_) : 0;
  if (wait <= passed) return 0;
  // A clock that is set back makes nobody wait for longer than the pace asks.
  return static_cast<std::uint64_t>(std::min(wait - passed, wait) / kNanosecondsPerMillisecond);
}

bool ReplaySource::WaitFor(const Packet& packet) {
  while (!stopped_) {
    const std::uint64_t left = MillisecondsTo(packet);
    if (left == 0) return true;
    if (stop_->Wait(static_cast<std::uint32_t>(std::min(left, kLongestWait))) == WaitResult::kFailed) return false;
  }
  return false;
}

std::size_t ReplaySource::NextBatch(std::span<Packet> room) {
  if (stopped_ || !ReadAhead() || !WaitFor(ahead_[next_])) return 0;
  std::size_t count = 0;
  do {
    room[count++] = ahead_[next_++];
  } while (count < room.size() && next_ < end_ && MillisecondsTo(ahead_[next_]) == 0);
  return count;
}

}  // namespace orvo
