// The sections of the PDF report that show a wireless medium.

#include "tests/pdf/pdf_report_fixture.h"

namespace orvo::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class WirelessSectionsTest : public PdfReportTest {
 protected:
  WirelessSectionsTest() {
    engine.live.medium_subtype = kSubtype80211bg;
    engine.live.wireless.emplace();
  }

  WirelessNodeEntry& AddNode(WirelessNodeType type) {
    std::vector<WirelessNodeEntry>& nodes = engine.live.wireless->nodes;
    WirelessNodeEntry node;
    node.address = engine.live.AddPhysical(0x020000000000 + nodes.size());
    node.type = type;
    node.first_time_sent = 1;
    node.beacon_channel = 6;
    node.current_channel = 11;
    node.retry_packets = 5'000'000'000;
    node.beacon_packets = 2;
    node.wep_packets = 3;
    node.signal = {.min_percent = 10, .max_percent = 99};
    nodes.push_back(node);
    return nodes.back();
  }
  void AddChannel(std::int32_t number, std::uint32_t band) {
    WirelessChannelEntry channel;
    channel.channel = number;
    channel.frequency = 2437;
    channel.band = band;
    channel.total = {.packets = 1, .bytes = 5'000'000'000};
    channel.data = {.packets = 3, .bytes = 4};
    channel.management = {.packets = 5, .bytes = 6};
    channel.control = {.packets = 7, .bytes = 8};
    channel.retry = {.packets = 9, .bytes = 10};
    engine.live.wireless->channels.push_back(channel);
  }
};

TEST_F(WirelessSectionsTest, NodesShowTheChannelOfTheirKind) {
  AddNode(kWirelessAdmin);
  WirelessNodeEntry& access_point = AddNode(kWirelessAccessPoint);
  access_point.name_length = 20;
  access_point.name.fill('n');
  WirelessNodeEntry& station = AddNode(kWirelessStation);
  station.first_time_sent = 0;
  station.name_length = 2;
  station.name = {'a', 0};
  AddNode(kWirelessAdHoc);
  AddNode(static_cast<WirelessNodeType>(6));
  AddNode(kWirelessNetworkName).address = kNoAddress;
  AddNode(kWirelessStation).address = 99;  // which the table lacks
  AddNode(kWirelessStation);               // stands for no network
  engine.live.wireless->excluded = {7, kNoAddress};
  engine.at_snapshot = engine.live;
  engine.live.wireless->nodes.clear();  // the section reads the snapshot
  EXPECT_THAT(
      Print("Wireless Node Statistics"),
      ElementsAre(ElementsAre(
          "791 50:Wireless Node Statistics: Reported 11/22/2026 14:05:09",
          "761 50:*Node 150:*ESSID 250:*Type 300:*Channel 350:*Retry 400:*Beacon 450:*WEP 500:*Signal 550:*Signal",
          "749 350:*Packets 400:*Packets 450:*Packets 500:*Min 550:*Max",
          "725 50:2.0.0.0.0.0 250:Admin 300:6 350:5000000000 400:2 450:3 500:10 550:99",
          "713 # 50:2.0.0.0.0.1 150:nnnnnnnnnnnnnnn... 250:AP 300:11 350:5000000000 400:2 450:3 500:10 550:99",
          "701 50:2.0.0.0.0.2 150:0x6100 250:STA 300:6 350:0 400:0 450:0 500:0 550:0",
          "689 # 50:2.0.0.0.0.3 250:ADHOC 300:11 350:5000000000 400:2 450:3 500:10 550:99",
          "677 50:2.0.0.0.0.4 300:6 350:5000000000 400:2 450:3 500:10 550:99")));
  EXPECT_THAT(Entries(), ElementsAre("  Wireless", "    WLAN 2"));
  engine.Fail("IAddressTable::GetRecord", 1, E_FAIL);
  EXPECT_THAT(Rows(Print("Wireless Node Statistics").at(0)), SizeIs(4));
  Switch(kSwitchOutputWLANStats, 0);
  EXPECT_THAT(Print("Wireless Node Statistics"), IsEmpty());
}

TEST_F(WirelessSectionsTest, ChannelsAreShownByBytesAndByPackets) {
  AddChannel(-1, 4);
  AddChannel(6, 102);
  AddChannel(6, 5);  // has no label
  EXPECT_THAT(Print("Wireless Channel Statistics (Bytes)"),
              ElementsAre(ElementsAre(HasSubstr("(Bytes): Reported"),
                                      "761 50:*Channel 100:*Band 170:*Total 240:*Data 310:*Mngt 380:*Ctrl 450:*Retry",
                                      "749 170:*Bytes 240:*Bytes 310:*Bytes 380:*Bytes 450:*Bytes",
                                      "725 50:-1 100:802.11bg 170:5000000000 240:4 310:6 380:8 450:10",
                                      "713 # 50:6 100:BPS 10MHz ChBw 170:5000000000 240:4 310:6 380:8 450:10",
                                      "701 50:6 170:5000000000 240:4 310:6 380:8 450:10")));
  const std::vector<Page> packets = PagesTitled("Wireless Channel Statistics (Packets)");
  ASSERT_THAT(packets, SizeIs(1));
  EXPECT_EQ(packets[0].at(1), "761 50:*Channel 100:*Frequency 170:*Total 240:*Data 310:*Mngt 380:*Ctrl 450:*Retry");
  EXPECT_EQ(packets[0].at(2), "749 170:*Packets 240:*Packets 310:*Packets 380:*Packets 450:*Packets");
  EXPECT_EQ(packets[0].at(3), "725 50:-1 100:2437 170:1 240:3 310:5 380:7 450:9");
  EXPECT_THAT(Entries(), ElementsAre("  Wireless", "    Wireless Channels 2"));
  engine.Fail("IWirelessChannelStats::GetEntry", 2, kDenied);
  EXPECT_THAT(Rows(Print("Wireless Channel Statistics (Bytes)").at(0)), SizeIs(1));
  EXPECT_THAT(Rows(PagesTitled("Wireless Channel Statistics (Packets)").at(0)), SizeIs(3));
  EXPECT_EQ(Heard().status, kDenied);
  Switch(kSwitchOutputWChannelsStats, 0);
  EXPECT_THAT(Reported().Entries(), ElementsAre("  Wireless")) << "the group stands also when nothing stands below it";
}

TEST_F(WirelessSectionsTest, OtherMediaHaveNone) {
  AddNode(kWirelessStation);
  AddChannel(6, 4);
  for (std::uint32_t subtype : {0U, 4U}) {
    engine.live.medium_subtype = subtype;
    EXPECT_THAT(Reported().Entries(), IsEmpty()) << subtype;
  }
}

}  // namespace
}  // namespace orvo::test
