#include <gtest/gtest.h>

#include "tests/capture/expert_fixture.h"

namespace orvo::test {
namespace {

/// A reply that 10.0.0.`ip` is at 02:00:00:00:00:`mac`.
Buffer ArpReply(std::uint8_t mac, std::uint8_t ip) {
  return Ethernet(Mac(9), Mac(mac), 0x0806,
                  Be16(1) + Be16(0x0800) + Buffer{6, 4} + Be16(2) + Mac(mac) + Ip4(ip) + Mac(9) + Ip4(9));
}

Buffer NeighbourAdvertisement(std::uint8_t mac, std::uint8_t ip) {
  Buffer message = Buffer{136, 0, 0, 0, 0x60, 0, 0, 0} + Ip6(ip) + Buffer{2, 1} + Mac(mac);
  return Ethernet(Mac(9), Mac(mac), 0x86DD, Ipv6(Ip6(ip), Ip6(9), 58, message));
}

TEST(ExpertNetwork, TellsTakenAddressesFromContestedOnes) {
  constexpr double kMinute = 60'000;
  struct Case {
    Buffer (*claim)(std::uint8_t mac, std::uint8_t ip);
    const char* moved;
    const char* contested;
  };
  for (auto [claim, moved, contested] : {Case{ArpReply, "ARP_CONFLICT", "ARP_CONFLICT DUPLICATE_ADDRESS*2"},
                                         Case{NeighbourAdvertisement, "", "DUPLICATE_ADDRESS*2"}}) {
    ExpertFixture expert;
    expert.Feed(claim(1, 5), 0);
    expert.Feed(claim(1, 5), 1);
    expert.Feed(claim(2, 6), 2);  // another address
    EXPECT_EQ(expert.Events(), "");
    expert.Feed(claim(2, 5), 3);
    expert.Feed(claim(2, 5), 4);
    EXPECT_EQ(expert.Events(), moved);
    expert.Feed(claim(1, 5), 5);
    expert.Feed(claim(2, 5), 6);
    EXPECT_EQ(expert.Events(), contested);
    // Back after a while: moved, not contested.
    expert.Feed(claim(1, 5), 2 * kMinute);
    EXPECT_EQ(expert.Events().find("DUPLICATE_ADDRESS*3"), std::string::npos);
  }
}

TEST(ExpertNetwork, SaysWhoClaimsWhat) {
  ExpertFixture expert;
  expert.Feed(ArpReply(1, 5));
  expert.Feed(ArpReply(2, 5));
  FrozenEvents events = expert.analysis.Freeze().events;
  ASSERT_EQ(events.size(), 1U);
  EXPECT_EQ(events[0].source.bytes[5], 2);
  EXPECT_EQ(events[0].source.type, kAddressPhysical);
  EXPECT_EQ(events[0].destination.bytes[3], 5);
  EXPECT_EQ(events[0].destination.type, kAddressIp);
  EXPECT_EQ(events[0].flow, 0U);
}

TEST(ExpertNetwork, AsksBeforeItBelieves) {
  ExpertFixture expert;
  Buffer probe = Ethernet(BroadcastMac(), Mac(1), 0x0806,
                          Be16(1) + Be16(0x0800) + Buffer{6, 4} + Be16(1) + Mac(1) + Zeros(4) + Zeros(6) + Ip4(5));
  Buffer other_probe = probe;
  other_probe[11] = other_probe[27] = 2;
  expert.Feed(probe);
  expert.Feed(other_probe);
  for (std::size_t length = 14; length < 42; ++length) {
    Buffer cut = ArpReply(static_cast<std::uint8_t>(length), 5);
    cut.resize(length);
    if (length < 32) expert.Feed(cut);  // the sender's addresses are not whole
  }
  EXPECT_EQ(expert.Events(), "");
}

TEST(ExpertNetwork, HearsOfErrorsFromIcmp) {
  struct Case {
    Buffer message;
    bool ipv6;
    const char* events;
  };
  const Case cases[] = {
      {{3, 3, 0, 0, 0, 0, 0, 0}, false, "ICMP_UNREACHABLE"},
      {{3, 4, 0, 0, 0, 0, 0, 0}, false, "ICMP_PACKET_TOO_BIG"},
      {{11, 0, 0, 0, 0, 0, 0, 0}, false, "ICMP_TIME_EXCEEDED"},
      {{8, 0, 0, 0, 0, 0, 0, 0}, false, ""},
      {{5, 0, 0, 0, 0, 0, 0, 0}, false, ""},
      {{1, 4, 0, 0, 0, 0, 0, 0}, true, "ICMP_UNREACHABLE"},
      {{2, 0, 0, 0, 0, 0, 0, 0}, true, "ICMP_PACKET_TOO_BIG"},
      {{3, 0, 0, 0, 0, 0, 0, 0}, true, "ICMP_TIME_EXCEEDED"},
      {{128, 0, 0, 0, 0, 0, 0, 0}, true, ""},
      {{3}, false, ""},
      {{1}, true, ""},
  };
  for (const Case& c : cases) {
    ExpertFixture expert;
    expert.Feed(c.ipv6 ? Ethernet(Mac(1), Mac(2), 0x86DD, Ipv6(Ip6(1), Ip6(2), 58, c.message))
                       : Ethernet(Mac(1), Mac(2), 0x0800, Ipv4(Ip4(1), Ip4(2), 1, c.message)));
    EXPECT_EQ(expert.Events(), c.events);
  }
}

TEST(ExpertNetwork, CountsFragments) {
  ExpertFixture expert;
  expert.Feed(Ethernet(Mac(1), Mac(2), 0x0800, Ipv4(Ip4(1), Ip4(2), 17, Udp(9, 9, Zeros(16)), 0x2000)));
  expert.Feed(Ethernet(Mac(1), Mac(2), 0x0800, Ipv4(Ip4(1), Ip4(2), 17, Zeros(16), 3)));
  // A fragment's length is not its segment's.
  for (double at : {0.0, 1.0}) {
    Buffer tcp = TcpHeader(40000, 80, 1, 1, TcpSegment::kAck) + Zeros(12);
    expert.Feed(Ethernet(Mac(1), Mac(2), 0x0800, Ipv4(Ip4(1), Ip4(2), 6, tcp, 0x2000)), at);
  }
  EXPECT_EQ(expert.Events(), "IP_FRAGMENT*4");
}

TEST(ExpertNetwork, NoticesFloodsOfBroadcasts) {
  Buffer broadcast = Ethernet(BroadcastMac(), Mac(1), 0x9999, Zeros(46));
  ExpertFixture expert;
  for (int i = 0; i < 1000; ++i) expert.Feed(broadcast, 0.5 * i);
  for (int i = 0; i < 1000; ++i) expert.Feed(broadcast, 1000 + 0.5 * i);
  EXPECT_EQ(expert.Events(), "");
  for (int i = 0; i < 1500; ++i) expert.Feed(broadcast, 2000 + 0.5 * i);
  EXPECT_EQ(expert.Events(), "BROADCAST_STORM");
  for (int i = 0; i < 1500; ++i) expert.Feed(broadcast, 3000 + 0.5 * i);
  EXPECT_EQ(expert.Events(), "BROADCAST_STORM*2");
}

}  // namespace
}  // namespace orvo::test
