#include <gtest/gtest.h>

#include <algorithm>

#include "tests/capture/describe_packet.h"

namespace orvo::test {
namespace {

struct Sample {
  std::uint32_t link;
  Buffer frame;
  std::string found;
};

constexpr std::uint32_t kRaw = 101;
const std::string kMacs = " 02:00:00:00:00:01->02:00:00:00:00:02";
const std::string kIps = " 10.0.0.1->10.0.0.2";
const std::string kIp6s = " 2001:db8::1->2001:db8::2";

Buffer Eth(unsigned type, const Buffer& payload) {
  return Ethernet(Mac(2), Mac(1), type, payload);
}
Buffer Dns4() {
  return Ipv4(Ip4(1), Ip4(2), 17, Udp(5000, 53, Zeros(4)));
}
Buffer Dns6() {
  return Ipv6(Ip6(1), Ip6(2), 17, Udp(5000, 53, Zeros(4)));
}
/// Inner packets have addresses that must not be counted.
Buffer Inner4() {
  return Ipv4(Ip4(8), Ip4(9), 6, Tcp(40000, 80));
}
Buffer Inner6() {
  return Ipv6(Ip6(8), Ip6(9), 6, Tcp(40000, 80));
}
Buffer InnerEthernet() {
  return Ethernet(Mac(9), Mac(8), 0x0800, Inner4());
}
Buffer Ip(std::uint8_t protocol, const Buffer& payload) {
  return Ipv4(Ip4(1), Ip4(2), protocol, payload);
}
Buffer Tunnel(unsigned port, const Buffer& payload) {
  return Ip(17, Udp(50000, port, payload));
}
Buffer Snap(std::uint32_t organisation, unsigned number, const Buffer& payload) {
  return Buffer{0xAA,
                0xAA,
                3,
                static_cast<std::uint8_t>(organisation >> 16),
                static_cast<std::uint8_t>(organisation >> 8),
                static_cast<std::uint8_t>(organisation)} +
         Be16(number) + payload;
}

std::vector<Sample> LinkSamples() {
  auto cooked = [](unsigned type, unsigned hardware, unsigned length, unsigned protocol, const Buffer& payload) {
    return Be16(type) + Be16(hardware) + Be16(length) + Mac(1) + Zeros(2) + Be16(protocol) + payload;
  };
  auto cooked2 = [](std::uint8_t type, std::uint8_t length, unsigned protocol, const Buffer& payload) {
    return Be16(protocol) + Zeros(6) + Be16(1) + Buffer{type, length} + Mac(1) + Zeros(2) + payload;
  };
  std::string ip4 = ">IPv4>UDP>DNS";
  std::string ends = kIps + " 5000>53";
  return {
      {113, cooked(0, 1, 6, 0x0800, Dns4()), "Linux Cooked" + ip4 + " 02:00:00:00:00:01->" + ends},
      {113, cooked(1, 1, 6, 0x0806, Arp()), "Linux Cooked>ARP 02:00:00:00:00:01=>*"},
      {113, cooked(2, 1, 6, 0x8100, Vlan(0x86DD, Dns6())),
       "Linux Cooked>IPv6>UDP>DNS 02:00:00:00:00:01=>+" + kIp6s + " 5000>53 tags=1"},
      {113, cooked(0, 772, 6, 0x0800, Dns4()), "Linux Cooked" + ip4 + ends},  // loopback
      {113, cooked(4, 65534, 0, 0x0800, Dns4()), "Linux Cooked" + ip4 + ends},
      {113, cooked(4, 776, 4, 0x86DD, Dns6()), "Linux Cooked>IPv6>UDP>DNS" + kIp6s + " 5000>53"},
      {113, cooked(4, 824, 0, 0x0800, Dns4()), "Linux Cooked"},  // netlink
      {113, cooked(2, 1, 6, 4, Buffer{0x42, 0x42, 3} + Zeros(35)), "Linux Cooked>LLC>STP 02:00:00:00:00:01=>+"},
      {276, cooked2(0, 6, 0x0800, Dns4()), "Linux Cooked 2" + ip4 + " 02:00:00:00:00:01->" + ends},
      {kRaw, Dns4(), "Raw IP" + ip4 + ends},
      {12, Dns6(), "Raw IP>IPv6>UDP>DNS" + kIp6s + " 5000>53"},
      {14, Dns4(), "Raw IP" + ip4 + ends},
      {228, Dns4(), "Raw IP" + ip4 + ends},
      {229, Dns6(), "Raw IP>IPv6>UDP>DNS" + kIp6s + " 5000>53"},
      {kRaw, {0x50, 0, 0, 0}, "Raw IP malformed"},
      {0, Buffer{2, 0, 0, 0} + Dns4(), "Loopback" + ip4 + ends},
      {0, Buffer{0, 0, 0, 2} + Dns4(), "Loopback" + ip4 + ends},
      {0, Buffer{30, 0, 0, 0} + Dns6(), "Loopback>IPv6>UDP>DNS" + kIp6s + " 5000>53"},
      {108, Buffer{0, 0, 0, 24} + Dns6(), "Loopback>IPv6>UDP>DNS" + kIp6s + " 5000>53"},
      {9, Be16(0x0021) + Dns4(), "PPP" + ip4 + ends},
      {9, Be16(0xFF03) + Be16(0x0021) + Dns4(), "PPP" + ip4 + ends},
      {9, Buffer{0x21} + Dns4(), "PPP" + ip4 + ends},  // compressed protocol field
      {9, Be16(0xFF03) + Be16(0xC021) + Zeros(4), "PPP>LCP"},
      {50, Be16(0xFF03) + Be16(0x0057) + Dns6(), "PPP in HDLC>IPv6>UDP>DNS" + kIp6s + " 5000>53"},
      {104, Be16(0x0F00) + Be16(0x0800) + Dns4(), "PPP in HDLC" + ip4 + ends},
      {204, Buffer{1} + Be16(0xFF03) + Be16(0x0021) + Dns4(), "PPP with Direction" + ip4 + ends},
      {166, Be16(0x0103) + Be16(0x0021) + Dns4(), "PPP (pppd)" + ip4 + ends},
      {51, Be16(0x1100) + Be16(7) + Be16(static_cast<unsigned>(Dns4().size() + 2)) + Be16(0x0021) + Dns4(),
       "PPPoE>PPP" + ip4 + ends},
  };
}

std::vector<Sample> EthernetSamples() {
  Buffer ipx = Be16(0xFFFF) + Be16(34) + Buffer{0, 17} + Buffer{0, 0, 0, 1} + BroadcastMac() + Be16(0x0451) +
               Buffer{0, 0, 0, 2} + Mac(1) + Be16(0x4003) + Zeros(4);
  std::string ipx_ends = " 00000002.020000000001=>*00000001.ffffffffffff";
  Buffer ddp = Be16(17) + Zeros(2) + Be16(3) + Be16(0x0104) + Buffer{7, 8, 2, 2, 2} + Zeros(4);
  std::string ddp_ends = " 260.8->3.7";
  // Area 1, node 2 to area 3, node 4.
  Buffer decnet = Buffer{0x26, 0, 0} + Buffer{0xAA, 0, 4, 0, 4, 0x0C} + Zeros(2) + Buffer{0xAA, 0, 4, 0, 2, 4} +
                  Zeros(4) + Zeros(4);
  auto sized = [](const Buffer& message) { return Buffer{static_cast<std::uint8_t>(message.size()), 0} + message; };
  Buffer lldp = Be16(0x0207) + Buffer{4} + Mac(1) + Be16(0);
  auto mpls = [](std::uint8_t label, bool bottom) {
    return Buffer{0, 1, static_cast<std::uint8_t>((label << 4) | (bottom ? 1 : 0)), 64};
  };
  auto in_8023 = [](const Buffer& payload) { return Ieee8023(Mac(2), Mac(1), payload); };
  std::string dns = kMacs + kIps + " 5000>53";
  return {
      {1, Eth(0x88A8, Vlan(0x8100, Vlan(0x0800, Dns4()))), "Ethernet>IPv4>UDP>DNS" + dns + " tags=2"},
      {1, Eth(0x8100, Vlan(38, Buffer{0x42, 0x42, 3} + Zeros(35))), "Ethernet>802.3>STP" + kMacs + " tags=1"},
      {1, Eth(0x8847, mpls(1, false) + mpls(2, true) + Dns4()), "Ethernet>MPLS>IPv4>UDP>DNS" + dns},
      {1, Eth(0x8848, mpls(1, true) + Dns6()), "Ethernet>MPLS>IPv6>UDP>DNS" + kMacs + kIp6s + " 5000>53"},
      // The address of the inner frame is nobody's here, but its network header is the outermost.
      {1, Eth(0x8847, mpls(1, true) + Zeros(4) + InnerEthernet()),
       "Ethernet>MPLS>Ethernet>IPv4>TCP>HTTP" + kMacs + " 10.0.0.8->10.0.0.9 40000>80"},
      // A frame whose address begins like IPv4, and what makes no sense at all.
      {1, Eth(0x8847, mpls(1, true) + Ethernet({0x42, 0, 0, 0, 0, 1}, Mac(8), 0x0806, Arp())),
       "Ethernet>MPLS>Ethernet>ARP" + kMacs},
      {1, Eth(0x8847, mpls(1, true) + Zeros(40)), "Ethernet>MPLS" + kMacs},
      {1, Eth(0x8847, mpls(1, false)), "Ethernet>MPLS" + kMacs + " malformed"},
      {1, Eth(0x8864, Be16(0x1100) + Be16(7) + Be16(static_cast<unsigned>(Dns4().size() + 2)) + Be16(0x21) + Dns4()),
       "Ethernet>PPPoE>PPP>IPv4>UDP>DNS" + dns},
      {1, Eth(0x8863, Be16(0x1109) + Zeros(4) + Zeros(8)), "Ethernet>PPPoE Discovery" + kMacs},
      {1, Eth(0x8863, Be16(0x1209) + Zeros(4)), "Ethernet>PPPoE Discovery" + kMacs + " malformed"},
      {1, Eth(0x8137, ipx), "Ethernet>IPX>NCP" + kMacs + ipx_ends},
      {1, in_8023(ipx), "Ethernet>802.3>IPX>NCP" + kMacs + ipx_ends},
      {1, in_8023(Buffer{0xE0, 0xE0, 3} + ipx), "Ethernet>802.3>IPX>NCP" + kMacs + ipx_ends},
      {1, in_8023(Snap(0, 0x8137, ipx)), "Ethernet>802.3>SNAP>IPX>NCP" + kMacs + ipx_ends},
      {1, in_8023(Snap(0x080007, 0x809B, ddp)), "Ethernet>802.3>SNAP>AppleTalk>NBP" + kMacs + ddp_ends},
      {1, in_8023(Snap(0, 0x80F3, Be16(1) + Be16(0x809B) + Buffer{6, 4} + Zeros(22))),
       "Ethernet>802.3>SNAP>AARP" + kMacs},
      {1, in_8023(Snap(0x00000C, 0x2000, Zeros(8))), "Ethernet>802.3>SNAP>CDP" + kMacs},
      {1, in_8023(Snap(0x00000C, 0x010B, Zeros(35))), "Ethernet>802.3>SNAP>STP" + kMacs},
      {1, in_8023(Snap(0x0080C2, 0x0007, InnerEthernet())),
       "Ethernet>802.3>SNAP>Ethernet>IPv4>TCP>HTTP" + kMacs + " 10.0.0.8->10.0.0.9 40000>80"},
      {1, in_8023(Snap(0x123456, 0x0800, Dns4())), "Ethernet>802.3>SNAP" + kMacs},
      {1, in_8023(Buffer{0xFE, 0xFE, 3, 0x83} + Zeros(8)), "Ethernet>802.3>OSI>IS-IS" + kMacs},
      {1, in_8023(Buffer{0xAA, 0xAB, 0xAF, 0x81, 1, 0}), "Ethernet>802.3>SNAP" + kMacs},  // an answer to XID
      {1, in_8023(Buffer{0xF0, 0xF0, 1, 1}), "Ethernet>802.3>NetBEUI" + kMacs},
      {1, Eth(0x6003, sized(decnet)), "Ethernet>DECnet" + kMacs + " 1.2->3.4"},
      {1, Eth(0x6003, sized(Buffer{0x81} + decnet)), "Ethernet>DECnet" + kMacs + " 1.2->3.4"},  // padded
      {1, Eth(0x6003, sized(Buffer{0x02, 4, 0x0C, 2, 4, 0})), "Ethernet>DECnet" + kMacs + " 1.2->3.4"},
      {1, Eth(0x6003, sized(Buffer{0x0D, 2, 0, 0, 0xAA, 0, 4, 0, 2, 4} + Zeros(22))),
       "Ethernet>DECnet" + kMacs + " 1.2=>+"},
      {1, Eth(0x6003, sized(Buffer{0x0B, 2, 0, 0, 0xAA, 0, 4, 0, 2, 4} + Zeros(9))),
       "Ethernet>DECnet" + kMacs + " 1.2=>+"},
      {1, Eth(0x6003, sized(Buffer{0x07, 2, 4, 0})), "Ethernet>DECnet" + kMacs + " 1.2=>+"},
      {1, Eth(0x88CC, lldp), "Ethernet>LLDP" + kMacs},
      {1, Eth(0x88CC, Be16(0x0220)), "Ethernet>LLDP" + kMacs + " malformed"},
      {1, Eth(0x888E, Buffer{2, 1, 0, 0}), "Ethernet>802.1X" + kMacs},
      {1, Eth(0x8809, Buffer{1, 1} + Zeros(108)), "Ethernet>Slow Protocols>LACP" + kMacs},
      {1, Eth(0x88F7, Buffer{0, 2} + Be16(44) + Zeros(40)), "Ethernet>PTP" + kMacs},
      {1, Eth(0x0842, Buffer(6, 0xFF) + Zeros(96)), "Ethernet>Wake-on-LAN" + kMacs},
  };
}

std::vector<Sample> TunnelSamples() {
  std::string http = ">IPv4>TCP>HTTP" + kIps + " 40000>80";
  std::string ethernet_http = ">Ethernet>IPv4>TCP>HTTP" + kIps + " 40000>80";
  Buffer routes = Be16(0x0800) + Buffer{0, 4} + Ip4(7) + Zeros(4);
  Buffer bridged = Be16(0x2000) + Be16(0x6558) + Zeros(4) + InnerEthernet();
  auto gtp = [](std::uint8_t flags, std::uint8_t type, const Buffer& body) {
    return Buffer{flags, type} + Be16(static_cast<unsigned>(body.size())) + Zeros(4) + body;
  };
  Buffer long_inner = Ipv4(Ip4(8), Ip4(9), 17, Udp(40000, 50000, Zeros(100)));
  Buffer sctp = Be16(36412) + Be16(40000) + Zeros(8) + Buffer{0, 3} + Be16(20) + Zeros(12) + Buffer{1, 2, 3, 4};
  return {
      {kRaw, Ip(4, Inner4()), "Raw IP>IPv4" + http},
      {kRaw, Ip(41, Inner6()), "Raw IP>IPv4>IPv6>TCP>HTTP" + kIps + " 40000>80"},
      {kRaw, Ip(47, Be16(0) + Be16(0x0800) + Inner4()), "Raw IP>IPv4>GRE" + http},
      {kRaw, Ip(47, Be16(0xB000) + Be16(0x0800) + Zeros(12) + Inner4()), "Raw IP>IPv4>GRE" + http},
      {kRaw, Ip(47, Be16(0x4000) + Be16(0x0800) + Zeros(4) + routes + Inner4()), "Raw IP>IPv4>GRE" + http},
      {kRaw, Ip(47, bridged), "Raw IP>IPv4>GRE" + ethernet_http},
      {kRaw, Ip(47, Be16(0x3081) + Be16(0x880B) + Zeros(12) + Be16(0x0021) + Inner4()), "Raw IP>IPv4>GRE>PPP" + http},
      {kRaw, Ip(47, Be16(0x2081) + Be16(0x880B) + Zeros(8)), "Raw IP>IPv4>GRE" + kIps},
      {kRaw, Ip(47, Be16(0x0002) + Be16(0x0800) + Inner4()), "Raw IP>IPv4>GRE" + kIps},  // no such version
      {kRaw, Ip(97, Be16(0x3000) + InnerEthernet()), "Raw IP>IPv4>EtherIP" + ethernet_http},
      {kRaw, Ip(137, Buffer{0, 1, 1, 64} + Inner4()), "Raw IP>IPv4>MPLS" + http},
      {kRaw, Ip(51, Buffer{6, 4} + Zeros(22) + Tcp(40000, 80)), "Raw IP>IPv4>AH>TCP>HTTP" + kIps + " 40000>80"},
      {kRaw,
       Ipv6(Ip6(1), Ip6(2), 0,
            Extension(
                43, 1,
                Extension(51, 3, Buffer{60, 1} + Zeros(10) + Extension(47, 1, Be16(0) + Be16(0x86DD) + Inner6())))),
       "Raw IP>IPv6>AH>GRE>IPv6>TCP>HTTP" + kIp6s + " 40000>80"},
      {kRaw, Tunnel(4789, Buffer{8} + Zeros(7) + InnerEthernet()), "Raw IP>IPv4>UDP>VXLAN" + ethernet_http},
      // The frame inside is nobody's traffic, and its missing ports are not the tunnel's.
      {kRaw, Tunnel(4789, Buffer{8} + Zeros(7) + Ethernet(Mac(9), Mac(8), 0x0806, Arp())),
       "Raw IP>IPv4>UDP>VXLAN>Ethernet>ARP" + kIps + " 50000>4789"},
      {kRaw, Tunnel(4789, Zeros(8) + InnerEthernet()), "Raw IP>IPv4>UDP>VXLAN" + kIps + " 50000>4789"},
      // An answer to a client that happens to use the port.
      {kRaw, Ip(17, Udp(53, 4789, Zeros(20))), "Raw IP>IPv4>UDP>DNS" + kIps + " 53>4789"},
      {kRaw, Tunnel(6081, Buffer{1, 0} + Be16(0x6558) + Zeros(8) + InnerEthernet()),
       "Raw IP>IPv4>UDP>Geneve" + ethernet_http},
      {kRaw, Tunnel(2152, gtp(0x30, 255, Inner4())), "Raw IP>IPv4>UDP>GTP-U" + http},
      {kRaw, Tunnel(2152, gtp(0x34, 255, Buffer{0, 0, 0, 0x85, 1, 0, 9, 0} + Inner6())),
       "Raw IP>IPv4>UDP>GTP-U>IPv6>TCP>HTTP" + kIps + " 40000>80"},
      {kRaw, Tunnel(2152, gtp(0x34, 255, Buffer{0, 0, 0, 0x85, 0, 0, 9, 0} + Inner6())),
       "Raw IP>IPv4>UDP>GTP-U" + kIps + " 50000>2152 malformed"},  // an extension without length
      {kRaw, Tunnel(2152, gtp(0x32, 1, Zeros(4))), "Raw IP>IPv4>UDP>GTP-U" + kIps + " 50000>2152"},
      {kRaw, Tunnel(2123, gtp(0x48, 1, Zeros(4))), "Raw IP>IPv4>UDP>GTP-C" + kIps + " 50000>2123"},
      {kRaw, Ip(132, sctp), "Raw IP>IPv4>SCTP>S1AP" + kIps + " 36412>40000"},
      {kRaw, Ip(132, Zeros(12) + Zeros(4)), "Raw IP>IPv4>SCTP" + kIps + " 0>0 malformed"},
      {kRaw, Ip(89, Buffer{2, 1} + Be16(24) + Zeros(20)), "Raw IP>IPv4>OSPF" + kIps},
      {kRaw, Ipv6(Ip6(1), Ip6(2), 89, Buffer{3, 1} + Be16(16) + Zeros(12)), "Raw IP>IPv6>OSPF" + kIp6s},
      {kRaw, Ip(89, Buffer{2, 1} + Be16(20) + Zeros(20)), "Raw IP>IPv4>OSPF" + kIps + " malformed"},
      {kRaw, Ip(2, Buffer{0x16, 0, 0, 0} + Zeros(4)), "Raw IP>IPv4>IGMP" + kIps},
      // What does not fit into the first fragment is in the others.
      {kRaw, Ipv4(Ip4(1), Ip4(2), 4, Buffer(long_inner.begin(), long_inner.begin() + 48), 0x2000),
       "Raw IP>IPv4>IPv4>UDP" + kIps + " 40000>50000 fragment"},
  };
}

Packet PacketOf(const Sample& sample) {
  Packet packet = MakePacket(sample.frame);
  packet.link_type = sample.link;
  return packet;
}

std::vector<Sample> AllSamples() {
  auto samples = LinkSamples();
  for (auto* more : {EthernetSamples, TunnelSamples}) {
    for (Sample& sample : more()) samples.push_back(std::move(sample));
  }
  return samples;
}

TEST(Protocols, AreFoundWithTheirEnds) {
  for (const Sample& sample : AllSamples()) EXPECT_EQ(Describe(PacketOf(sample)), sample.found);
}

TEST(Protocols, EveryPrefixStaysWithinItsBytes) {
  for (const Sample& sample : AllSamples()) {
    ForEachPrefix(sample.frame, [&](const Buffer& prefix) {
      Packet packet = PacketOf(sample);
      packet.bytes = prefix;
      EXPECT_TRUE(!Decoded(packet).malformed || sample.found.ends_with("malformed"))
          << sample.found << " at " << prefix.size();
    });
  }
}

TEST(Protocols, SurviveChangedBytes) {
  for (const Sample& sample : AllSamples()) {
    ForEachDamage(sample.frame, 500, [&](const Buffer& frame) {
      Packet packet = MakePacket(frame);
      packet.link_type = sample.link;
      const PacketFacts facts = Decoded(packet);
      EXPECT_NE(ProtocolTree::Get().Classify(facts), 0);
      EXPECT_LE(facts.pair_count, PacketFacts::kMaxPairs);
    });
  }
}

// The datagram that is kept is the outermost, without padding; the payload is the innermost.
TEST(Protocols, KeepDatagramAndPayload) {
  auto decode = [](std::uint32_t link, const Buffer& frame) {
    Packet packet = MakePacket(frame);
    packet.link_type = link;
    return Decoded(packet);
  };
  auto text = [](Bytes bytes) { return std::string(bytes.begin(), bytes.end()); };
  Buffer hello{'h', 'e', 'l', 'l', 'o'};
  Buffer inner = Ipv4(Ip4(8), Ip4(9), 6, Tcp(1, 2, 0x10, hello));
  Buffer outer = Ip(47, Be16(0) + Be16(0x0800) + inner);
  Buffer frame = Eth(0x0800, outer + Zeros(6));
  PacketFacts facts = decode(1, frame);
  EXPECT_EQ(facts.network.size(), outer.size());
  EXPECT_EQ(facts.network.data(), frame.data() + 14);
  EXPECT_EQ(facts.ip_protocol, 6);
  EXPECT_EQ(text(facts.payload), "hello");

  Buffer udp = Ipv6(Ip6(1), Ip6(2), 60, Extension(17, 1, Udp(1, 2, hello)));
  frame = udp + Zeros(3);
  facts = decode(kRaw, frame);
  EXPECT_EQ(facts.network.size(), udp.size());
  EXPECT_EQ(facts.ip_protocol, 17);
  EXPECT_EQ(text(facts.payload), "hello");

  Buffer heartbeat{4, 0, 0, 6, 9, 9, 0, 0};
  Buffer sctp = Ip(132, Zeros(12) + heartbeat + Buffer{0, 3, 0, 21} + Zeros(12) + hello + Zeros(3));
  EXPECT_EQ(text(decode(kRaw, sctp).payload), "hello");

  frame = Eth(0x0806, Arp());
  facts = decode(1, frame);
  EXPECT_TRUE(facts.network.empty());
  EXPECT_TRUE(facts.payload.empty());
}

}  // namespace
}  // namespace orvo::test
