#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "capture/analysis/jitter_estimate.h"
#include "capture/analysis/rtcp_packet.h"
#include "capture/analysis/rtp_packet.h"
#include "capture/analysis/sequence_tracker.h"
#include "tests/capture/voice_packets.h"

namespace orvo::test {
namespace {

using Verdict = SequenceTracker::Verdict;

struct SequenceCase {
  const char* name;
  std::vector<int> numbers;
  std::uint64_t expected, lost, gaps, longest;
  int late = 0, duplicates = 0, restarts = 0, strays = 0;
};

/// `count` numbers in a row, modulo 2^16.
std::vector<int> Numbers(int first, int count) {
  std::vector<int> run;
  for (int i = 0; i < count; ++i) run.push_back((first + i) % 65536);
  return run;
}

std::vector<int> Join(std::vector<int> front, const std::vector<int>& back) {
  front.insert(front.end(), back.begin(), back.end());
  return front;
}

TEST(SequenceTracker, CountsWhatIsMissing) {
  const SequenceCase cases[] = {
      {"one packet", {7}, 1, 0, 0, 0},
      {"in a row", Numbers(100, 300), 300, 0, 0, 0},
      {"wrap", Numbers(65500, 100), 100, 0, 0, 0},
      {"wrap into a gap", {65534, 2}, 5, 3, 1, 3},
      {"two gaps", {1, 2, 5, 6, 8}, 8, 3, 2, 2},
      {"gap longer than the window", Join(Numbers(1, 10), Numbers(511, 10)), 520, 500, 1, 500},
      {"gap of twice the window while young", {1, 258}, 258, 256, 1, 256},
      {"late fills its gap", {1, 3, 2, 4}, 4, 0, 0, 0, 1},
      {"late splits a gap", {1, 6, 4, 7}, 7, 3, 2, 2, 1},
      {"late across the wrap", {65534, 1, 65535, 0, 2}, 5, 0, 0, 0, 2},
      {"earlier than the first", {10, 9, 11, 8}, 4, 0, 0, 0, 2},
      {"earlier with a gap", {10, 7, 11}, 5, 2, 1, 2, 1},
      {"duplicates", {1, 1, 2, 1, 2, 3}, 3, 0, 0, 0, 0, 3},
      {"duplicate of a late one", {1, 3, 2, 2}, 3, 0, 0, 0, 1, 1},
      {"restart", Join(Numbers(100, 50), Numbers(40000, 50)), 100, 0, 0, 0, 0, 0, 1, 1},
      {"restart backwards with losses on both sides", {100, 102, 30000, 30001, 30003}, 7, 2, 2, 1, 0, 0, 1, 1},
      {"one stray does not restart", {5, 6, 30000, 7, 8}, 4, 0, 0, 0, 0, 0, 0, 1},
      {"strays in different places", {5, 30000, 20000, 10000, 6}, 2, 0, 0, 0, 0, 0, 0, 3},
      {"as late as it may be", Join(Numbers(1, 1), Join(Numbers(3, 99), {2})), 101, 0, 0, 0, 1},
  };
  for (const SequenceCase& test : cases) {
    SCOPED_TRACE(test.name);
    SequenceTracker tracker(static_cast<std::uint16_t>(test.numbers[0]));
    int counts[5] = {};
    for (std::size_t i = 1; i < test.numbers.size(); ++i) {
      ++counts[static_cast<int>(tracker.Take(static_cast<std::uint16_t>(test.numbers[i])))];
    }
    LossCounts losses = tracker.losses();
    EXPECT_EQ(losses.expected, test.expected);
    EXPECT_EQ(losses.lost, test.lost);
    EXPECT_EQ(losses.gaps, test.gaps);
    EXPECT_EQ(losses.longest_gap, test.longest);
    EXPECT_EQ(counts[static_cast<int>(Verdict::kLate)], test.late);
    EXPECT_EQ(counts[static_cast<int>(Verdict::kDuplicate)], test.duplicates);
    EXPECT_EQ(counts[static_cast<int>(Verdict::kRestart)], test.restarts);
    EXPECT_EQ(counts[static_cast<int>(Verdict::kStray)], test.strays);
  }
}

TEST(SequenceTracker, CountsThroughManyWraps) {
  SequenceTracker tracker(1);
  std::uint64_t packets = 1;
  for (std::uint64_t number = 2; number <= 400'000; ++number) {
    if (number % 50 == 0) continue;
    tracker.Take(static_cast<std::uint16_t>(number));
    ++packets;
  }
  LossCounts losses = tracker.losses();
  EXPECT_EQ(losses.expected, 399'999U);  // the last is one that is missing
  EXPECT_EQ(losses.expected - losses.lost, packets);
  EXPECT_EQ(losses.gaps, losses.lost);
  EXPECT_NEAR(losses.ratio(), 0.02, 1e-4);
  EXPECT_DOUBLE_EQ(losses.burst_ratio(), 1);
}

TEST(SequenceTracker, TellsBurstsFromChance) {
  LossCounts bursts{100, 20, 4, 8};
  EXPECT_DOUBLE_EQ(bursts.burst_ratio(), 5 * 0.8);  // five in a row, where chance gives 1 / (1 - 0.2)
  EXPECT_DOUBLE_EQ((LossCounts{100, 20, 20, 1}).burst_ratio(), 1);
  EXPECT_DOUBLE_EQ((LossCounts{}).burst_ratio(), 1);
}

TEST(JitterEstimate, FollowsTheStandardByHand) {
  // 20 ms of a clock of 8000: 160 ticks. Arrivals in ms, then J = J + (|D| - J) / 16.
  JitterEstimate jitter;
  jitter.Take(kNewYear, 1000, 8000);
  EXPECT_FALSE(jitter.known());
  jitter.Take(kNewYear + 20'000'000, 1160, 8000);  // D = 0
  jitter.Take(kNewYear + 56'000'000, 1320, 8000);  // 36 ms for 20: D = 16, J = 1
  EXPECT_DOUBLE_EQ(jitter.now(), 1);
  jitter.Take(kNewYear + 60'000'000, 1480, 8000);  // 4 ms for 20: D = -16, J = 1 + 15 / 16
  EXPECT_DOUBLE_EQ(jitter.now(), 1.9375);
  jitter.Take(kNewYear + 80'000'000, 1640, 8000);  // D = 0, J = 1.9375 * 15 / 16
  EXPECT_DOUBLE_EQ(jitter.now(), 1.81640625);
  EXPECT_DOUBLE_EQ(jitter.largest(), 1.9375);
  EXPECT_DOUBLE_EQ(jitter.mean(), (0 + 1 + 1.9375 + 1.81640625) / 4);
}

TEST(JitterEstimate, TakesJumps) {
  struct Case {
    const char* name;
    std::uint32_t first, second;
    std::int64_t nanoseconds;
    double jitter;
  };
  const Case cases[] = {
      {"timestamp wraps", 0xFFFFFFB0, 80, 20'000'000, 0},
      {"late packet goes back", 1160, 1000, 4'000'000, 1.5},  // 4 - (-20) = 24
      {"clock of the capture goes back", 1000, 1160, -12'000'000, 2},
      {"timestamp stands", 1000, 1000, 8'000'000, 0.5},
  };
  for (const Case& test : cases) {
    SCOPED_TRACE(test.name);
    JitterEstimate jitter;
    jitter.Take(kNewYear, test.first, 8000);
    jitter.Take(kNewYear + static_cast<std::uint64_t>(test.nanoseconds), test.second, 8000);
    EXPECT_DOUBLE_EQ(jitter.now(), test.jitter);
  }
  JitterEstimate jitter;
  jitter.Take(kNewYear, 1000, 8000);
  jitter.Take(kNewYear + kSecond, 99, 16000);  // of another clock: nothing to compare with
  jitter.Restart();
  jitter.Take(kNewYear + 2 * kSecond, 5, 16000);
  jitter.Take(kNewYear + 2 * kSecond, 5, 0);  // of no known clock
  EXPECT_FALSE(jitter.known());
  EXPECT_EQ(jitter.mean(), 0);
}

TEST(RtpPacket, ChecksEveryLength) {
  Rtp packet{.sequence = 0xFFFE, .timestamp = 0x80000001, .ssrc = 0xDEADBEEF, .type = 8, .marker = true};
  RtpHeader header;
  ASSERT_TRUE(ReadRtp(packet.Bytes(), false, &header));
  EXPECT_EQ(header.sequence, 0xFFFE);
  EXPECT_EQ(header.timestamp, 0x80000001);
  EXPECT_EQ(header.ssrc, 0xDEADBEEF);
  EXPECT_EQ(header.payload_type, 8);
  EXPECT_TRUE(header.marker);
  EXPECT_EQ(header.payload_length, 160);

  struct Case {
    const char* name;
    std::uint8_t first;  ///< of the header
    Buffer rest;         ///< behind its 12 bytes
    int length;          ///< of the payload, -1 for no RTP
    bool cut_off = false;
  };
  const Case cases[] = {
      {"nothing carried", 0x80, {}, 0},
      {"version 1", 0x40, Zeros(20), -1},
      {"two sources", 0x82, Zeros(18), 10},
      {"fifteen sources that are not there", 0x8F, Zeros(59), -1},
      {"extension", 0x90, Be16(0xBEDE) + Be16(2) + Zeros(18), 10},
      {"extension without its header", 0x90, Zeros(3), -1},
      {"extension beyond the end", 0x90, Be16(0xBEDE) + Be16(0xFFFF) + Zeros(18), -1},
      {"padding", 0xA0, Zeros(9) + Buffer{4}, 6},
      {"nothing but padding", 0xA0, Zeros(3) + Buffer{4}, 0},
      {"more padding than packet", 0xA0, Zeros(3) + Buffer{5}, -1},
      {"padding of nothing", 0xA0, Zeros(8), -1},
      {"padding that was not captured", 0xA0, Zeros(8), 8, true},
  };
  for (const Case& test : cases) {
    SCOPED_TRACE(test.name);
    Buffer bytes = Rtp{}.Bytes();
    bytes.resize(12);
    bytes[0] = test.first;
    bytes = bytes + test.rest;
    bool read = ReadRtp(bytes, test.cut_off, &header);
    EXPECT_EQ(read ? header.payload_length : -1, test.length);
  }
}

TEST(RtcpPacket, ReadsReportsAndRefusesTheRest) {
  Buffer block = Le32(0x44332211) + Buffer{64, 0xFF, 0xFF, 0xFE} + Zeros(6) + Be16(80) + Be16(0x1234) + Be16(0x5678) +
                 Be16(1) + Be16(0x8000);
  Buffer info = Be16(0xAAAA) + Be16(0x1234) + Be16(0x5678) + Be16(0xBBBB) + Zeros(12);
  Buffer report = Buffer{0x81, 200} + Be16(12) + Be16(0) + Be16(9) + info + block;
  Buffer goodbye = Buffer{0x81, 203} + Be16(1) + Zeros(4);

  RtcpReport read;
  ASSERT_TRUE(ReadRtcp(report + goodbye, false, &read));
  EXPECT_TRUE(read.is_sender);
  EXPECT_EQ(read.sender, 9U);
  EXPECT_EQ(read.ntp_middle, 0x12345678U);
  ASSERT_EQ(read.block_count, 1U);
  EXPECT_EQ(read.blocks[0].ssrc, 0x11223344U);
  EXPECT_EQ(read.blocks[0].fraction_lost, 64);
  EXPECT_EQ(read.blocks[0].lost, -2);
  EXPECT_EQ(read.blocks[0].jitter, 80U);
  EXPECT_EQ(read.blocks[0].last_report, 0x12345678U);
  EXPECT_EQ(read.blocks[0].delay, 0x18000U);

  const std::pair<const char*, Buffer> refused[] = {
      {"a tail of no type", report + Zeros(8)},
      {"a length beyond the end", Buffer{0x80, 201} + Be16(9) + Zeros(4)},
      {"a sender's report without room", Buffer{0x80, 200} + Be16(1) + Zeros(4)},
      {"more blocks than bytes", Buffer{0x9F, 201} + Be16(1) + Zeros(4)},
      {"not a report first", goodbye + report},
  };
  for (const auto& [name, bytes] : refused) EXPECT_FALSE(ReadRtcp(bytes, false, &read)) << name;
  report.resize(40);
  EXPECT_FALSE(ReadRtcp(report, false, &read));
  EXPECT_TRUE(ReadRtcp(report, true, &read));
  EXPECT_EQ(read.block_count, 0U);
}

}  // namespace
}  // namespace orvo::test
