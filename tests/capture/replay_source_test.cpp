#include "capture/source/replay_source.h"

#include <gmock/gmock.h>

#include <deque>
#include <thread>

namespace orvo::test {
namespace {

constexpr std::uint64_t kStart = 1'000'000 * kNanosecondsPerSecond;

/// Time passes only while somebody waits, and then at once.
class JumpingClock final : public Clock {
 public:
  std::uint64_t Now() override { return now_; }
  std::unique_ptr<Event> CreateEvent() override { return std::make_unique<JumpingEvent>(*this); }

 private:
  class JumpingEvent final : public Event {
   public:
    explicit JumpingEvent(JumpingClock& clock) : clock_(clock) {}
    void Set() override { set_ = true; }
    WaitResult Wait(std::uint32_t milliseconds) override {
      if (std::exchange(set_, false)) return WaitResult::kSignalled;
      clock_.now_ += std::uint64_t{milliseconds} * 1'000'000;
      return WaitResult::kTimeOut;
    }

   private:
    JumpingClock& clock_;
    bool set_ = false;
  };

  std::uint64_t now_ = 77 * kStart;
};

/// Packets at these seconds.
class Script final : public PacketSource {
 public:
  explicit Script(std::vector<double> seconds) : seconds_(seconds.begin(), seconds.end()) {}

  bool Next(Packet* packet) override {
    if (seconds_.empty()) return false;
    packet->time = kStart + static_cast<std::uint64_t>(seconds_.front() * 1e9);
    seconds_.pop_front();
    return true;
  }
  std::size_t NextBatch(std::span<Packet> room) override {
    std::size_t count = 0;
    while (count < room.size() && Next(&room[count])) ++count;
    return count;
  }
  SourceProgress progress() const override { return {}; }
  std::uint64_t dropped() const override { return 0; }
  const SourceError& warning() const override { return warning_; }

 private:
  std::deque<double> seconds_;
  SourceError warning_;
};

TEST(ReplaySourceTest, GivesPacketsWhenTheyAreDue) {
  constexpr double kYear = 365 * 86'400.0;
  struct {
    const char* what;
    double speed;
    std::vector<double> recorded;
    std::vector<std::pair<double, std::size_t>> given;  // after how many seconds how many at once
  } const cases[] = {
      {"as recorded", 1, {5, 5.25, 7, 100}, {{0, 1}, {0.25, 1}, {2, 1}, {95, 1}}},
      {"ten times as fast", 10, {5, 15, 105}, {{0, 1}, {1, 1}, {10, 1}}},
      {"half as fast", 0.5, {5, 6}, {{0, 1}, {2, 1}}},
      {"those that are due together", 1, {5, 5, 5.0001, 6}, {{0, 3}, {1, 1}}},
      {"times that run backwards", 1, {5, 10, 8, 11}, {{0, 1}, {5, 2}, {6, 1}}},
      {"a jump that nobody recorded", 1, {5, 6, 6 + kYear, 8 + kYear}, {{0, 1}, {1, 2}, {3, 1}}},
      {"a jump into the past", 1, {kYear, kYear + 1, 0, 1}, {{0, 1}, {1, 2}, {2, 1}}},
      {"a night without packets", 1, {0, 40'000}, {{0, 1}, {40'000, 1}}},
      {"as fast as can be", 1e9, {0, 80'000, 86'000}, {{0, 3}}},
  };
  for (const auto& one : cases) {
    JumpingClock clock;
    Script script(one.recorded);
    ReplaySource replay(&script, one.speed, clock);
    const std::uint64_t begin = clock.Now();
    std::vector<std::pair<double, std::size_t>> given;
    std::vector<double> times;
    std::vector<Packet> room(16);
    while (const std::size_t count = replay.NextBatch(room)) {
      given.emplace_back(static_cast<double>(clock.Now() - begin) / 1e9, count);
      for (std::size_t i = 0; i < count; ++i) times.push_back(static_cast<double>(room[i].time - kStart) / 1e9);
    }
    EXPECT_EQ(given, one.given) << one.what;
    EXPECT_EQ(times.size(), one.recorded.size()) << one.what;
    EXPECT_THAT(times, testing::Pointwise(testing::DoubleNear(1e-6), one.recorded)) << one.what;
  }
}

TEST(ReplaySourceTest, GivesNoMoreThanThereIsRoomFor) {
  JumpingClock clock;
  Script script({1, 1, 1});
  ReplaySource replay(&script, 1, clock);
  std::vector<Packet> room(2);
  EXPECT_EQ(replay.NextBatch(room), 2U);
  EXPECT_EQ(replay.NextBatch(room), 1U);
  EXPECT_EQ(replay.NextBatch(room), 0U);
}

TEST(ReplaySourceTest, StopEndsAWaitOfAnotherThread) {
  Script script({1, 80'000, 80'001});
  ReplaySource replay(&script, 1, ProcessClock());
  Packet packet;
  ASSERT_TRUE(replay.Next(&packet));
  std::thread stopper([&replay] { replay.Stop(); });
  EXPECT_FALSE(replay.Next(&packet)) << "it would take 22 hours";
  stopper.join();
  EXPECT_FALSE(replay.Next(&packet));
}

}  // namespace
}  // namespace orvo::test
