#include <gtest/gtest.h>

#include "tests/capture/expert_fixture.h"

namespace orvo::test {
namespace {

constexpr char kClientSide = '>';

/// One segment; sequence numbers are relative to the first of each side.
struct Step {
  char from;          ///< '>' for the client, '<' for the server
  const char* flags;  ///< S, F, R and A
  std::uint32_t sequence;
  std::uint32_t acknowledgement;
  unsigned length = 0;
  double milliseconds = 0;
  unsigned window = 1000;
};

struct Talk {
  const char* what;
  std::vector<Step> steps;
  const char* events;
};

std::uint8_t FlagsOf(const char* letters) {
  std::uint8_t flags = 0;
  for (; *letters; ++letters) {
    flags |= *letters == 'S' ? TcpSegment::kSyn : 0;
    flags |= *letters == 'F' ? TcpSegment::kFin : 0;
    flags |= *letters == 'R' ? TcpSegment::kRst : 0;
    flags |= *letters == 'A' ? TcpSegment::kAck : 0;
  }
  return flags;
}

void Play(const std::vector<Step>& steps, std::uint32_t client_base, std::uint32_t server_base, ExpertFixture* expert) {
  for (const Step& step : steps) {
    bool client = step.from == kClientSide;
    std::uint32_t sequence = step.sequence + (client ? client_base : server_base);
    std::uint32_t acknowledgement = step.acknowledgement + (client ? server_base : client_base);
    std::uint8_t flags = FlagsOf(step.flags);
    if ((flags & TcpSegment::kAck) == 0) acknowledgement = 0;
    Buffer header = client ? TcpHeader(40000, 5000, sequence, acknowledgement, flags, step.window)
                           : TcpHeader(5000, 40000, sequence, acknowledgement, flags, step.window);
    expert->FeedIp(client, 6, header + Buffer(step.length, 'x'), step.milliseconds);
  }
}

std::vector<Step> Opened(std::vector<Step> rest) {
  std::vector<Step> steps{{'>', "S", 0, 0, 0, 0}, {'<', "SA", 0, 1, 0, 10}, {'>', "A", 1, 1, 0, 20}};
  steps.insert(steps.end(), rest.begin(), rest.end());
  return steps;
}

const std::vector<Talk>& Talks() {
  static const std::vector<Talk> talks{
      {"a sound connection",
       Opened({{'>', "A", 1, 1, 100, 30},
               {'<', "A", 1, 101, 0, 40},
               {'<', "A", 1, 101, 500, 50},
               {'>', "A", 101, 501, 0, 60},
               {'>', "FA", 101, 501, 0, 70},
               {'<', "FA", 501, 102, 0, 80},
               {'>', "A", 102, 502, 0, 90}}),
       ""},
      {"a segment sent again",
       Opened({{'>', "A", 1, 1, 100, 30}, {'>', "A", 1, 1, 100, 330}, {'<', "A", 1, 101, 0, 340}}),
       "TCP_RETRANSMISSION"},
      {"sent again, at once", Opened({{'>', "A", 1, 1, 100, 30}, {'>', "A", 1, 1, 100, 31}}), "TCP_RETRANSMISSION"},
      {"sent again with more",
       Opened({{'>', "A", 1, 1, 100, 30}, {'>', "A", 1, 1, 150, 330}, {'>', "A", 151, 1, 10, 340}}),
       "TCP_RETRANSMISSION"},
      {"a first segment sent again", {{'>', "S", 0, 0, 0, 0}, {'>', "S", 0, 0, 0, 1000}}, "TCP_RETRANSMISSION"},
      {"an end sent again", Opened({{'>', "FA", 1, 1, 0, 30}, {'>', "FA", 1, 1, 0, 330}}), "TCP_RETRANSMISSION"},
      {"two that change places",
       Opened({{'>', "A", 101, 1, 100, 30}, {'>', "A", 1, 1, 100, 31}, {'>', "A", 201, 1, 10, 32}}),
       "TCP_OUT_OF_ORDER TCP_SEGMENT_MISSING"},
      {"lost before the capture, and sent again", Opened({{'>', "A", 101, 1, 100, 30}, {'>', "A", 1, 1, 100, 330}}),
       "TCP_RETRANSMISSION TCP_SEGMENT_MISSING"},
      {"lost before the capture, and sent again as it was asked for",
       Opened({{'>', "A", 1, 1, 100, 30},
               {'<', "A", 1, 101, 0, 31},
               {'>', "A", 201, 1, 100, 32},
               {'<', "A", 1, 101, 0, 33},
               {'>', "A", 301, 1, 100, 34},
               {'<', "A", 1, 101, 0, 35},
               {'>', "A", 401, 1, 100, 36},
               {'<', "A", 1, 101, 0, 37},
               {'>', "A", 101, 1, 100, 38}}),
       "TCP_RETRANSMISSION TCP_SEGMENT_MISSING TCP_REPEATED_ACK"},
      {"a gap that comes to be late after the last segment",
       Opened({{'>', "A", 1, 1, 100, 30}, {'>', "A", 201, 1, 100, 900}, {'>', "A", 101, 1, 100, 901}}),
       "TCP_OUT_OF_ORDER TCP_SEGMENT_MISSING"},
      {"an acknowledgement that may be what is missing",
       Opened({{'>', "A", 1, 1, 100, 30}, {'<', "A", 51, 101, 10, 900}}), "TCP_SEGMENT_MISSING"},
      {"a gap filled in two parts, then sent again",
       Opened({{'>', "A", 101, 1, 100, 30},
               {'>', "A", 1, 1, 50, 31},
               {'>', "A", 51, 1, 50, 32},
               {'>', "A", 51, 1, 50, 33}}),
       "TCP_RETRANSMISSION TCP_OUT_OF_ORDER*2 TCP_SEGMENT_MISSING"},
      {"keep-alives with and without a byte, and their acknowledgements",
       Opened({{'>', "A", 1, 1, 10, 30},
               {'<', "A", 1, 11, 0, 40},
               {'>', "A", 10, 1, 1, 10000},
               {'<', "A", 1, 11, 0, 10010},
               {'>', "A", 10, 1, 0, 20000},
               {'<', "A", 1, 11, 0, 20010},
               {'>', "A", 11, 1, 10, 20020}}),
       ""},
      {"acknowledgements that ask for what is lost",
       Opened({{'<', "A", 1, 1, 100, 30},
               {'>', "A", 1, 101, 0, 40},
               {'<', "A", 101, 1, 100, 50},
               {'<', "A", 201, 1, 100, 51},
               {'>', "A", 1, 101, 0, 60},
               {'>', "A", 1, 101, 0, 61},
               {'>', "A", 1, 101, 0, 62},
               {'>', "A", 1, 101, 0, 63}}),
       "TCP_REPEATED_ACK"},
      {"a window that opens is no repeated acknowledgement",
       Opened({{'<', "A", 1, 1, 100, 30},
               {'<', "A", 101, 1, 100, 30},
               {'>', "A", 1, 101, 0, 40, 900},
               {'>', "A", 1, 101, 0, 41, 910},
               {'>', "A", 1, 101, 0, 42, 920},
               {'>', "A", 1, 101, 0, 43, 930}}),
       ""},
      {"no room, and probes into it",
       Opened({{'>', "A", 1, 1, 100, 30},
               {'<', "A", 1, 101, 0, 40, 0},
               {'>', "A", 100, 1, 1, 50},
               {'<', "A", 1, 101, 0, 60, 0},
               {'<', "A", 1, 101, 0, 70, 900},
               {'<', "A", 1, 101, 0, 80, 0}}),
       "TCP_ZERO_WINDOW*2"},
      {"an acknowledgement that took long", Opened({{'>', "A", 1, 1, 100, 30}, {'<', "A", 1, 101, 0, 531}}),
       "TCP_SLOW_ACK"},
      {"none can tell which of two is acknowledged",
       Opened({{'>', "A", 1, 1, 100, 30}, {'>', "A", 1, 1, 100, 330}, {'<', "A", 1, 101, 0, 900}}),
       "TCP_RETRANSMISSION"},
      {"refused", {{'>', "S", 0, 0, 0, 0}, {'<', "RA", 0, 1, 0, 1}}, "TCP_CONNECTION_REFUSED"},
      {"reset twice", Opened({{'<', "R", 1, 0, 0, 30}, {'<', "R", 1, 0, 0, 31}}), "TCP_CONNECTION_RESET"},
      {"slow to open",
       {{'>', "S", 0, 0, 0, 0}, {'<', "SA", 0, 1, 0, 400}, {'>', "A", 1, 1, 0, 501}},
       "TCP_SLOW_CONNECTION"},
      {"another attempt with other numbers",
       {{'>', "S", 0, 0, 0, 0}, {'>', "S", 70000, 0, 0, 100}, {'>', "A", 70001, 1, 10, 110}},
       ""},
      {"joined in the middle", {{'<', "A", 500, 900, 100, 0}, {'>', "A", 900, 600, 10, 1}}, ""},
      {"a server that thinks",
       Opened({{'>', "A", 1, 1, 100, 30}, {'<', "A", 1, 101, 0, 40}, {'<', "A", 1, 101, 10, 2031}}), "BUSY_SERVER"},
      {"a long answer in drops",
       Opened({{'>', "A", 1, 1, 100, 30},
               {'<', "A", 1, 101, 33000, 40},
               {'>', "A", 101, 33001, 0, 50},
               {'<', "A", 33001, 101, 33000, 6000},
               {'>', "A", 101, 66001, 100, 6010}}),
       "TCP_LOW_THROUGHPUT"},
      {"a long answer in time",
       Opened({{'>', "A", 1, 1, 100, 30},
               {'<', "A", 1, 101, 33000, 40},
               {'<', "A", 33001, 101, 33000, 4000},
               {'<', "FA", 66001, 101, 0, 4010}}),
       ""},
  };
  return talks;
}

TEST(ExpertTcp, TellsWhatGoesWrong) {
  // The first numbers of both sides: small ones, and such that they wrap around in the middle.
  for (std::uint32_t base : {1000U, 0xFFFFFFFFU, 0xFFFFFFF0U, 0x7FFFFFC0U}) {
    for (const Talk& talk : Talks()) {
      ExpertFixture expert;
      Play(talk.steps, base, base - 77, &expert);
      EXPECT_EQ(expert.Events(), talk.events) << talk.what << " from " << base;
      EXPECT_EQ(expert.Rows().size(), 1U) << talk.what;
    }
  }
}

TEST(ExpertTcp, CountsForTheRow) {
  ExpertFixture expert;
  Play(Opened({{'>', "A", 1, 1, 100, 30},
               {'>', "A", 1, 1, 100, 330},
               {'<', "A", 1, 101, 50, 430},
               {'<', "A", 101, 101, 50, 431},
               {'<', "A", 51, 101, 50, 432},
               {'>', "A", 101, 151, 1, 2500},
               {'<', "A", 151, 102, 1, 2504, 0},
               {'<', "RA", 152, 102, 0, 2506}}),
       1, 1, &expert);
  FlowRow row = expert.Rows().at(0);
  EXPECT_EQ(row.packets, (std::array<std::uint32_t, 2>{5, 6}));
  EXPECT_EQ(row.bytes, (std::array<std::uint64_t, 2>{5 * 54 + 201, 6 * 54 + 151}));
  EXPECT_EQ(row.retransmissions, (std::array<std::uint32_t, 2>{1, 0}));
  EXPECT_EQ(row.out_of_order, 1U);
  EXPECT_EQ(row.missing, 1U);
  EXPECT_EQ(row.zero_windows, 1U);
  EXPECT_EQ(row.resets, 1U);
  EXPECT_EQ(row.connect_time, 20'000U);
  // The wait for an answer goes back to the first time that the request was sent.
  EXPECT_EQ(row.responses.count(), 2U);
  EXPECT_EQ(row.responses.worst, 400'000U);
  EXPECT_EQ(row.responses.best, 4'000U);
  EXPECT_EQ(row.responses.sum, 404'000U);
  // Of the two seconds of silence, one is active time.
  EXPECT_EQ(row.active_time, (432 + 1000 + 6) * kMillisecond);
  EXPECT_EQ(row.last_time - row.first_time, 2506 * kMillisecond);
  EXPECT_EQ(row.severity, EventSeverity::kMajor);
  EXPECT_EQ(row.events, 5U);  // sent again, gap, out of order, zero window, reset
}

TEST(ExpertTcp, TakesLengthsFromTheHeaders) {
  // Captured without their payload, in IPv4 and in IPv6, and a frame recorded before it was cut into segments.
  Buffer payload = Zeros(1000);
  auto header = [&](std::uint32_t sequence) { return TcpHeader(40000, 5000, sequence, 1, TcpSegment::kAck); };
  ExpertFixture expert;
  for (std::uint32_t sequence : {1U, 1001U, 2001U}) {
    Buffer ipv4 = Ethernet(Mac(1), Mac(2), 0x0800, Ipv4(Ip4(1), Ip4(2), 6, header(sequence) + payload));
    Buffer ipv6 = Ethernet(Mac(1), Mac(2), 0x86DD, Ipv6(Ip6(1), Ip6(2), 6, header(sequence) + payload));
    if (sequence == 1001) ipv4[16] = ipv4[17] = 0;
    if (sequence == 1001) ipv6[18] = ipv6[19] = 0;
    for (Buffer frame : {ipv4, ipv6}) {
      auto length = static_cast<std::uint32_t>(frame.size());
      frame.resize(frame.size() - payload.size());
      expert.Feed(frame, sequence, length);
    }
  }
  EXPECT_EQ(expert.Events(), "");
  EXPECT_EQ(expert.Rows().size(), 2U);
}

TEST(ExpertTcp, StaysWithinWhateverBytesThereAre) {
  Buffer whole = Ipv4(Ip4(1), Ip4(2), 6, TcpHeader(40000, 80, 1, 1, TcpSegment::kAck) + Text("HTTP/1.1 404 Not"));
  for (std::size_t length = 0; length <= whole.size(); ++length) {
    Buffer frame = Ethernet(Mac(1), Mac(2), 0x0800, Buffer(whole.begin(), whole.begin() + static_cast<long>(length)));
    ExpertFixture expert;
    expert.Feed(frame);
    expert.Feed(frame, 1, 2000);
  }
}

}  // namespace
}  // namespace orvo::test
