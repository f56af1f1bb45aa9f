#include "capture/classify/flow_table.h"

#include <gtest/gtest.h>

#include <deque>
#include <map>
#include <random>

#include "capture/decode/protocol_registry.h"
#include "tests/capture/frames.h"

namespace orvo::test {
namespace {

constexpr std::uint8_t kFin = 1, kSyn = 2, kRst = 4, kPush = 8, kAck = 16;

/// The flow packet of a frame; with protocol 0 when it is of no flow.
FlowPacket Read(const Buffer& frame, std::uint64_t time = kNewYear) {
  PacketFacts facts = Decoded(MakePacket(frame));
  FlowPacket packet;
  return packet.Read(facts, time) ? packet : FlowPacket{};
}

Buffer TcpFrame(bool forth, std::uint8_t flags, const Buffer& payload = {}, unsigned port = 4000) {
  return Ethernet(Mac(1), Mac(2), 0x0800,
                  forth ? Ipv4(Ip4(1), Ip4(2), 6, Tcp(port, 80, flags, payload))
                        : Ipv4(Ip4(2), Ip4(1), 6, Tcp(80, port, flags, payload)));
}

/// A packet of the flow of that number, of which there are many.
FlowPacket Numbered(unsigned number, std::uint64_t time = kNewYear) {
  FlowPacket packet;
  packet.key.ports = {static_cast<std::uint16_t>(number), 53};
  packet.key.ip_protocol = 17;
  packet.key.ip_version = 4;
  packet.time = time;
  return packet;
}

TEST(FlowPacket, GivesBothDirectionsOneKey) {
  const std::pair<Buffer, Buffer> pairs[] = {
      {Ipv4(Ip4(1), Ip4(2), 17, Udp(5000, 53)), Ipv4(Ip4(2), Ip4(1), 17, Udp(53, 5000))},
      {Ipv4(Ip4(1), Ip4(1), 6, Tcp(5000, 53)), Ipv4(Ip4(1), Ip4(1), 6, Tcp(53, 5000))},
  };
  for (const auto& [there, back] : pairs) {
    FlowPacket first = Read(Ethernet(Mac(1), Mac(2), 0x0800, there));
    FlowPacket second = Read(Ethernet(Mac(2), Mac(1), 0x8100, Vlan(0x0800, back)));
    EXPECT_NE(first.key.ip_protocol, 0);
    EXPECT_TRUE(first.key == second.key);
    EXPECT_NE(first.from_first, second.from_first);
  }
  FlowPacket ipv6 = Read(Ethernet(Mac(1), Mac(2), 0x86DD, Ipv6(Ip6(1), Ip6(2), 17, Udp(5000, 53))));
  FlowPacket back = Read(Ethernet(Mac(1), Mac(2), 0x86DD, Ipv6(Ip6(2), Ip6(1), 17, Udp(53, 5000))));
  EXPECT_EQ(ipv6.key.ip_version, 6);
  EXPECT_TRUE(ipv6.key == back.key);
  EXPECT_FALSE(ipv6.key == Read(Ethernet(Mac(1), Mac(2), 0x86DD, Ipv6(Ip6(1), Ip6(3), 17, Udp(5000, 53)))).key);
}

TEST(FlowPacket, IsOfNoFlowWithoutPorts) {
  for (const Buffer& datagram : {
           Ipv4(Ip4(1), Ip4(2), 1, Icmp(8)),
           Ipv4(Ip4(1), Ip4(2), 17, Zeros(24), 100),  // a later fragment
           Ipv4(Ip4(1), Ip4(2), 17, Zeros(3)),
       }) {
    EXPECT_EQ(Read(Ethernet(Mac(1), Mac(2), 0x0800, datagram)).key.ip_protocol, 0);
  }
  // In a tunnel the inner datagram's ends are meant.
  Buffer inner = Ipv4(Ip4(3), Ip4(4), 17, Udp(5000, 53));
  FlowPacket tunnelled = Read(Ethernet(Mac(1), Mac(2), 0x0800, Ipv4(Ip4(1), Ip4(2), 4, inner)));
  EXPECT_TRUE(tunnelled.key == Read(Ethernet(Mac(1), Mac(2), 0x0800, inner)).key);
}

TEST(FlowTable, EndsConnectionsAndBeginsThemAnew) {
  int ended = 0;
  FlowTable table(100, [&](Flow&) { ++ended; });
  auto enter = [&](bool forth, std::uint8_t flags, const Buffer& payload = {}, std::uint64_t later = 0) -> Flow& {
    return table[table.Enter(Read(TcpFrame(forth, flags, payload), kNewYear + later))];
  };
  enter(true, kSyn);
  enter(true, kSyn);  // repeated
  enter(false, kSyn | kAck);
  EXPECT_EQ(table.begun(), 1U);
  EXPECT_TRUE(enter(true, kAck | kPush, {1, 2}).had_payload);
  EXPECT_FALSE(enter(true, kFin | kAck).ended);
  EXPECT_TRUE(enter(false, kFin | kAck).ended);
  EXPECT_TRUE(enter(true, kAck).ended);  // the last acknowledgement is still the flow's
  EXPECT_EQ(table.begun(), 1U);
  EXPECT_FALSE(enter(true, kSyn).ended);
  EXPECT_EQ(table.begun(), 2U);
  EXPECT_EQ(ended, 1);
  EXPECT_FALSE(enter(true, kPush, {1}).ended);
  enter(true, kSyn);  // a new connection although the end of the one before was not seen
  EXPECT_EQ(table.begun(), 3U);
  EXPECT_TRUE(enter(false, kRst).ended);
  // Ended flows go early, with whatever packet comes next.
  table.Enter(Numbered(1, kNewYear + FlowTable::kLingerTime));
  EXPECT_EQ(table.size(), 1U);
  EXPECT_EQ(ended, 3);
}

TEST(FlowTable, ForgetsWhatIsIdle) {
  FlowTable table(100, [](Flow&) {});
  for (unsigned i = 0; i < 10; ++i) table.Enter(Numbered(i, kNewYear + i));
  table.Enter(Numbered(0, kNewYear + 20));
  std::uint64_t later = kNewYear + FlowTable::kIdleTime + 9;
  for (int i = 0; i < 5; ++i) table.Enter(Numbered(0, later));
  EXPECT_EQ(table.size(), 1U);
  EXPECT_EQ(table.begun(), 10U);
  table.Enter(Numbered(0, later + FlowTable::kIdleTime));
  EXPECT_EQ(table.begun(), 11U);
  // Packets with older times change nothing of that.
  table.Enter(Numbered(0, kNewYear));
  EXPECT_EQ(table.begun(), 11U);
}

TEST(FlowTable, GivesUpTheOneThatIsIdleForLongest) {
  std::vector<int> gone;
  FlowTable table(3, [&](Flow& flow) { gone.push_back(flow.key.ports[0]); });
  for (unsigned i : {1U, 2U, 3U, 1U, 4U}) table.Enter(Numbered(i));
  EXPECT_EQ(gone, (std::vector<int>{2}));
  EXPECT_EQ(table.given_up(), 1U);
  FlowPacket reset = Numbered(1);
  reset.tcp_flags = kRst;
  table.Enter(reset);
  table.Enter(Numbered(5));  // the ended one goes first, and was not given up
  EXPECT_EQ(gone, (std::vector<int>{2, 1}));
  EXPECT_EQ(table.given_up(), 1U);
  EXPECT_EQ(table.size(), 3U);
}

// A table so small that keys collide all the time, beside a plain list.
TEST(FlowTable, KeepsFlowsApartWhateverComesAndGoes) {
  constexpr std::size_t kLimit = 40;
  std::size_t ended = 0;
  {
    FlowTable table(kLimit, [&](Flow&) { ++ended; });
    std::deque<std::uint16_t> expected;  // in the order of their use
    std::mt19937 random(7);
    for (int i = 0; i < 50'000; ++i) {
      auto number = static_cast<std::uint16_t>(random() % 60);
      auto found = std::find(expected.begin(), expected.end(), number);
      std::uint64_t begun = table.begun();
      Flow& flow = table[table.Enter(Numbered(number))];
      ASSERT_EQ(flow.key.ports[0], number);
      ASSERT_EQ(table.begun() != begun, found == expected.end()) << "after " << i;
      if (found != expected.end()) {
        expected.erase(found);
      } else if (expected.size() == kLimit) {
        expected.pop_front();
      }
      expected.push_back(number);
      ASSERT_EQ(table.size(), expected.size());
    }
    EXPECT_EQ(ended, table.begun() - kLimit);
    ended = static_cast<std::size_t>(table.begun()) - ended;
  }
  EXPECT_EQ(ended, 2 * kLimit);
}

}  // namespace
}  // namespace orvo::test
