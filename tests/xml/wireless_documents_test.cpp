// Wireless nodes and channels: whole entries, the layout of the executive summary, and what makes rows go missing.

#include <gmock/gmock.h>

#include "tests/xml/xml_report_fixture.h"

namespace orvo::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class WirelessDocumentsTest : public XmlReportTest {
 protected:
  WirelessDocumentsTest() {
    SwitchOff({kSwitchOutputGraphs, kSwitchOutputNodeStats, kSwitchOutputProtocolStats, kSwitchOutputNodeDetails});
    engine.live.missing = {kSummaryCategory.identifier};
    engine.live.medium_subtype = kSubtype80211b;
    ScriptedWireless& wireless = engine.live.wireless.emplace();
    wireless.counts = {.networks = 1, .access_points = 2, .ad_hoc_networks = 3, .clients = 4};
    WirelessNodeEntry no_address;
    no_address.address = kNoAddress;
    WirelessNodeEntry unknown;
    unknown.address = 99;
    wireless.nodes = {AccessPoint(), no_address, SilentStation(), unknown};
    wireless.excluded = {3, 4711};
    wireless.node_rates[0] = {{.rate = 11, .packets = 7, .bytes = 70}, {.rate = 12, .packets = 1, .bytes = 1}};
    wireless.channels = {Channel()};
    wireless.channel_rates[{6, 2437, 4}] = {{.rate = 2, .packets = 5, .bytes = 50}};
  }

  WirelessNodeEntry AccessPoint() {
    WirelessNodeEntry node;
    node.first_time_sent = Moment(-60);
    node.last_time_sent = Moment();
    node.packets_sent = 10;
    node.packets_received = 5;
    node.bytes_sent = 250;
    node.bytes_received = 500;
    node.first_time_received = Moment(-30);
    node.last_time_received = Moment(-10);
    node.address = engine.live.AddPhysical(0x020000000001);
    node.type = kWirelessAccessPoint;
    node.broadcast_packets = 21;
    node.broadcast_bytes = 22;
    node.multicast_packets = 23;
    node.multicast_bytes = 24;
    node.retry_packets = 25;
    node.beacon_packets = 26;
    node.wep_packets = 27;
    node.icv_errors = 28;
    node.min_size_sent = 60;
    node.max_size_sent = 1500;
    node.min_size_received = 61;
    node.max_size_received = 1400;
    node.wep_key = 2;
    node.beacon_channel = 6;
    node.current_channel = 11;
    node.encryption = 3;
    node.trust = 2;
    node.name_length = 2;
    node.name = {'h', 'i'};
    node.signal = {.min_percent = 1, .max_percent = 2, .current_percent = 3, .min_dbm = -90};
    node.noise = {4, 5, 6, -95, -94, -93};
    return node;
  }
  /// Has only received, apart from broadcasts.
  WirelessNodeEntry SilentStation() {
    WirelessNodeEntry node;
    node.packets_received = 2;
    node.bytes_received = 9;
    node.broadcast_packets = 8;
    node.broadcast_bytes = 1;
    node.retry_packets = 77;
    node.address = engine.live.AddPhysical(0x020000000002);
    node.type = kWirelessStation;
    node.association_keys = {0, 0};
    node.min_size_received = 60;
    node.signal.min_dbm = -90;
    return node;
  }
  static WirelessChannelEntry Channel() {
    WirelessChannelEntry channel;
    channel.channel = 6;
    channel.frequency = 2437;
    channel.band = 4;
    channel.total = {.packets = 4, .bytes = 400};
    channel.data = {.packets = 31, .bytes = 32};
    channel.management = {.packets = 33, .bytes = 34};
    channel.control = {.packets = 35, .bytes = 36};
    channel.local = {.packets = 37, .bytes = 38};
    channel.from_ds = {.packets = 39, .bytes = 40};
    channel.to_ds = {.packets = 41, .bytes = 42};
    channel.ds_to_ds = {.packets = 43, .bytes = 44};
    channel.retry = {.packets = 45, .bytes = 46};
    channel.protected_frames = {.packets = 47, .bytes = 48};
    channel.order = {.packets = 1, .bytes = 2};
    channel.crc_packets = 5;
    channel.icv_errors = 3;
    channel.signal = {.min_percent = 10,
                      .max_percent = 20,
                      .current_percent = 15,
                      .min_dbm = -80,
                      .max_dbm = -70,
                      .current_dbm = -75};
    channel.signal_sum = 50;
    channel.signal_milliwatt_sum = 0.04;
    return channel;
  }
};

TEST_F(WirelessDocumentsTest, NodesAndChannels) {
  EXPECT_EQ(Reported().Brief("StatsReport.xml", {"WirelessNodeStatistics"}), Items(R"(
  WirelessNodeStatistics Version=2.0 {
    Summary { TimeSaved=11/22/2026 14:05:09; Packets=10; Bytes=1000; BSSNetworkCount=1; APNodeCount=2;
        AdHocNetworkCount=3; ClientNodeCount=4 }
    Stats {
      WirelessNodeStat { Node=2.0.0.0.0.1; NodeType=AP; FirstTimeSent=11/22/2026 14:04:09;
          LastTimeSent=11/22/2026 14:05:09; FirstTimeRec=11/22/2026 14:04:39; LastTimeRec=11/22/2026 14:04:59;
          PktsSent=10; PktsRec=5; TotalBytes=750; TotalPackets=15; BytesSent=250; BytesSentPct=0.250000;
          BytesRec=500; BytesRecPct=0.500000; BroadcastPkts=21; BroadcastBytes=22; MulticastPkts=23;
          MulticastBytes=24; MinSizeSent=60; MaxSizeSent=1500; AvgSizeSent=25; MinSizeRec=61; MaxSizeRec=1400;
          AvgSizeRec=100; RetryPackets=25; BeaconPackets=26; WEPPackets=27; WEPICVPackets=28; ESSID=hi; Channel=6;
          WEPKey=2; SignalMin=1; SignalMax=2; SignalCur=3; SignaldBmMin=-90; SignaldBmMax=-127; SignaldBmCur=-127;
          NoiseMin=4; NoiseMax=5; NoiseCur=6; NoisedBmMin=-95; NoisedBmMax=-94; NoisedBmCur=-93; Duration=00:01:00.000000;
          Encryption=TKIP; Authentication=; Privacy=False; BeaconESSID=Off; Associations=; Trust=Trusted;
          DataRate Name=1 Mbits/s Packets Value=0; DataRate Name=1 Mbits/s Bytes Value=0;
          DataRate Name=2 Mbits/s Packets Value=0; DataRate Name=2 Mbits/s Bytes Value=0;
          DataRate Name=5.5 Mbits/s Packets Value=7; DataRate Name=5.5 Mbits/s Bytes Value=70;
          DataRate Name=11 Mbits/s Packets Value=0; DataRate Name=11 Mbits/s Bytes Value=0 }
      WirelessNodeStat { Node=2.0.0.0.0.2; NodeType=STA; FirstTimeSent=; LastTimeSent=; FirstTimeRec=; LastTimeRec=;
          PktsSent=0; PktsRec=2; TotalBytes=9; TotalPackets=2; BytesSent=0; BytesSentPct=0.000000; BytesRec=9;
          BytesRecPct=0.009000; BroadcastPkts=8; BroadcastBytes=0; MulticastPkts=0; MulticastBytes=0; MinSizeSent=0;
          MaxSizeSent=0; AvgSizeSent=0; MinSizeRec=0; MaxSizeRec=0; AvgSizeRec=4; RetryPackets=0; BeaconPackets=0;
          WEPPackets=0; WEPICVPackets=0; ESSID=; Channel=0; WEPKey=0; SignalMin=0; SignalMax=0; SignalCur=0;
          SignaldBmMin=0; SignaldBmMax=0; SignaldBmCur=0; NoiseMin=0; NoiseMax=0; NoiseCur=0; NoisedBmMin=0;
          NoisedBmMax=0; NoisedBmCur=0; Duration=; Encryption=; Authentication=; Privacy=False; BeaconESSID=Off;
          Associations=; Trust=Unknown; DataRate Name=1 Mbits/s Packets Value=0;
          DataRate Name=1 Mbits/s Bytes Value=0; DataRate Name=2 Mbits/s Packets Value=0;
          DataRate Name=2 Mbits/s Bytes Value=0; DataRate Name=5.5 Mbits/s Packets Value=0;
          DataRate Name=5.5 Mbits/s Bytes Value=0; DataRate Name=11 Mbits/s Packets Value=0;
          DataRate Name=11 Mbits/s Bytes Value=0 } } })"));
  EXPECT_EQ(Brief("StatsReport.xml", {"WirelessChannelStatistics"}), Items(R"(
  WirelessChannelStatistics Version=1.0 {
    Summary { TimeSaved=11/22/2026 14:05:09; Packets=10; Bytes=1000 }
    Stats {
      ChannelStat { Channel=6; Frequency=2437; Band=802.11bg; Packets=4; Bytes=400; DataPackets=31; DataBytes=32;
          MngtPackets=33; MngtBytes=34; CtrlPackets=35; CtrlBytes=36; LocalPackets=37; LocalBytes=38; FromDSPackets=39;
          FromDSBytes=40; ToDSPackets=41; ToDSBytes=42; DS2DSPackets=43; DS2DSBytes=44; RetryPackets=45; RetryBytes=46;
          ProtectedPackets=47; ProtectedBytes=48; OrderPackets=1; OrderBytes=2; CRCPackets=5; WEPICVErrors=3;
          SignalMin=10; SignalMax=20; SignalCur=15; SignalAvg=12.500; SignaldBmMin=-80; SignaldBmMax=-70;
          SignaldBmCur=-75; SignaldBmAvg=-20.000; NoiseMin=0; NoiseMax=0; NoiseCur=0; NoiseAvg=0.000;
          NoisedBmMin=-127; NoisedBmMax=-127; NoisedBmCur=-127; NoisedBmAvg=;
          DataRate Name=1 Mbits/s Packets Value=5; DataRate Name=1 Mbits/s Bytes Value=50;
          DataRate Name=2 Mbits/s Packets Value=0; DataRate Name=2 Mbits/s Bytes Value=0;
          DataRate Name=5.5 Mbits/s Packets Value=0; DataRate Name=5.5 Mbits/s Bytes Value=0;
          DataRate Name=11 Mbits/s Packets Value=0; DataRate Name=11 Mbits/s Bytes Value=0 } } })"));
  EXPECT_THAT(Sections(), ElementsAre("WirelessNodeStatistics", "WirelessChannelStatistics"));
  EXPECT_THAT(Children("WirelessNodeStatistics.xml", {"History"}), ElementsAre("Summary", "Stats"));
  SwitchOff({kSwitchDataRatesPackets, kSwitchDataRatesBytes});
  EXPECT_THAT(Reported().folder.Read("StatsReport.xml"), Not(HasSubstr("DataRate")));
}

TEST_F(WirelessDocumentsTest, TheExecutiveSummaryShowsAccessPointsAndStationsApart) {
  Switch(kSwitchOutputExecutiveSummary, 1);
  EXPECT_THAT(Reported().Children("StatsReport.xml", {"WirelessNodeStatistics", "Stats"}), ElementsAre("Type", "Type"));
  EXPECT_THAT(folder.Read("StatsReport.xml"), HasSubstr("<Type Name=\"STA\">\n        <WirelessNodeStat>\n"
                                                        "          <Node>2.0.0.0.0.2</Node>"));
  EXPECT_THAT(
      Children("StatsReport.xml", {"WirelessNodeStatistics", "Stats", "Type", "WirelessNodeStat"}),
      ElementsAre("Node", "NodeType", "PktsSent", "PktsRec", "TotalBytes", "TotalPackets", "BytesSent", "BytesSentPct",
                  "BytesRec", "BytesRecPct", "BroadcastPkts", "BroadcastBytes", "MulticastPkts", "MulticastBytes",
                  "AvgSizeSent", "AvgSizeRec", "RetryPackets", "BeaconPackets", "ESSID", "Channel"));
}

TEST_F(WirelessDocumentsTest, AnAddressIsAskedForTwice) {
  engine.Fail("IAddressTable::GetRecord", 1, E_FAIL);
  EXPECT_EQ(Reported().Children("StatsReport.xml", {"WirelessNodeStatistics", "Stats"}).size(), 2U);
}

TEST_F(WirelessDocumentsTest, ChannelsFollowWrittenNodesOnly) {
  Switch(kSwitchOutputWLANStats, 0);
  EXPECT_THAT(Reported().Sections(), ElementsAre());
  Switch(kSwitchOutputWLANStats, 1);
  // The second reading of the excluded nodes is that of the history.
  engine.Fail("IWirelessNodeStats::GetExcluded", 2, E_FAIL);
  EXPECT_THAT(Reported().Sections(), ElementsAre("WirelessNodeStatistics"));
  EXPECT_EQ(FileStatus("WirelessNodeStatistics.xml"), E_FAIL);
}

}  // namespace
}  // namespace orvo::test
