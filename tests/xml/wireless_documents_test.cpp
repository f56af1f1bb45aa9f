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
    for (std::uint32_t other :
         {kSwitchOutputGraphs, kSwitchOutputNodeStats, kSwitchOutputProtocolStats, kSwitchOutputNodeDetails}) {
      Switch(other, 0);
    }
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
    node.max_size_sent = 1500;
    node.beacon_channel = 6;
    node.current_channel = 11;
    node.encryption = 3;
    node.trust = 2;
    node.name_length = 2;
    node.name = {'h', 'i'};
    node.signal = {.min_percent = 1, .max_percent = 2, .current_percent = 3, .min_dbm = -90};
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
    channel.order = {.packets = 1, .bytes = 2};
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
  ASSERT_EQ(Output(), S_OK);
  EXPECT_EQ(Part("StatsReport.xml", {"WirelessNodeStatistics"}), R"(<WirelessNodeStatistics Version="2.0">
  <Summary>
    <TimeSaved>11/22/2026 14:05:09</TimeSaved>
    <Packets>10</Packets>
    <Bytes>1000</Bytes>
    <BSSNetworkCount>1</BSSNetworkCount>
    <APNodeCount>2</APNodeCount>
    <AdHocNetworkCount>3</AdHocNetworkCount>
    <ClientNodeCount>4</ClientNodeCount>
  </Summary>
  <Stats>
    <WirelessNodeStat>
      <Node>2.0.0.0.0.1</Node>
      <NodeType>AP</NodeType>
      <FirstTimeSent>11/22/2026 14:04:09</FirstTimeSent>
      <LastTimeSent>11/22/2026 14:05:09</LastTimeSent>
      <FirstTimeRec>11/22/2026 14:04:39</FirstTimeRec>
      <LastTimeRec>11/22/2026 14:04:59</LastTimeRec>
      <PktsSent>10</PktsSent>
      <PktsRec>5</PktsRec>
      <TotalBytes>750</TotalBytes>
      <TotalPackets>15</TotalPackets>
      <BytesSent>250</BytesSent>
      <BytesSentPct>0.250000</BytesSentPct>
      <BytesRec>500</BytesRec>
      <BytesRecPct>0.500000</BytesRecPct>
      <BroadcastPkts>0</BroadcastPkts>
      <BroadcastBytes>0</BroadcastBytes>
      <MulticastPkts>0</MulticastPkts>
      <MulticastBytes>0</MulticastBytes>
      <MinSizeSent>0</MinSizeSent>
      <MaxSizeSent>1500</MaxSizeSent>
      <AvgSizeSent>25</AvgSizeSent>
      <MinSizeRec>0</MinSizeRec>
      <MaxSizeRec>0</MaxSizeRec>
      <AvgSizeRec>100</AvgSizeRec>
      <RetryPackets>0</RetryPackets>
      <BeaconPackets>0</BeaconPackets>
      <WEPPackets>0</WEPPackets>
      <WEPICVPackets>0</WEPICVPackets>
      <ESSID>hi</ESSID>
      <Channel>6</Channel>
      <WEPKey>0</WEPKey>
      <SignalMin>1</SignalMin>
      <SignalMax>2</SignalMax>
      <SignalCur>3</SignalCur>
      <SignaldBmMin>-90</SignaldBmMin>
      <SignaldBmMax>-127</SignaldBmMax>
      <SignaldBmCur>-127</SignaldBmCur>
      <NoiseMin>0</NoiseMin>
      <NoiseMax>0</NoiseMax>
      <NoiseCur>0</NoiseCur>
      <NoisedBmMin>-127</NoisedBmMin>
      <NoisedBmMax>-127</NoisedBmMax>
      <NoisedBmCur>-127</NoisedBmCur>
      <Duration>00:01:00.000000</Duration>
      <Encryption>TKIP</Encryption>
      <Authentication />
      <Privacy>False</Privacy>
      <BeaconESSID>Off</BeaconESSID>
      <Associations />
      <Trust>Trusted</Trust>
      <DataRate Name="1 Mbits/s Packets" Value="0" />
      <DataRate Name="1 Mbits/s Bytes" Value="0" />
      <DataRate Name="2 Mbits/s Packets" Value="0" />
      <DataRate Name="2 Mbits/s Bytes" Value="0" />
      <DataRate Name="5.5 Mbits/s Packets" Value="7" />
      <DataRate Name="5.5 Mbits/s Bytes" Value="70" />
      <DataRate Name="11 Mbits/s Packets" Value="0" />
      <DataRate Name="11 Mbits/s Bytes" Value="0" />
    </WirelessNodeStat>
    <WirelessNodeStat>
      <Node>2.0.0.0.0.2</Node>
      <NodeType>STA</NodeType>
      <FirstTimeSent />
      <LastTimeSent />
      <FirstTimeRec />
      <LastTimeRec />
      <PktsSent>0</PktsSent>
      <PktsRec>2</PktsRec>
      <TotalBytes>9</TotalBytes>
      <TotalPackets>2</TotalPackets>
      <BytesSent>0</BytesSent>
      <BytesSentPct>0.000000</BytesSentPct>
      <BytesRec>9</BytesRec>
      <BytesRecPct>0.009000</BytesRecPct>
      <BroadcastPkts>8</BroadcastPkts>
      <BroadcastBytes>0</BroadcastBytes>
      <MulticastPkts>0</MulticastPkts>
      <MulticastBytes>0</MulticastBytes>
      <MinSizeSent>0</MinSizeSent>
      <MaxSizeSent>0</MaxSizeSent>
      <AvgSizeSent>0</AvgSizeSent>
      <MinSizeRec>0</MinSizeRec>
      <MaxSizeRec>0</MaxSizeRec>
      <AvgSizeRec>4</AvgSizeRec>
      <RetryPackets>0</RetryPackets>
      <BeaconPackets>0</BeaconPackets>
      <WEPPackets>0</WEPPackets>
      <WEPICVPackets>0</WEPICVPackets>
      <ESSID />
      <Channel>0</Channel>
      <WEPKey>0</WEPKey>
      <SignalMin>0</SignalMin>
      <SignalMax>0</SignalMax>
      <SignalCur>0</SignalCur>
      <SignaldBmMin>0</SignaldBmMin>
      <SignaldBmMax>0</SignaldBmMax>
      <SignaldBmCur>0</SignaldBmCur>
      <NoiseMin>0</NoiseMin>
      <NoiseMax>0</NoiseMax>
      <NoiseCur>0</NoiseCur>
      <NoisedBmMin>0</NoisedBmMin>
      <NoisedBmMax>0</NoisedBmMax>
      <NoisedBmCur>0</NoisedBmCur>
      <Duration />
      <Encryption />
      <Authentication />
      <Privacy>False</Privacy>
      <BeaconESSID>Off</BeaconESSID>
      <Associations />
      <Trust>Unknown</Trust>
      <DataRate Name="1 Mbits/s Packets" Value="0" />
      <DataRate Name="1 Mbits/s Bytes" Value="0" />
      <DataRate Name="2 Mbits/s Packets" Value="0" />
      <DataRate Name="2 Mbits/s Bytes" Value="0" />
      <DataRate Name="5.5 Mbits/s Packets" Value="0" />
      <DataRate Name="5.5 Mbits/s Bytes" Value="0" />
      <DataRate Name="11 Mbits/s Packets" Value="0" />
      <DataRate Name="11 Mbits/s Bytes" Value="0" />
    </WirelessNodeStat>
  </Stats>
</WirelessNodeStatistics>
)");
  EXPECT_EQ(Part("StatsReport.xml", {"WirelessChannelStatistics"}), R"(<WirelessChannelStatistics Version="1.0">
  <Summary>
    <TimeSaved>11/22/2026 14:05:09</TimeSaved>
    <Packets>10</Packets>
    <Bytes>1000</Bytes>
  </Summary>
  <Stats>
    <ChannelStat>
      <Channel>6</Channel>
      <Frequency>2437</Frequency>
      <Band>802.11bg</Band>
      <Packets>4</Packets>
      <Bytes>400</Bytes>
      <DataPackets>0</DataPackets>
      <DataBytes>0</DataBytes>
      <MngtPackets>0</MngtPackets>
      <MngtBytes>0</MngtBytes>
      <CtrlPackets>0</CtrlPackets>
      <CtrlBytes>0</CtrlBytes>
      <LocalPackets>0</LocalPackets>
      <LocalBytes>0</LocalBytes>
      <FromDSPackets>0</FromDSPackets>
      <FromDSBytes>0</FromDSBytes>
      <ToDSPackets>0</ToDSPackets>
      <ToDSBytes>0</ToDSBytes>
      <DS2DSPackets>0</DS2DSPackets>
      <DS2DSBytes>0</DS2DSBytes>
      <RetryPackets>0</RetryPackets>
      <RetryBytes>0</RetryBytes>
      <ProtectedPackets>0</ProtectedPackets>
      <ProtectedBytes>0</ProtectedBytes>
      <OrderPackets>1</OrderPackets>
      <OrderBytes>2</OrderBytes>
      <CRCPackets>0</CRCPackets>
      <WEPICVErrors>3</WEPICVErrors>
      <SignalMin>10</SignalMin>
      <SignalMax>20</SignalMax>
      <SignalCur>15</SignalCur>
      <SignalAvg>12.500</SignalAvg>
      <SignaldBmMin>-80</SignaldBmMin>
      <SignaldBmMax>-70</SignaldBmMax>
      <SignaldBmCur>-75</SignaldBmCur>
      <SignaldBmAvg>-20.000</SignaldBmAvg>
      <NoiseMin>0</NoiseMin>
      <NoiseMax>0</NoiseMax>
      <NoiseCur>0</NoiseCur>
      <NoiseAvg>0.000</NoiseAvg>
      <NoisedBmMin>-127</NoisedBmMin>
      <NoisedBmMax>-127</NoisedBmMax>
      <NoisedBmCur>-127</NoisedBmCur>
      <NoisedBmAvg />
      <DataRate Name="1 Mbits/s Packets" Value="5" />
      <DataRate Name="1 Mbits/s Bytes" Value="50" />
      <DataRate Name="2 Mbits/s Packets" Value="0" />
      <DataRate Name="2 Mbits/s Bytes" Value="0" />
      <DataRate Name="5.5 Mbits/s Packets" Value="0" />
      <DataRate Name="5.5 Mbits/s Bytes" Value="0" />
      <DataRate Name="11 Mbits/s Packets" Value="0" />
      <DataRate Name="11 Mbits/s Bytes" Value="0" />
    </ChannelStat>
  </Stats>
</WirelessChannelStatistics>
)");
  EXPECT_THAT(Sections(), ElementsAre("WirelessNodeStatistics", "WirelessChannelStatistics"));
  EXPECT_THAT(Children("WirelessNodeStatistics.xml", {"History"}), ElementsAre("Summary", "Stats"));
  Switch(kSwitchDataRatesPackets, 0);
  Switch(kSwitchDataRatesBytes, 0);
  ASSERT_EQ(Output(), S_OK);
  EXPECT_THAT(folder.Read("StatsReport.xml"), Not(HasSubstr("DataRate")));
}

TEST_F(WirelessDocumentsTest, TheExecutiveSummaryShowsAccessPointsAndStationsApart) {
  Switch(kSwitchOutputExecutiveSummary, 1);
  ASSERT_EQ(Output(), S_OK);
  EXPECT_THAT(Children("StatsReport.xml", {"WirelessNodeStatistics", "Stats"}), ElementsAre("Type", "Type"));
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
  ASSERT_EQ(Output(), S_OK);
  EXPECT_EQ(Children("StatsReport.xml", {"WirelessNodeStatistics", "Stats"}).size(), 2U);
}

TEST_F(WirelessDocumentsTest, ChannelsFollowWrittenNodesOnly) {
  Switch(kSwitchOutputWLANStats, 0);
  ASSERT_EQ(Output(), S_OK);
  EXPECT_THAT(Sections(), ElementsAre());
  Switch(kSwitchOutputWLANStats, 1);
  // The second reading of the excluded nodes is that of the history.
  engine.Fail("IWirelessNodeStats::GetExcluded", 2, E_FAIL);
  ASSERT_EQ(Output(), S_OK);
  EXPECT_THAT(Sections(), ElementsAre("WirelessNodeStatistics"));
  EXPECT_EQ(FileStatus("WirelessNodeStatistics.xml"), E_FAIL);
}

}  // namespace
}  // namespace orvo::test
