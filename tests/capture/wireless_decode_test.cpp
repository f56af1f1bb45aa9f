#include <gtest/gtest.h>

#include <tuple>

#include "capture/decode/radio_rates.h"
#include "tests/capture/describe_packet.h"
#include "tests/capture/wireless_frames.h"

namespace orvo::test {
namespace {

std::string Text(const AddressRecord& address) {
  std::u16string text;
  AppendAddress(address, &text);
  return address.valid != 0 ? Ascii(text) : "-";
}

/// What the radio and the frame's header told, in one line.
std::string DescribeWireless(const Packet& packet) {
  PacketFacts facts = Decoded(packet);
  const WirelessFacts& wireless = facts.wireless;
  const RadioFacts& radio = wireless.radio;
  std::string text;
  auto say = [&](bool when, const std::string& what) { text += when ? (text.empty() ? "" : " ") + what : ""; };
  say(radio.channel != 0, "channel=" + std::to_string(radio.channel) + "/" + std::to_string(radio.frequency));
  say(radio.modes != 0, "modes=" + std::to_string(radio.modes));
  say(radio.rate != 0, "rate=" + std::to_string(radio.rate));
  auto level = [](const RadioLevel& one) {
    return std::to_string(one.percent) + "%" + (one.dbm == kNoDbm ? "" : std::to_string(one.dbm) + "dBm");
  };
  say(radio.signal.known(), "signal=" + level(radio.signal));
  say(radio.noise.known(), "noise=" + level(radio.noise));
  say(radio.bad_fcs, "bad-fcs");
  if (!wireless.is_readable) return text + (facts.malformed ? " malformed" : "");
  say(true, Text(wireless.transmitter) + ">" + Text(wireless.receiver));
  say(wireless.network.valid != 0, "in " + Text(wireless.network));
  say(wireless.is_retry, "retry");
  say(wireless.is_protected, "protected");
  say(wireless.has_order, "order");
  say(wireless.icv_error, "icv");
  say(wireless.has_key, "key=" + std::to_string(wireless.key) + " encryption=" + std::to_string(wireless.encryption));
  say(facts.malformed, "malformed");
  return text;
}

#define AP "02:00:00:00:00:0a"
#define STA "02:00:00:00:00:01"
#define HOST "02:00:00:00:00:02"

const Buffer kAp = Mac(10);

Buffer Header4(const Buffer& more) {
  return DataFrame(kToDsBit | kFromDsBit, kAp, Mac(11), Mac(2), Mac(1) + more);
}

struct Sample {
  Buffer frame;
  const char* found;     ///< as any packet
  const char* wireless;  ///< on the air
};

std::vector<Sample> Samples() {
  const Buffer ip = IpPacket();
  const Buffer subframe = Mac(2) + Mac(1) + Be16(static_cast<unsigned>(ip.size())) + ip;
  return {
      {ManagementFrame(8, BroadcastMac(), kAp, kAp, Announcement(1, NameElement("net"))),
       "802.11>802.11 Beacon " AP "=>*ff:ff:ff:ff:ff:ff", AP ">ff:ff:ff:ff:ff:ff in " AP},
      {ManagementFrame(11, kAp, Mac(1), kAp, Le16(0) + Le16(1) + Le16(0), kRetryBit),
       "802.11>802.11 Authentication " STA "->" AP, STA ">" AP " in " AP " retry"},
      // An HT control field stands in front of the body.
      {ManagementFrame(8, BroadcastMac(), kAp, kAp, Zeros(4) + Announcement(1, NameElement("net")), kOrderBit),
       "802.11>802.11 Beacon " AP "=>*ff:ff:ff:ff:ff:ff", AP ">ff:ff:ff:ff:ff:ff in " AP " order"},
      {ManagementFrame(7, kAp, Mac(1), kAp), "802.11 " STA "->" AP, STA ">" AP " in " AP},
      // Names one end only, or both.
      {ControlFrame(13, kAp), "802.11>802.11 Acknowledgement ->" AP, "->" AP},
      {ControlFrame(11, kAp, Mac(1)), "802.11>802.11 Request to Send " STA "->" AP, STA ">" AP},
      {ControlFrame(11, kAp, {3, 0, 0, 0, 0, 1}), "802.11>802.11 Request to Send " STA "->" AP, STA ">" AP},
      // All forms of addresses.
      {DataFrame(0, Mac(2), Mac(1), Mac(9), ip),
       "802.11>LLC>SNAP>IPv4>UDP>DNS " STA "->" HOST " 10.0.0.1->10.0.0.2 5000>53",
       STA ">" HOST " in 02:00:00:00:00:09"},
      {DataFrame(kToDsBit, kAp, Mac(1), Mac(2), ip),
       "802.11>LLC>SNAP>IPv4>UDP>DNS " STA "->" HOST " 10.0.0.1->10.0.0.2 5000>53", STA ">" AP " in " AP},
      {DataFrame(kFromDsBit, Mac(2), kAp, Mac(1), ip),
       "802.11>LLC>SNAP>IPv4>UDP>DNS " STA "->" HOST " 10.0.0.1->10.0.0.2 5000>53", AP ">" HOST " in " AP},
      {Header4(ip), "802.11>LLC>SNAP>IPv4>UDP>DNS " STA "->" HOST " 10.0.0.1->10.0.0.2 5000>53",
       "02:00:00:00:00:0b>" AP},
      {DataFrame(kToDsBit, kAp, Mac(1), BroadcastMac(), Snap(0x0806, Arp())),
       "802.11>LLC>SNAP>ARP " STA "=>*ff:ff:ff:ff:ff:ff", STA ">" AP " in " AP},
      // Quality of service, HT control, aggregates.
      {DataFrame(kToDsBit, kAp, Mac(1), Mac(2), Le16(0) + ip, 8),
       "802.11>LLC>SNAP>IPv4>UDP>DNS " STA "->" HOST " 10.0.0.1->10.0.0.2 5000>53", STA ">" AP " in " AP},
      {DataFrame(kToDsBit | kOrderBit, kAp, Mac(1), Mac(2), Le16(0) + Zeros(4) + ip, 8),
       "802.11>LLC>SNAP>IPv4>UDP>DNS " STA "->" HOST " 10.0.0.1->10.0.0.2 5000>53", STA ">" AP " in " AP " order"},
      {DataFrame(kToDsBit, kAp, Mac(1), kAp, Le16(0x80) + subframe + subframe, 8),
       "802.11>LLC>SNAP>IPv4>UDP>DNS " STA "->" HOST " 10.0.0.1->10.0.0.2 5000>53", STA ">" AP " in " AP},
      {DataFrame(kToDsBit, kAp, Mac(1), Mac(2), {}, 4), "802.11>802.11 Null Data " STA "->" HOST, STA ">" AP " in " AP},
      // Nothing in the first fragment is too long, and the second begins in the middle.
      {DataFrame(kToDsBit | 4, kAp, Mac(1), Mac(2), Buffer(ip.begin(), ip.end() - 4)),
       "802.11>LLC>SNAP>IPv4>UDP>DNS " STA "->" HOST " 10.0.0.1->10.0.0.2 5000>53", STA ">" AP " in " AP},
      {DataFrame(kToDsBit, kAp, Mac(1), Mac(2), {0xAA, 0xAA, 3, 0}, 0, 1), "802.11>LLC " STA "->" HOST,
       STA ">" AP " in " AP},
      // Protection is told by its form.
      {DataFrame(kToDsBit | kProtectedBit, kAp, Mac(1), Mac(2), Buffer{1, 2, 3, 0x80} + Zeros(20)),
       "802.11>802.11 Encrypted Data " STA "->" HOST, STA ">" AP " in " AP " protected key=2 encryption=1"},
      {DataFrame(kToDsBit | kProtectedBit, kAp, Mac(1), Mac(2), Buffer{0, 0x20, 3, 0x20} + Zeros(20)),
       "802.11>802.11 Encrypted Data " STA "->" HOST, STA ">" AP " in " AP " protected key=0 encryption=3"},
      {DataFrame(kToDsBit | kProtectedBit, kAp, Mac(1), Mac(2), Buffer{0, 0x20, 0, 0x60} + Zeros(20)),
       "802.11>802.11 Encrypted Data " STA "->" HOST, STA ">" AP " in " AP " protected key=1 encryption=0"},
      {DataFrame(kToDsBit | kProtectedBit, kAp, Mac(1), Mac(2), Buffer{0, 0, 0, 0} + Zeros(3)),
       "802.11>802.11 Encrypted Data " STA "->" HOST, STA ">" AP " in " AP " protected icv key=0 encryption=1"},
      {DataFrame(kToDsBit | kProtectedBit, kAp, Mac(1), Mac(2), Buffer{0, 0, 0, 0x20} + Zeros(7)),
       "802.11>802.11 Encrypted Data " STA "->" HOST, STA ">" AP " in " AP " protected icv key=0 encryption=0"},
      {Buffer{0x0C, 0} + Zeros(20), "802.11", "->-"},  // a type that came later
      // Too short, or of another version.
      {{}, "802.11 malformed", " malformed"},
      {{0x81, 0, 0, 0}, "802.11 malformed", " malformed"},
      {ManagementFrame(8, BroadcastMac(), kAp, kAp, Zeros(5)),
       "802.11>802.11 Beacon " AP "=>*ff:ff:ff:ff:ff:ff malformed", AP ">ff:ff:ff:ff:ff:ff in " AP " malformed"},
      {ManagementFrame(8, BroadcastMac(), kAp, kAp, Announcement(1, {0, 4, 'n', 'e', 't'})),
       "802.11>802.11 Beacon " AP "=>*ff:ff:ff:ff:ff:ff malformed", AP ">ff:ff:ff:ff:ff:ff in " AP " malformed"},
      {ControlFrame(11, kAp), "802.11 malformed", " malformed"},
      {DataFrame(kToDsBit | kFromDsBit, kAp, Mac(11), Mac(2)), "802.11 malformed", " malformed"},
      {DataFrame(kToDsBit, kAp, Mac(1), kAp, Le16(0x80) + Mac(2) + Mac(1) + Be16(2000) + ip, 8),
       "802.11>LLC>SNAP>IPv4>UDP>DNS " STA "->" HOST " 10.0.0.1->10.0.0.2 5000>53 malformed",
       STA ">" AP " in " AP " malformed"},
  };
}

TEST(WirelessDecode, SaysWhatAFrameIs) {
  for (const Sample& sample : Samples()) {
    EXPECT_EQ(Describe(WirelessPacket(sample.frame)), sample.found);
    EXPECT_EQ(DescribeWireless(WirelessPacket(sample.frame)), sample.wireless) << sample.found;
  }
}

struct HeaderSample {
  std::uint32_t link;
  Buffer packet;
  const char* found;
};

Buffer Ack() {
  return ControlFrame(13, kAp);
}
#define ACK "->" AP

Buffer Prism(bool big, std::uint32_t channel, std::uint32_t signal, std::uint32_t rate) {
  auto number = [&](std::uint32_t value) {
    Buffer bytes = Le32(value);
    return big ? Buffer(bytes.rbegin(), bytes.rend()) : bytes;
  };
  Buffer packet = number(0x44) + number(144) + Zeros(16);
  for (std::uint32_t value : {0U, 0U, channel, 0U, 0U, signal, 0U, rate, 0U, 10U}) {
    packet = packet + number(0x1041) + Zeros(4) + number(value);
  }
  return packet + Ack();
}

Buffer Be32(std::uint32_t value) {
  return Be16(value >> 16) + Be16(value & 0xFFFF);
}

Buffer Avs(std::uint32_t channel, std::uint32_t rate, std::uint32_t unit, std::uint32_t signal) {
  return Be32(0x80211001) + Be32(64) + Zeros(16) + Be32(6) + Be32(channel) + Be32(rate) + Zeros(8) + Be32(unit) +
         Be32(signal) + Be32(0) + Zeros(8) + Ack();
}

Buffer Ppi(std::uint8_t flags, const Buffer& fields, std::uint32_t link = 105) {
  return Buffer{0, flags} + Le16(static_cast<unsigned>(8 + fields.size())) + Le32(link) + fields + Ack();
}
Buffer PpiCommon(unsigned flags) {
  return Le16(2) + Le16(20) + Zeros(8) + Le16(flags) + Le16(22) + Le16(2412) + Le16(0xA0) + Zeros(2) +
         Buffer{206, 0x80};
}

std::vector<HeaderSample> HeaderSamples() {
  const Buffer channel = Le16(2437) + Le16(0x00A0);
  const Buffer padded = DataFrame(kToDsBit, kAp, Mac(1), Mac(2), Le16(0) + Zeros(2) + IpPacket(), 8);
  return {
      {kLinkRadiotap, Radiotap(0, {}, Ack()), ACK},
      {kLinkRadiotap, Radio(2437, 22, -50, Ack()),
       "channel=6/2437 modes=1 rate=22 signal=100%-50dBm noise=10%-95dBm " ACK},
      {kLinkRadiotap, Radio(5180, 108, -100, Ack()),
       "channel=36/5180 modes=2 rate=108 signal=0%-100dBm noise=10%-95dBm " ACK},
      // The frame check sequence is no part of the frame, and a damaged frame names nobody.
      {kLinkRadiotap, Radio(2484, 2, -77, Ack() + Zeros(4), 0x10),
       "channel=14/2484 modes=1 rate=2 signal=46%-77dBm noise=10%-95dBm " ACK},
      {kLinkRadiotap, Radio(2412, 2, -77, Ack() + Zeros(4), 0x50),
       "channel=1/2412 modes=1 rate=2 signal=46%-77dBm noise=10%-95dBm bad-fcs"},
      // Alignment counts from the header's begin, behind all bitmaps.
      {kLinkRadiotap, Radiotap(0x80000008, Le32(0) + channel, Ack()), "channel=6/2437 modes=1 " ACK},
      {kLinkRadiotap, Radiotap(0x8000000B, Le32(0) + Zeros(4) + Zeros(8) + Buffer{0, 0} + channel, Ack()),
       "channel=6/2437 modes=1 " ACK},
      // The first signal is the radio's, others are those of antennas, behind another namespace of whoever's.
      {kLinkRadiotap, Radiotap(0xA0000020, Le32(0x20) + Buffer{0xCE, 0xBF}, Ack()), "signal=100%-50dBm " ACK},
      {kLinkRadiotap,
       Radiotap(
           0xC0000020,
           Le32(0xA0000FFF) + Le32(0x20) + Buffer{0xCE, 0} + Buffer{1, 2, 3, 4} + Le16(3) + Zeros(3) + Buffer{0xBF},
           Ack()),
       "signal=100%-50dBm " ACK},
      // A field that nobody knows ends what can be known, in the second word as in the first.
      {kLinkRadiotap, Radiotap(0x80000020, Le32(0x20) + Buffer{0xCE, 0xBF}, Ack()), "signal=100%-50dBm " ACK},
      {kLinkRadiotap, Radiotap(0x10000020, Buffer{0xCE} + Zeros(7), Ack()), "signal=100%-50dBm " ACK},
      // HT, VHT and HE.
      {kLinkRadiotap, Radiotap(0x00080000, {7, 5, 7}, Ack()), "modes=12 rate=300 " ACK},
      {kLinkRadiotap, Radiotap(0x00080000, {7, 0, 15}, Ack()), "modes=4 rate=260 " ACK},
      {kLinkRadiotap, Radiotap(0x00200000, Le16(0x44) + Buffer{4, 4, 0x92} + Zeros(7), Ack()),
       "modes=12 rate=1733 " ACK},
      {kLinkRadiotap, Radiotap(0x00800000, Le16(0x4020) + Le16(0) + Le16(0x0B00) + Le16(0) + Le16(2) + Le16(2), Ack()),
       "modes=12 rate=2402 " ACK},
      // The wider half above, as the channel's flags have it.
      {kLinkRadiotap, Radiotap(0x00040000, Le32(0x20140) + Le16(5180) + Buffer{36, 0}, Ack()),
       "channel=36/5180 modes=30 " ACK},
      // The header of a frame filled up.
      {kLinkRadiotap, Radiotap(2, {0x20}, padded), STA ">" AP " in " AP},
      // Nothing was sent.
      {kLinkRadiotap, Radiotap(0x04000000, {0}, Zeros(20)), ""},
      // Lies.
      {kLinkRadiotap, {0, 0, 8}, " malformed"},
      {kLinkRadiotap, {0, 0, 200, 0, 0, 0, 0, 0}, " malformed"},
      {kLinkRadiotap, {0, 0, 4, 0, 0, 0, 0, 0}, " malformed"},
      {kLinkRadiotap, {1, 0, 8, 0, 0, 0, 0, 0}, " malformed"},
      {kLinkRadiotap, Radiotap(0x80000000, {}, Ack()), ACK " malformed"},
      {kLinkRadiotap, Radiotap(0x0000006E, {0, 2}, Ack()), "modes=1 rate=2 " ACK " malformed"},
      {kLinkRadiotap, Radiotap(0x40000000, {1, 2, 3, 4, 0xFF, 0xFF}, Ack()), ACK " malformed"},
      {kLinkPrism, Prism(false, 6, 60, 22), "channel=6/2437 modes=1 rate=22 signal=60% " ACK},
      {kLinkPrism, Prism(true, 36, static_cast<std::uint32_t>(-70), 12),
       "channel=36/5180 modes=2 rate=12 signal=60%-70dBm " ACK},
      {kLinkPrism, Avs(6, 110, 2, static_cast<std::uint32_t>(-70)),
       "channel=6/2437 modes=3 rate=22 signal=60%-70dBm " ACK},
      {kLinkPrism, Zeros(200), " malformed"},
      {kLinkPrism, Zeros(20), " malformed"},
      {kLinkAvs, Avs(2437, 5'500'000, 1, 80), "channel=6/2437 modes=3 rate=11 signal=80% noise=0% " ACK},
      {kLinkAvs, Be32(0x80211001) + Be32(500) + Zeros(60), " malformed"},
      {kLinkPpi, Ppi(0, PpiCommon(0)), "channel=1/2412 modes=1 rate=22 signal=100%-50dBm " ACK},
      {kLinkPpi, Ppi(1, Le16(99) + Le16(1) + Zeros(4) + PpiCommon(4)),
       "channel=1/2412 modes=1 rate=22 signal=100%-50dBm bad-fcs"},
      {kLinkPpi, Ppi(0, Le16(4) + Le16(48) + Le32(6) + Zeros(5) + Buffer{7} + Zeros(38)), "modes=12 rate=300 " ACK},
      {kLinkPpi, Ppi(0, Le16(2) + Le16(200) + Zeros(20)), ACK " malformed"},
      {kLinkPpi, Buffer{0, 0} + Le16(8) + Le32(192) + Ack(), " malformed"},
  };
}

TEST(WirelessDecode, SaysWhatTheRadioHeard) {
  for (const HeaderSample& sample : HeaderSamples()) {
    EXPECT_EQ(DescribeWireless(WirelessPacket(sample.packet, sample.link)), sample.found) << "link " << sample.link;
  }
}

/// Every packet of this file with the link that it is of.
std::vector<std::pair<std::uint32_t, Buffer>> EveryPacket() {
  std::vector<std::pair<std::uint32_t, Buffer>> packets;
  for (const Sample& sample : Samples()) packets.emplace_back(kLinkWireless, sample.frame);
  for (const HeaderSample& sample : HeaderSamples()) packets.emplace_back(sample.link, sample.packet);
  return packets;
}

TEST(WirelessDecode, StaysWithinEveryPrefixAndBlamesTheCaptureForIt) {
  for (const auto& [link, bytes] : EveryPacket()) {
    const PacketFacts whole = Decoded(WirelessPacket(bytes, link));
    ForEachPrefix(bytes, [&, link = link, size = bytes.size()](const Buffer& prefix) {
      Packet packet = WirelessPacket(prefix, link);
      packet.original_length = static_cast<std::uint32_t>(size);
      const PacketFacts facts = Decoded(packet);
      EXPECT_LE(facts.malformed, whole.malformed) << "link " << link << " at " << prefix.size();
      EXPECT_LE(facts.wireless.icv_error, whole.wireless.icv_error) << "link " << link << " at " << prefix.size();
    });
  }
}

TEST(WirelessDecode, StaysWithinPacketsWithAnyByteChanged) {
  for (const auto& [link, bytes] : EveryPacket()) {
    ForEachDamage(bytes, 200, [link = link](const Buffer& changed) {
      const PacketFacts facts = Decoded(WirelessPacket(changed, link));
      EXPECT_LE(facts.pair_count, PacketFacts::kMaxPairs);
      EXPECT_LE(facts.wireless.announced.name_length, 32);
    });
  }
}

TEST(WirelessDecode, ReadsHowNetworksAreProtected) {
  const Buffer rsn{0x00, 0x0F, 0xAC};
  const Buffer wpa{0x00, 0x50, 0xF2};
  auto suite = [](Buffer organisation, std::uint8_t type) { return organisation + Buffer{type}; };
  auto security = [&](const Buffer& organisation, std::uint8_t group, const std::vector<std::uint8_t>& pairwise,
                      std::uint8_t management) {
    Buffer body = Le16(1) + suite(organisation, group) + Le16(static_cast<unsigned>(pairwise.size()));
    for (std::uint8_t type : pairwise) body = body + suite(organisation, type);
    return body + Le16(1) + suite(organisation, management);
  };
  constexpr unsigned kPrivacy = 0x11;
  const std::tuple<unsigned, Buffer, int, int> samples[] = {
      {1, {}, 0, 0},
      {kPrivacy, {}, 1, 0},
      {kPrivacy, Element(133, Zeros(8) + Buffer{0x10} + Zeros(5)), 2, 0},
      {kPrivacy, Element(133, Zeros(8)), 1, 0},
      {kPrivacy, Element(48, security(rsn, 4, {4}, 2)), 0, 0},
      {kPrivacy, Element(48, security(rsn, 2, {2}, 1)), 3, 1},
      {kPrivacy, Element(48, security(rsn, 2, {2, 4}, 2)), 0, 0},  // stations choose the stronger
      {kPrivacy, Element(48, security(rsn, 5, {0}, 1)), 1, 1},     // the group's
      {kPrivacy, Element(221, wpa + Buffer{1} + security(wpa, 2, {2}, 1)), 3, 1},
      {kPrivacy, Element(221, wpa + Buffer{2} + security(wpa, 2, {2}, 1)), 1, 0},  // something else of theirs
      // The newer element counts, wherever it stands; one that ends early tells what it can.
      {kPrivacy, Element(221, wpa + Buffer{1} + security(wpa, 2, {2}, 2)) + Element(48, security(rsn, 4, {4}, 2)), 0,
       0},
      {kPrivacy, Element(48, security(rsn, 4, {4}, 2)) + Element(221, wpa + Buffer{1} + security(wpa, 2, {2}, 2)), 0,
       0},
      {kPrivacy, Element(48, Le16(1)), 0, 0},
      {kPrivacy, Element(48, Le16(1) + suite(rsn, 2)), 3, 0},
      {kPrivacy, Element(48, Le16(1) + suite(rsn, 2) + Le16(0xFFFF) + suite(rsn, 4)), 3, 0},
      {kPrivacy, Element(48, {1}), 1, 0},
  };
  for (const auto& [capabilities, elements, encryption, authentication] : samples) {
    const Buffer frame = ManagementFrame(8, BroadcastMac(), kAp, kAp, Announcement(capabilities, elements));
    const PacketFacts facts = Decoded(WirelessPacket(frame));
    const std::string row = testing::PrintToString(elements);
    EXPECT_FALSE(facts.malformed) << row;
    EXPECT_EQ(facts.wireless.announced.encryption, encryption) << row;
    EXPECT_EQ(facts.wireless.announced.authentication, authentication) << row;
  }
}

TEST(WirelessDecode, ReadsNamesAndChannels) {
  const std::tuple<Buffer, std::string, bool, int> expectations[] = {
      // the name, whether it is shown, the channel
      {NameElement("net") + Element(3, {6}), "net", true, 6},
      {NameElement("") + Element(61, {36}), "", false, 36},
      {NameElement(std::string(3, '\0')), std::string(3, '\0'), false, 0},
      {NameElement(std::string(32, 'x')), std::string(32, 'x'), true, 0},
      {NameElement(std::string(33, 'x')), "", false, 0},  // longer than a name may be
      {Element(3, {}) + Element(61, {}), "", false, 0},
  };
  for (const auto& [elements, name, shows, channel] : expectations) {
    const Buffer frame = ManagementFrame(8, BroadcastMac(), kAp, kAp, Announcement(1, elements));
    const NetworkFacts network = Decoded(WirelessPacket(frame)).wireless.announced;
    EXPECT_EQ(std::string(network.name.begin(), network.name.begin() + network.name_length), name);
    EXPECT_EQ(network.shows_name(), shows) << name;
    EXPECT_EQ(network.channel, channel) << name;
  }
}

TEST(WirelessDecode, KnowsChannelsAndBands) {
  // The frequency and the modes, and what they make: channel and band.
  const std::tuple<std::uint32_t, std::uint32_t, std::uint16_t, std::uint32_t> cases[] = {
      {0, 0, 0, 0},
      {2412, kRadioCck, 1, 2},
      {2472, kRadioCck | kRadioOfdm, 13, 4},
      {2484, kRadioCck, 14, 2},
      {2437, 0, 6, 4},
      {2437, kRadioOfdm | kRadioHt, 6, 300},
      {5180, kRadioOfdm, 36, 3},
      {5825, kRadioHt, 165, 300},
      {5180, kRadioHt | kRadioWide, 36, 301},
      {5180, kRadioHt | kRadioWide | kRadioWideAbove, 36, 302},
      {5200, kRadioHt | kRadioWide | kRadioWideBelow, 40, 303},
      {5200, kRadioHt | kRadioWide | kRadioWideBelow | kRadioWideAbove, 40, 301},
      {5955, kRadioHt, 1, 6},
      {5935, kRadioHt, 2, 300},
      {5210, kRadioTurbo, 42, 7},
      {2437, kRadioTurbo, 6, 8},
      {2437, kRadioStaticTurbo, 6, 9},
      {4940, kRadioOfdm, 188, 104},
      {4940, kRadioOfdm | kRadioHalfWidth, 188, 102},
      {4940, kRadioOfdm | kRadioQuarterWidth, 188, 101},
      {900, kRadioOfdm, 0, 3},
  };
  for (const auto& [megahertz, modes, channel, band] : cases) {
    EXPECT_EQ(ChannelOfFrequency(megahertz), channel) << megahertz;
    EXPECT_EQ(BandCode(megahertz, modes), band) << megahertz << " " << modes;
  }
  for (std::uint32_t number : {1U, 13U, 14U, 36U, 165U, 188U}) {
    EXPECT_EQ(ChannelOfFrequency(FrequencyOfChannel(number)), number);
  }
  for (std::uint32_t number : {0U, 15U, 200U, 5180U}) EXPECT_EQ(FrequencyOfChannel(number), 0) << number;
}

// The rates that the tables of the standard print, doubled.
TEST(WirelessDecode, KnowsTheRatesOfNewerRadios) {
  EXPECT_EQ(HtRate(0, false, false), 13U);
  EXPECT_EQ(HtRate(7, false, true), 144U);  // 72.2
  EXPECT_EQ(HtRate(31, true, true), 1200U);
  EXPECT_EQ(HtRate(32, true, false), 12U);
  EXPECT_EQ(HtRate(32, false, false), 0U);
  EXPECT_EQ(HtRate(33, true, false), 0U);
  EXPECT_EQ(VhtRate(9, 1, 80, true), 867U);     // 433.3
  EXPECT_EQ(VhtRate(9, 8, 160, true), 13867U);  // 6933.3
  EXPECT_EQ(VhtRate(10, 1, 80, true), 0U);
  EXPECT_EQ(VhtRate(0, 0, 80, true), 0U);
  EXPECT_EQ(HeRate(11, 1, 234, 800, false), 287U);  // 143.4
  EXPECT_EQ(HeRate(0, 1, 24, 3200, true), 1U);      // 0.4
  EXPECT_EQ(HeRate(12, 1, 234, 800, false), 0U);
}

}  // namespace
}  // namespace orvo::test
