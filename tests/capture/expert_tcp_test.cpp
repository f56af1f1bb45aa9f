#include <gtest/gtest.h>

#include <cctype>
#include <sstream>

#include "tests/capture/expert_fixture.h"

namespace orvo::test {
namespace {

constexpr char kClientSide = '>';

/// One segment; sequence numbers are relative to the first of each side.
struct Step {
  double milliseconds = 0;
  char from = 0;           ///< '>' for the client, '<' for the server
  std::string flags = "";  ///< S, F, R and A
  std::uint32_t sequence = 0;
  std::uint32_t acknowledgement = 0;
  unsigned length = 0;
  unsigned window = 1000;
};

/// Segments in the form "30>A1,101+100w900": at 30 ms, from the client, ACK, sequence 1, acknowledging 101, with 100
/// bytes of payload and a window of 900. No payload and a window of 1000 need not be told.
std::vector<Step> Steps(const std::string& text) {
  std::vector<Step> steps;
  std::istringstream words(text);
  for (std::string word; words >> word;) {
    Step& step = steps.emplace_back();
    std::istringstream in(word);
    in >> step.milliseconds >> step.from;
    while (std::isalpha(in.peek()) != 0) step.flags += static_cast<char>(in.get());
    char mark = 0;
    in >> step.sequence >> mark >> step.acknowledgement;
    while (in >> mark) in >> (mark == '+' ? step.length : step.window);
  }
  return steps;
}

struct Talk {
  const char* what;
  std::vector<Step> steps;
  const char* events;
};

std::uint8_t FlagsOf(const std::string& letters) {
  std::uint8_t flags = 0;
  for (auto [letter, flag] :
       {std::pair('S', TcpSegment::kSyn), {'F', TcpSegment::kFin}, {'R', TcpSegment::kRst}, {'A', TcpSegment::kAck}}) {
    if (letters.find(letter) != letters.npos) flags |= flag;
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

std::vector<Step> Opened(const std::string& rest) {
  return Steps("0>S0,0 10<SA0,1 20>A1,1 " + rest);
}

const std::vector<Talk>& Talks() {
  static const std::vector<Talk> talks{
      {"a sound connection",
       Opened("30>A1,1+100 40<A1,101 50<A1,101+500 60>A101,501 70>FA101,501 80<FA501,102 90>A102,502"), ""},
      {"a segment sent again", Opened("30>A1,1+100 330>A1,1+100 340<A1,101"), "TCP_RETRANSMISSION"},
      {"sent again, at once", Opened("30>A1,1+100 31>A1,1+100"), "TCP_RETRANSMISSION"},
      {"sent again with more", Opened("30>A1,1+100 330>A1,1+150 340>A151,1+10"), "TCP_RETRANSMISSION"},
      {"a first segment sent again", Steps("0>S0,0 1000>S0,0"), "TCP_RETRANSMISSION"},
      {"an end sent again", Opened("30>FA1,1 330>FA1,1"), "TCP_RETRANSMISSION"},
      {"two that change places", Opened("30>A101,1+100 31>A1,1+100 32>A201,1+10"),
       "TCP_OUT_OF_ORDER TCP_SEGMENT_MISSING"},
      {"lost before the capture, and sent again", Opened("30>A101,1+100 330>A1,1+100"),
       "TCP_RETRANSMISSION TCP_SEGMENT_MISSING"},
      {"lost before the capture, and sent again as it was asked for",
       Opened("30>A1,1+100 31<A1,101 32>A201,1+100 33<A1,101 34>A301,1+100 35<A1,101 36>A401,1+100 37<A1,101 "
              "38>A101,1+100"),
       "TCP_RETRANSMISSION TCP_SEGMENT_MISSING TCP_REPEATED_ACK"},
      {"a gap that comes to be late after the last segment", Opened("30>A1,1+100 900>A201,1+100 901>A101,1+100"),
       "TCP_OUT_OF_ORDER TCP_SEGMENT_MISSING"},
      {"an acknowledgement that may be what is missing", Opened("30>A1,1+100 900<A51,101+10"), "TCP_SEGMENT_MISSING"},
      {"a gap filled in two parts, then sent again", Opened("30>A101,1+100 31>A1,1+50 32>A51,1+50 33>A51,1+50"),
       "TCP_RETRANSMISSION TCP_OUT_OF_ORDER*2 TCP_SEGMENT_MISSING"},
      {"keep-alives with and without a byte, and their acknowledgements",
       Opened("30>A1,1+10 40<A1,11 10000>A10,1+1 10010<A1,11 20000>A10,1 20010<A1,11 20020>A11,1+10"), ""},
      {"acknowledgements that ask for what is lost",
       Opened("30<A1,1+100 40>A1,101 50<A101,1+100 51<A201,1+100 60>A1,101 61>A1,101 62>A1,101 63>A1,101"),
       "TCP_REPEATED_ACK"},
      {"a window that opens is no repeated acknowledgement",
       Opened("30<A1,1+100 30<A101,1+100 40>A1,101w900 41>A1,101w910 42>A1,101w920 43>A1,101w930"), ""},
      {"no room, and probes into it",
       Opened("30>A1,1+100 40<A1,101w0 50>A100,1+1 60<A1,101w0 70<A1,101w900 80<A1,101w0"), "TCP_ZERO_WINDOW*2"},
      {"an acknowledgement that took long", Opened("30>A1,1+100 531<A1,101"), "TCP_SLOW_ACK"},
      {"none can tell which of two is acknowledged", Opened("30>A1,1+100 330>A1,1+100 900<A1,101"),
       "TCP_RETRANSMISSION"},
      {"refused", Steps("0>S0,0 1<RA0,1"), "TCP_CONNECTION_REFUSED"},
      {"reset twice", Opened("30<R1,0 31<R1,0"), "TCP_CONNECTION_RESET"},
      {"slow to open", Steps("0>S0,0 400<SA0,1 501>A1,1"), "TCP_SLOW_CONNECTION"},
      {"another attempt with other numbers", Steps("0>S0,0 100>S70000,0 110>A70001,1+10"), ""},
      {"joined in the middle", Steps("0<A500,900+100 1>A900,600+10"), ""},
      {"a server that thinks", Opened("30>A1,1+100 40<A1,101 2031<A1,101+10"), "BUSY_SERVER"},
      {"a long answer in drops",
       Opened("30>A1,1+100 40<A1,101+33000 50>A101,33001 6000<A33001,101+33000 6010>A101,66001+100"),
       "TCP_LOW_THROUGHPUT"},
      {"a long answer in time", Opened("30>A1,1+100 40<A1,101+33000 4000<A33001,101+33000 4010<FA66001,101"), ""},
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
  Play(Opened("30>A1,1+100 330>A1,1+100 430<A1,101+50 431<A101,101+50 432<A51,101+50 2500>A101,151+1 "
              "2504<A151,102+1w0 2506<RA152,102"),
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
