#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

#include "capture/classify/protocol_tree.h"
#include "tests/capture/describe_packet.h"

namespace orvo::test {
namespace {

Buffer Eth(unsigned type, const Buffer& payload) {
  return Ethernet(Mac(2), Mac(1), type, payload);
}
Buffer Eth4(const Buffer& payload) {
  return Eth(0x0800, payload);
}
Buffer Eth6(const Buffer& payload) {
  return Eth(0x86DD, payload);
}

#define MACS " 02:00:00:00:00:01->02:00:00:00:00:02"
#define IPS " 10.0.0.1->10.0.0.2"
#define IP6S " 2001:db8::1->2001:db8::2"

struct Sample {
  Buffer frame;
  const char* found;
};

std::vector<Sample> GoodSamples() {
  Buffer udp = Udp(5000, 53, Zeros(4));
  return {
      {Eth4(Ipv4(Ip4(1), Ip4(2), 17, udp)), "Ethernet>IPv4>UDP>DNS" MACS IPS " 5000>53"},
      {Eth4(Ipv4(Ip4(1), Ip4(2), 6, Tcp(80, 40000))), "Ethernet>IPv4>TCP>HTTP" MACS IPS " 80>40000"},
      {Eth6(Ipv6(Ip6(1), Ip6(2), 6, Tcp(40000, 443))), "Ethernet>IPv6>TCP>TLS" MACS IP6S " 40000>443"},
      // Of two known ports the lower is the server's.
      {Eth4(Ipv4(Ip4(1), Ip4(2), 6, Tcp(3306, 22))), "Ethernet>IPv4>TCP>SSH" MACS IPS " 3306>22"},
      {Eth4(Ipv4(Ip4(1), Ip4(2), 6, Tcp(50001, 50002))), "Ethernet>IPv4>TCP" MACS IPS " 50001>50002"},
      {Eth4(Ipv4(Ip4(1), Ip4(2), 6, Tcp(123, 50002))),
       "Ethernet>IPv4>TCP" MACS IPS " 123>50002"},  // NTP is UDP's alone
      // Options push the transport header back; padding behind the datagram is not payload.
      {Eth4(Ipv4(Ip4(1), Ip4(2), 17, udp, 0, Zeros(8)) + Zeros(6)), "Ethernet>IPv4>UDP>DNS" MACS IPS " 5000>53"},
      {Eth4(Ipv4(Ip4(1), Ip4(2), 17, udp, 0x2000)), "Ethernet>IPv4>UDP>DNS" MACS IPS " 5000>53 fragment"},
      {Eth4(Ipv4(Ip4(1), Ip4(2), 17, udp, 0x0010)), "Ethernet>IPv4>UDP" MACS IPS " fragment"},
      {Eth6(Ipv6(Ip6(1), Ip6(2), 44, FragmentHeader(17, 1, udp))),
       "Ethernet>IPv6>UDP>DNS" MACS IP6S " 5000>53 fragment"},
      {Eth6(Ipv6(Ip6(1), Ip6(2), 44, FragmentHeader(17, 0x0100, udp))), "Ethernet>IPv6>UDP" MACS IP6S " fragment"},
      {Eth6(Ipv6(Ip6(1), Ip6(2), 0, Extension(60, 2, Extension(58, 1, Icmp(128))))), "Ethernet>IPv6>ICMPv6" MACS IP6S},
      {Eth6(Ipv6(Ip6(1), Ip6(2), 58, Icmp(1))), "Ethernet>IPv6>ICMPv6" MACS IP6S " error"},
      {Eth6(Ipv6(Ip6(1), Ip6(2), 59, {})), "Ethernet>IPv6" MACS IP6S},
      // What an error message quotes is nobody's traffic.
      {Eth4(Ipv4(Ip4(1), Ip4(2), 1, Icmp(3, Ipv4(Ip4(9), Ip4(8), 17, udp)))), "Ethernet>IPv4>ICMP" MACS IPS " error"},
      {Eth4(Ipv4(Ip4(1), Ip4(2), 1, Icmp(8))), "Ethernet>IPv4>ICMP" MACS IPS},
      {Eth4(Ipv4(Ip4(1), Ip4(2), 88, Zeros(8))), "Ethernet>IPv4>EIGRP" MACS IPS},
      {Eth4(Ipv4(Ip4(1), Ip4(2), 200, {})), "Ethernet>IPv4" MACS IPS},
      {Eth4(Ipv4(Ip4(1), Ip4(2), 41, Ipv6(Ip6(1), Ip6(2), 6, Tcp(1, 25)))),
       "Ethernet>IPv4>IPv6>TCP>SMTP" MACS IPS " 1>25"},
      {Eth(0x8100, Vlan(0x0800, Ipv4(Ip4(1), Ip4(2), 17, udp))), "Ethernet>IPv4>UDP>DNS" MACS IPS " 5000>53 tags=1"},
      {Eth(0x88A8, Vlan(0x8100, Vlan(0x0806, Arp()))), "Ethernet>ARP" MACS " tags=2"},
      {Ethernet(BroadcastMac(), Mac(1), 0x0800, Ipv4(Ip4(1), Buffer(4, 0xFF), 17, Udp(68, 67))),
       "Ethernet>IPv4>UDP>DHCP 02:00:00:00:00:01=>*ff:ff:ff:ff:ff:ff 10.0.0.1=>*255.255.255.255 68>67"},
      {Ethernet(MulticastMac(), Mac(1), 0x0800, Ipv4(Ip4(1), {224, 0, 0, 251}, 17, Udp(5353, 5353))),
       "Ethernet>IPv4>UDP>mDNS 02:00:00:00:00:01=>+01:00:5e:00:00:fb 10.0.0.1=>+224.0.0.251 5353>5353"},
      {Eth6(Ipv6(Ip6(1), Buffer{0xFF, 2} + Zeros(13) + Buffer{1}, 58, Icmp(133))),
       "Ethernet>IPv6>ICMPv6" MACS " 2001:db8::1=>+ff02::1"},
      {Eth(0x9999, Zeros(10)), "Ethernet" MACS},
      {Ieee8023(Mac(2), Mac(1), Buffer{0x42, 0x42, 3} + Zeros(35)), "Ethernet>802.3>STP" MACS},
      {Ieee8023(Mac(2), Mac(1), {0x0A, 0x0A, 3, 0, 0}), "Ethernet>802.3" MACS},
      {Ieee8023(Mac(2), Mac(1), Buffer{0xAA, 0xAA, 3, 0, 0, 0} + Be16(0x0800) + Ipv4(Ip4(1), Ip4(2), 17, udp)),
       "Ethernet>802.3>SNAP>IPv4>UDP>DNS" MACS IPS " 5000>53"},
  };
}

std::vector<Sample> BadSamples() {
  Buffer udp = Udp(5000, 53, Zeros(4));
  Buffer good = Ipv4(Ip4(1), Ip4(2), 17, udp);
  auto changed = [](Buffer bytes, std::size_t at, std::uint8_t value) {
    bytes[at] = value;
    return bytes;
  };
  Buffer extensions;
  for (int i = 0; i < 40; ++i) extensions = extensions + Extension(60, 1, {});
  Buffer tunnels = udp;
  for (int i = 0; i < 20; ++i) tunnels = Ipv4(Ip4(1), Ip4(2), 4, tunnels);
  Buffer tags;
  for (int i = 0; i < 20; ++i) tags = tags + Be16(7) + Be16(0x8100);
  return {
      {{}, "Ethernet malformed"},
      {Mac(2) + Mac(1) + Buffer{8}, "Ethernet malformed"},
      {Eth(0x05F0, Zeros(50)), "Ethernet" MACS " malformed"},                          // neither a length nor a type
      {Eth4(changed(good, 0, 0x65)), "Ethernet>IPv4" MACS " malformed"},               // another version
      {Eth4(changed(good, 0, 0x44)), "Ethernet>IPv4" MACS " malformed"},               // header below 20 bytes
      {Eth4(changed(changed(good, 2, 0), 3, 19)), "Ethernet>IPv4" MACS " malformed"},  // length below the header's
      {Eth4(changed(good, 2, 0x10)), "Ethernet>IPv4>UDP>DNS" MACS IPS " 5000>53 malformed"},
      {Eth4(changed(changed(good, 2, 0), 3, 0)), "Ethernet>IPv4>UDP>DNS" MACS IPS " 5000>53"},  // before segmentation
      {Eth4(changed(good, 0, 0x4F)), "Ethernet>IPv4" MACS " malformed"},  // options longer than the datagram
      {Eth4(Ipv4(Ip4(1), Ip4(2), 17, changed(udp, 5, 7))), "Ethernet>IPv4>UDP>DNS" MACS IPS " 5000>53 malformed"},
      {Eth4(Ipv4(Ip4(1), Ip4(2), 6, changed(Tcp(1, 80), 12, 0x40))),
       "Ethernet>IPv4>TCP>HTTP" MACS IPS " 1>80 malformed"},
      {Eth6(Ipv6(Ip6(1), Ip6(2), 60, extensions)), "Ethernet>IPv6" MACS IP6S " malformed"},
      {Eth6(Ipv6(Ip6(1), Ip6(2), 60, Buffer{17, 200} + Zeros(6))), "Ethernet>IPv6" MACS IP6S " malformed"},
      {Eth(0x8100, tags), "Ethernet" MACS " tags=8 malformed"},
      {Eth4(tunnels), "Ethernet>IPv4>IPv4" MACS IPS},  // nesting ends, and is not followed further
      {Ethernet(Mac(2), Mac(1), 1000, {0x42, 0x42, 3}), "Ethernet>802.3>STP" MACS " malformed"},
  };
}

TEST(Decode, SaysWhatAPacketIs) {
  for (const Sample& sample : GoodSamples()) EXPECT_EQ(Describe(MakePacket(sample.frame)), sample.found);
}

TEST(Decode, SaysWhatIsWrongWithAPacket) {
  for (const Sample& sample : BadSamples()) EXPECT_EQ(Describe(MakePacket(sample.frame)), sample.found);
}

TEST(Decode, EveryPrefixOfEverySampleStaysWithinItsBytes) {
  auto samples = GoodSamples();
  for (Sample& bad : BadSamples()) samples.push_back(std::move(bad));
  for (const Sample& sample : samples) {
    const bool malformed = Decoded(MakePacket(sample.frame)).malformed;
    ForEachPrefix(sample.frame, [&](const Buffer& prefix) {
      Packet packet = MakePacket(prefix);
      packet.original_length = static_cast<std::uint32_t>(sample.frame.size());
      const PacketFacts facts = Decoded(packet);
      EXPECT_TRUE(facts.cut_off);
      EXPECT_EQ(facts.pair_count > 0, prefix.size() >= 14);
      // What the capture left out is not the frame's fault.
      EXPECT_LE(facts.malformed, malformed) << sample.found << " at " << prefix.size();
    });
  }
}

TEST(Decode, SurvivesChangedBytes) {
  ProtocolTree& tree = ProtocolTree::Get();
  for (const Sample& sample : GoodSamples()) {
    ForEachDamage(sample.frame, 2000,
                  [&](const Buffer& frame) { EXPECT_TRUE(tree.Contains(tree.Classify(Decoded(MakePacket(frame))))); });
  }
}

TEST(Decode, CountsFramesOfForeignLinksAsUnknown) {
  Packet packet = MakePacket(Zeros(0));
  packet.link_type = 65535;
  EXPECT_EQ(Describe(packet), "Unknown");
}

// Every number has exactly one chain, and no two numbers have the same, whoever meets a place first.
TEST(ProtocolTree, NumbersStandForPlacesForAllThreads) {
  auto samples = GoodSamples();
  auto classify = [&](std::vector<std::uint16_t>* numbers) {
    for (const Sample& sample : samples) {
      numbers->push_back(ProtocolTree::Get().Classify(Decoded(MakePacket(sample.frame))));
    }
  };
  std::vector<std::uint16_t> first;
  std::vector<std::uint16_t> second;
  std::thread other(classify, &first);
  classify(&second);
  other.join();
  EXPECT_EQ(first, second);

  const ProtocolTree& tree = ProtocolTree::Get();
  std::vector<std::string> paths;
  for (unsigned i = 1; i <= 0xFFFF; ++i) {
    auto number = static_cast<std::uint16_t>(i);
    if (tree.Contains(number)) paths.push_back(Path(number));
  }
  for (const char* path : {"Ethernet", "Ethernet>IPv4>UDP>DNS", "Ethernet>IPv6>UDP>DNS"}) {
    EXPECT_EQ(std::count(paths.begin(), paths.end(), path), 1) << path;
  }
  std::sort(paths.begin(), paths.end());
  EXPECT_EQ(std::adjacent_find(paths.begin(), paths.end()), paths.end());
  EXPECT_EQ(tree.name(0), "");
  EXPECT_FALSE(tree.Contains(0));
}

}  // namespace
}  // namespace orvo::test
