// What is counted of wireless frames, as reports see it.

#include <gtest/gtest.h>

#include <random>

#include "capture/context/snapshot_wireless.h"
#include "capture/context/stats_snapshot.h"
#include "capture/decode/protocol_registry.h"
#include "capture/names/trust_file.h"
#include "capture/source/capture_file.h"
#include "platform/persist.h"
#include "tests/capture/describe_wireless.h"
#include "tests/capture/memory_stream.h"
#include "tests/support/temporary_folder.h"

namespace orvo::test {
namespace {

#define AP "02:00:00:00:00:0a"
#define AP2 "02:00:00:00:00:0b"
#define STA "02:00:00:00:00:01"

const Buffer kAp = Mac(10);
const Buffer kAp2 = Mac(11);
const Buffer kSta = Mac(1);
constexpr unsigned kEss = 1;
constexpr unsigned kIbss = 2;
constexpr unsigned kPrivacy = 0x10;

Buffer BeaconOf(const Buffer& ap, const std::string& name, unsigned capabilities = kEss, std::uint8_t channel = 6) {
  return ManagementFrame(8, BroadcastMac(), ap, ap,
                         Announcement(capabilities, NameElement(name) + Element(3, {channel})));
}
Buffer ProbeResponse(const Buffer& ap, const std::string& name) {
  return ManagementFrame(5, kSta, ap, ap, Announcement(kEss, NameElement(name)));
}
Buffer ProbeRequest(const std::string& name) {
  return ManagementFrame(4, BroadcastMac(), kSta, BroadcastMac(), NameElement(name));
}
Buffer AssociationRequest(const Buffer& ap, const std::string& name, unsigned capabilities = kEss) {
  return ManagementFrame(0, ap, kSta, ap, Le16(capabilities) + Le16(10) + NameElement(name));
}
Buffer AssociationResponse(const Buffer& ap, unsigned status) {
  return ManagementFrame(1, kSta, ap, ap, Le16(kEss) + Le16(status) + Le16(1));
}
Buffer Authentication(const Buffer& ap, unsigned algorithm = 0) {
  return ManagementFrame(11, ap, kSta, ap, Le16(algorithm) + Le16(1) + Le16(0));
}
Buffer Deauthentication(const Buffer& ap) {
  return ManagementFrame(12, kSta, ap, ap, Le16(6));
}
Buffer Upward(const Buffer& ap, const Buffer& body = IpPacket(), std::uint8_t flags = 0) {
  return DataFrame(kToDsBit | flags, ap, kSta, Mac(2), body);
}
Buffer Eap(std::uint8_t code, std::uint8_t method) {
  return Snap(0x888E, {2, 0, 0, 6, code, 1, 0, 6, method, 0});
}

std::string DescribeAll(const View& view) {
  return DescribeNodes(view) + DescribeNodes(view, DescribeTraffic) + DescribeChannels(view);
}

void FeedAll(CaptureEngine& engine, const std::vector<Buffer>& frames) {
  for (const Buffer& frame : frames) engine.Feed(WirelessPacket(frame));
}

/// The line of one node after these frames.
std::string NodeAfter(const std::vector<Buffer>& frames, const std::string& address = STA) {
  CaptureEngine engine;
  FeedAll(engine, frames);
  const std::string lines = "\n" + DescribeNodes(View(engine));
  const std::size_t at = lines.find("\n" + address + " ");
  return at == std::string::npos ? "" : lines.substr(at + 1, lines.find('\n', at + 1) - at - 1);
}

struct Story {
  std::vector<Buffer> frames;
  const char* node;
  const char* address = STA;
};

TEST(WirelessNodes, AreTiedToAccessPoints) {
  const Story stories[] = {
      {{ProbeRequest("")}, STA " STA '' of - none ch=0/0 enc=0 auth=0"},
      {{ProbeRequest("net")}, STA " STA 'net' of - weak ch=0/0 enc=0 auth=0"},
      {{BeaconOf(kAp, "net"), Authentication(kAp)}, STA " STA 'net' of " AP " weak ch=6/6 enc=0 auth=0"},
      {{BeaconOf(kAp, "net"), AssociationRequest(kAp, "net")}, STA " STA 'net' of " AP " weak ch=6/6 enc=0 auth=0"},
      {{BeaconOf(kAp, "net"), AssociationResponse(kAp, 0)}, STA " STA 'net' of " AP " strong ch=6/6 enc=0 auth=0"},
      {{BeaconOf(kAp, "net"), AssociationResponse(kAp, 17)}, STA " STA 'net' of " AP " weak ch=6/6 enc=0 auth=0"},
      {{BeaconOf(kAp, "net"), Upward(kAp)}, STA " STA 'net' of " AP " strong ch=6/6 enc=0 auth=0"},
      {{BeaconOf(kAp, "net"), DataFrame(kToDsBit, kAp, kSta, kAp, {}, 4)},
       STA " STA 'net' of " AP " weak ch=6/6 enc=0 auth=0"},
      {{Upward(kAp), Deauthentication(kAp)}, STA " STA '' of " AP " weak ch=0/0 enc=0 auth=0"},
      {{Upward(kAp), Deauthentication(kAp2)}, STA " STA '' of " AP " strong ch=0/0 enc=0 auth=0"},
      // Weak ties give way to all, strong ones to strong ones.
      {{ProbeResponse(kAp, "one"), ProbeResponse(kAp2, "two")}, STA " STA 'two' of " AP2 " weak ch=0/0 enc=0 auth=0"},
      {{ProbeResponse(kAp, "one"), Upward(kAp), ProbeResponse(kAp2, "two"), ProbeRequest("three")},
       STA " STA 'one' of " AP " strong ch=0/0 enc=0 auth=0"},
      {{Upward(kAp), ProbeResponse(kAp2, "two"), AssociationResponse(kAp2, 0)},
       STA " STA 'two' of " AP2 " strong ch=0/0 enc=0 auth=0"},
      {{ControlFrame(10, kAp, kSta)}, STA " STA '' of " AP " weak ch=0/0 enc=0 auth=0"},
      {{BeaconOf(kAp, "net"), ControlFrame(11, kSta, kAp)}, STA " STA 'net' of " AP " weak ch=6/6 enc=0 auth=0"},
      // What may come from anybody ties nobody.
      {{BeaconOf(kAp, "net"), ControlFrame(13, kSta)}, STA " STA '' of - none ch=0/0 enc=0 auth=0"},
      {{DataFrame(kFromDsBit, BroadcastMac(), kAp, kSta, IpPacket())}, ""},
  };
  for (const Story& story : stories) EXPECT_EQ(NodeAfter(story.frames), story.node) << &story - stories;
}

TEST(WirelessNodes, AreWhatTheyDo) {
  const Story stories[] = {
      {{BeaconOf(kAp, "net", kEss | kPrivacy)}, AP " AP 'net' ch=6/6 enc=1 auth=0 private shown", AP},
      {{BeaconOf(kAp, "")}, AP " AP '' ch=6/6 enc=0 auth=0", AP},
      {{BeaconOf(kAp, std::string(3, '\0')), ProbeResponse(kAp, "net")}, AP " AP 'net' ch=6/6 enc=0 auth=0", AP},
      {{BeaconOf(kAp, ""), AssociationRequest(kAp, "net")}, AP " AP 'net' ch=6/6 enc=0 auth=0", AP},
      {{BeaconOf(kAp, "net"), BeaconOf(kAp, "")}, AP " AP 'net' ch=6/6 enc=0 auth=0", AP},
      {{BeaconOf(kAp, "old"), BeaconOf(kAp, "new")}, AP " AP 'new' ch=6/6 enc=0 auth=0 shown", AP},
      {{BeaconOf(kAp, "net", 0)}, AP " STA '' of - none ch=0/0 enc=0 auth=0", AP},  // part of a mesh
      {{BeaconOf(kSta, "net", kIbss)}, STA " ad hoc 'net' ch=6/6 enc=0 auth=0 shown"},
      {{DataFrame(0, Mac(2), kSta, Mac(99), IpPacket())}, STA " ad hoc '' ch=0/0 enc=0 auth=0"},
      {{DataFrame(0, Mac(2), kSta, BroadcastMac(), IpPacket())}, STA " STA '' of - none ch=0/0 enc=0 auth=0"},
      // Stations of one access point may speak to each other.
      {{Upward(kAp), DataFrame(0, Mac(2), kSta, kAp, IpPacket())}, STA " STA '' of " AP " strong ch=0/0 enc=0 auth=0"},
      {{DataFrame(kToDsBit | kFromDsBit, kAp, kAp2, Mac(2), kSta + IpPacket())}, AP2 " AP '' ch=0/0 enc=0 auth=0", AP2},
      {{BeaconOf(kAp, "net"), DataFrame(kToDsBit | kFromDsBit, kAp, kAp2, Mac(2), kSta + IpPacket())},
       AP2 " STA 'net' of " AP " strong ch=6/6 enc=0 auth=0",
       AP2},
      {{Upward(kSta), BeaconOf(kSta, "net")}, STA " AP 'net' ch=6/6 enc=0 auth=0 shown"},
      {{BeaconOf(kAp, "net")}, "ff:ff:ff:ff:ff:ff admin '' ch=0/0 enc=0 auth=0", "ff:ff:ff:ff:ff:ff"},
      // Authentication and encryption, by what was seen to be done.
      {{Upward(kAp, Eap(1, 1))}, STA " STA '' of " AP " strong ch=0/0 enc=0 auth=1"},
      {{Upward(kAp, Eap(2, 25)), Upward(kAp, Eap(1, 1))}, STA " STA '' of " AP " strong ch=0/0 enc=0 auth=3"},
      {{Upward(kAp, Eap(1, 13))}, AP " AP '' ch=0/0 enc=0 auth=4", AP},
      {{Upward(kAp, Eap(2, 3))}, STA " STA '' of " AP " strong ch=0/0 enc=0 auth=0"},
      {{Upward(kAp, Eap(3, 13))}, STA " STA '' of " AP " strong ch=0/0 enc=0 auth=0"},
      {{Authentication(kAp, 0x80)}, STA " STA '' of " AP " weak ch=0/0 enc=0 auth=2"},
      {{Upward(kAp, Zeros(20), kProtectedBit)}, STA " STA '' of " AP " strong ch=0/0 enc=1 auth=0 private"},
      {{Upward(kAp, Buffer{1, 0x21, 5, 0x20} + Zeros(20), kProtectedBit)},
       STA " STA '' of " AP " strong ch=0/0 enc=3 auth=0 private"},
      {{AssociationRequest(kAp, "net", kEss | kPrivacy)}, STA " STA 'net' of " AP " weak ch=0/0 enc=1 auth=0 private"},
  };
  for (const Story& story : stories) EXPECT_EQ(NodeAfter(story.frames, story.address), story.node) << &story - stories;
}

TEST(WirelessNodes, CountsNetworks) {
  CaptureEngine engine;
  FeedAll(engine, {BeaconOf(kAp, "net"), BeaconOf(kAp2, "net"), BeaconOf(Mac(12), "other"), BeaconOf(Mac(13), ""),
                   DataFrame(0, Mac(2), kSta, Mac(99), IpPacket()), DataFrame(0, kSta, Mac(2), Mac(99), IpPacket()),
                   DataFrame(0, Mac(3), Mac(4), Mac(98), IpPacket()), ProbeRequest("wanted"),
                   ManagementFrame(4, BroadcastMac(), Mac(5), BroadcastMac(), NameElement("wanted"))});
  auto counts = [&] {
    const std::string lines = DescribeNodes(View(engine));
    return lines.substr(lines.rfind('\n', lines.size() - 2) + 1);
  };
  EXPECT_EQ(counts(), "networks=3 access-points=4 ad-hoc=2 clients=1\n");
  FeedAll(engine, {BeaconOf(Mac(12), "net"), BeaconOf(Mac(13), "late")});
  EXPECT_EQ(counts(), "networks=2 access-points=4 ad-hoc=2 clients=1\n");
}

TEST(WirelessNodes, CountWhatTheRadioHeard) {
  CaptureEngine engine;
  const Buffer frames[] = {
      Radio(2437, 22, -100, Upward(kAp, Buffer{1, 2, 3, 0xC0} + Zeros(20), kProtectedBit | kRetryBit)),
      Radio(2437, 22, -60, Upward(kAp, Buffer{1, 2, 3, 0xC0} + Zeros(2), kProtectedBit)),
      Radio(2437, 108, -70, ControlFrame(13, kSta)),
      Radio(2437, 2, -50, DataFrame(kFromDsBit, MulticastMac(), kAp, kSta, IpPacket())),
      Radio(2437, 2, -40, DataFrame(kToDsBit, Mac(77), Mac(78), Mac(79), IpPacket()) + Zeros(4), 0x50),  // damaged
  };
  for (const Buffer& frame : frames) engine.Feed(WirelessPacket(frame, kLinkRadiotap));
  View view(engine);
  EXPECT_EQ(DescribeNodes(view, DescribeTraffic), STA
            " sent=2/110 received=1/26 to-all=0 to-many=0 retry=1 beacon=0 wep=2,3 icv=1 "
            "signal=0-80,80% -100..-60,-60 noise=10-10,10% -95..-95,-95 rates=22:2/110 108:1/26\n" AP
            " sent=1/80 received=2/110 to-all=0 to-many=1 retry=0 beacon=0 wep=0,0 icv=0 "
            "signal=100-100,100% -50..-50,-50 noise=10-10,10% -95..-95,-95 rates=2:1/80 22:2/110\n"
            "01:00:5e:00:00:fb sent=0/0 received=1/80 to-all=0 to-many=0 retry=0 beacon=0 wep=0,0 icv=0 "
            "signal=0-0,0% -..-,- noise=0-0,0% -..-,- rates=2:1/80\n"
            "networks=1 access-points=1 ad-hoc=0 clients=1\n");
  EXPECT_EQ(DescribeChannels(view),
            "6/2437 band=4 total=5/300 data=3/190 control=1/26 local=1/26 from=1/80 to=2/110 retry=1/64 "
            "protected=2/110 crc=1 icv=1 signal=0-100,100% -100..-40,-40,340 noise=10-10,10% -95..-95,-95,50 "
            "rates=2:2/164 22:2/110 108:1/26\n");
  ComPtr<IWirelessChannelStats> channels = view.Get(kWirelessChannelCategory);
  const WirelessChannelEntry* entry = Ask(channels)(&IWirelessChannelStats::GetEntry, 0U);
  EXPECT_NEAR(entry->signal_milliwatt_sum, 1e-10 + 1e-6 + 1e-7 + 1e-5 + 1e-4, 1e-12);
  EXPECT_EQ(channels->GetEntry(1, &entry), E_INVALIDARG);
  // Whom the damaged frame names has sent and received nothing. The access point is beside the ends of its frames.
  EXPECT_EQ(view.Value("Physical Addresses").first, 3U);
}

TEST(WirelessNodes, AreABoundedTable) {
  EngineOptions options;
  options.max_wireless_nodes = 3;
  options.max_wireless_channels = 1;
  CaptureEngine engine(options);
  for (std::uint8_t i = 0; i < 10; ++i) {
    const Buffer frame =
        Radio(2412 + 5U * i, 2, -50,
              ManagementFrame(4, BroadcastMac(), Mac(i), BroadcastMac(), NameElement(std::string(1, 'a'))));
    engine.Feed(WirelessPacket(frame, kLinkRadiotap));
  }
  View view(engine);
  EXPECT_EQ(view.Entries(kWirelessNodeCategory).size(), 2U + 3);
  EXPECT_EQ(view.Entries(kWirelessChannelCategory).size(), 1U);
  EXPECT_EQ(view.Value("Packets of Wireless Rows Not Listed").first, 9U);
  EXPECT_EQ(view.Value("Total Packets").first, 10U);
}

TEST(WirelessNodes, AreFrozenWhenHandedOut) {
  CaptureEngine engine;
  FeedAll(engine, {BeaconOf(kAp, "net")});
  View before(engine);
  const std::string first = DescribeAll(before);
  FeedAll(engine, {BeaconOf(kAp, "new"), Upward(kAp), BeaconOf(kAp2, "two")});
  EXPECT_EQ(DescribeAll(before), first);
  EXPECT_NE(DescribeNodes(View(engine)), DescribeNodes(before));
  // Starting over forgets the nodes, but not that the medium is wireless.
  ASSERT_EQ(engine.Context()->ResetStatistics(), S_OK);
  View reset(engine);
  EXPECT_EQ(DescribeNodes(reset), "networks=0 access-points=0 ad-hoc=0 clients=0\n");
  FeedAll(engine, {ProbeRequest("net")});
  EXPECT_EQ(DescribeNodes(View(engine)), STA
            " STA 'net' of - weak ch=0/0 enc=0 auth=0\nff:ff:ff:ff:ff:ff admin '' ch=0/0 enc=0 auth=0\n"
            "- name 'net' ch=0/0 enc=0 auth=0\nnetworks=0 access-points=0 ad-hoc=0 clients=1\n");
}

TEST(WirelessMedium, IsToldByBandsAndRates) {
  struct Expectation {
    std::vector<Buffer> packets;
    std::uint32_t link;
    std::uint32_t subtype;
  };
  const Buffer ack = ControlFrame(13, kSta);
  auto said = [](const Buffer& rates) {
    return ManagementFrame(4, BroadcastMac(), kSta, BroadcastMac(), Element(1, rates));
  };
  const Expectation expectations[] = {
      {{Ethernet(Mac(2), Mac(1), 0x0800, {})}, kLinkEthernet, kSubtypeWired},
      {{Radio(2437, 22, -50, ack)}, kLinkRadiotap, kSubtype80211b},
      {{Radio(2437, 22, -50, ack), Radio(2437, 108, -50, ack)}, kLinkRadiotap, kSubtype80211bg},
      {{Radio(5180, 108, -50, ack)}, kLinkRadiotap, kSubtype80211a},
      {{Radio(5180, 108, -50, ack), Radio(2437, 22, -50, ack)}, kLinkRadiotap, kSubtype80211bg},
      {{said({0x82, 0x84, 11, 22})}, kLinkWireless, kSubtype80211b},
      {{said({0x82, 0x84, 11, 22, 48})}, kLinkWireless, kSubtype80211bg},
      {{said({0x8C, 18, 24})}, kLinkWireless, kSubtype80211a},
      {{ack}, kLinkWireless, kSubtype80211bg},
      {{Buffer{1}}, kLinkWireless, kSubtype80211bg},
  };
  for (const Expectation& expected : expectations) {
    CaptureEngine engine;
    for (const Buffer& packet : expected.packets) engine.Feed(WirelessPacket(packet, expected.link));
    View view(engine);
    EXPECT_EQ(Ask(view.context)(&IStatsContext::GetMediumType), kMediumEthernet);
    EXPECT_EQ(Ask(view.context)(&IStatsContext::GetMediumSubtype), expected.subtype) << &expected - expectations;
    const bool is_wireless = expected.subtype != kSubtypeWired;
    ComPtr<IWirelessNodeStats> nodes;
    ComPtr<IWirelessChannelStats> channels;
    EXPECT_EQ(Succeeded(GetCategory(view.context.get(), kWirelessNodeCategory, &nodes)), is_wireless);
    EXPECT_EQ(Succeeded(GetCategory(view.context.get(), kWirelessChannelCategory, &channels)), is_wireless);
    EXPECT_EQ(Ask(view.Get(kSizeCategory))(&ISizeStats::GetScheme), is_wireless ? kSizesWireless : kSizesEthernet);
  }
}

TEST(WirelessMedium, HasSizesOfItsOwn) {
  CaptureEngine engine;
  for (std::uint32_t length : {63U, 64U, 255U, 256U, 512U, 1024U, 2047U, 2048U, 2346U, 2347U}) {
    Buffer frame = ControlFrame(13, kSta);
    Packet packet = WirelessPacket(frame);
    packet.original_length = length;
    engine.Feed(packet);
  }
  EXPECT_EQ(View(engine).SizeBuckets(), (std::vector<std::uint64_t>{1, 2, 1, 1, 2, 2, 1}));
}

TEST(Trust, ComesFromAFile) {
  TemporaryFolder folder;
  folder.Write("trust", "# whom we know\n02:00:00:00:00:01 known\n\n02-00-00-00-00-0A  trusted # ours\n");
  EngineOptions options;
  std::string bad_line;
  ASSERT_EQ(ReadTrustFile(folder.Path("trust"), &options.trusted_addresses, &bad_line), S_OK);
  CaptureEngine engine(options);
  FeedAll(engine, {BeaconOf(kAp, "net"), ProbeRequest("")});
  EXPECT_EQ(DescribeNodes(View(engine)), AP
            " AP 'net' ch=6/6 enc=0 auth=0 shown trust=2\nff:ff:ff:ff:ff:ff admin '' ch=0/0 enc=0 auth=0\n"
            "- name 'net' ch=0/0 enc=0 auth=0\n" STA
            " STA '' of - none ch=0/0 enc=0 auth=0 trust=1\n"
            "networks=1 access-points=1 ad-hoc=0 clients=1\n");

  for (const std::string line :
       {"02:00:00:00:00:01", "02:00:00:00:00:01 friend", "02:00:00:00:00 known", "02:00:00:00:00:0g known",
        "02:00:00:00:00:01 known more", "02.00.00.00.00.01 known"}) {
    folder.Write("bad", "02:00:00:00:00:01 known\n" + line + "\n");
    std::vector<TrustedAddress> addresses;
    EXPECT_EQ(ReadTrustFile(folder.Path("bad"), &addresses, &bad_line), E_INVALIDARG);
    EXPECT_EQ(bad_line, line);
  }
  EXPECT_TRUE(Failed(ReadTrustFile(folder.Path("missing"), &options.trusted_addresses, &bad_line)));
}

template <class Take>
void ForEachSamplePacket(Take take) {
  SourceError error;
  auto source = OpenCaptureFile(ORVO_SOURCE_DIR "/samples/wireless.pcap", &error);
  ASSERT_TRUE(source) << error.message;
  for (Packet packet; source->Next(&packet);) take(packet);
}

TEST(WirelessSnapshot, HoldsEverythingWireless) {
  CaptureEngine engine;
  ForEachSamplePacket([&](const Packet& packet) { engine.Feed(packet); });
  View view(engine);
  const std::string live = DescribeAll(view);
  ComPtr<IStatsSnapshotSource> source;
  ASSERT_EQ(Query(view.context.get(), &source), S_OK);
  auto stream = MakeObject<MemoryStream>();
  std::uint64_t mark = 0;
  ASSERT_EQ(source->WriteStatistics(stream.get(), &mark), S_OK);
  ComPtr<IUnknown> snapshot = MakeStatsSnapshot();
  ComPtr<IPersistStream> persist;
  ASSERT_EQ(Query(snapshot.get(), &persist), S_OK);
  auto copy = MakeObject<MemoryStream>();
  copy->bytes = stream->bytes;
  ASSERT_EQ(persist->Load(copy.get()), S_OK);
  // What follows does not reach the snapshot, whose addresses are still those of the live table.
  FeedAll(engine, {BeaconOf(kAp, "new")});
  ASSERT_EQ(Query(snapshot.get(), &view.context), S_OK);
  EXPECT_EQ(DescribeAll(view), live);
}

TEST(WirelessSnapshot, IsReadWithDistrust) {
  AddressTable addresses(1000);
  WirelessTables tables({}, nullptr);
  ForEachSamplePacket([&](const Packet& packet) {
    PacketFacts facts = Decoded(packet);
    tables.Count({packet.time, packet.original_length, facts.eap_method, facts.wireless}, &addresses);
  });
  SnapshotWriter out;
  WriteWireless(*tables.Freeze(), out);
  const std::string bytes = out.bytes();
  auto read = [](const std::string& text) { return Guard([&] { ReadWireless(SnapshotReader(text)); }); };
  EXPECT_EQ(read(bytes), S_OK);
  EXPECT_EQ(read(bytes + '\0'), E_FAIL);
  for (std::size_t length = 0; length < bytes.size(); length += 7) EXPECT_EQ(read(bytes.substr(0, length)), E_FAIL);
  std::mt19937 random(1);
  for (int round = 0; round < 2000; ++round) {
    std::string changed = bytes;
    changed[random() % changed.size()] = static_cast<char>(random());
    const Status status = read(changed);
    EXPECT_TRUE(status == S_OK || status == E_FAIL);
  }
}

}  // namespace
}  // namespace orvo::test
