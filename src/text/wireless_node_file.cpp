#include "text/wireless_node_file.h"

#include "platform/error.h"
#include "prefs/switch_ids.h"
#include "statistics/wireless_nodes.h"
#include "statistics/wireless_values.h"
#include "text/columns.h"
#include "text/rate_columns.h"
#include "text/section_file.h"

namespace orvo {
namespace {

using Node = WirelessNodeEntry;
using Strength = WirelessStrength;

using wireless_node::Authentication;
using wireless_node::BroadcastName;
using wireless_node::BroadcastPackets;
using wireless_node::Channel;
using wireless_node::Count;
using wireless_node::Dbm;
using wireless_node::Duration;
using wireless_node::Encryption;
using wireless_node::IfSent;
using wireless_node::MaxSize;
using wireless_node::MinSize;
using wireless_node::NetworkName;
using wireless_node::Percent;
using wireless_node::Privacy;
using wireless_node::Trust;
using wireless_node::Type;
using wireless_node::WepKey;

/// What a row is made of.
struct NodeRow {
  std::uint32_t index;
  const Node& node;
  WirelessNodes& nodes;
};

/// A column of the entry itself.
template <Value (*value)(const Node&)>
Value Of(const NodeRow& row) {
  return value(row.node);
}

/// A column that is 0 for a node that has sent nothing.
template <Value (*value)(const Node&)>
Value Sent(const NodeRow& row) {
  return IfSent<value>(row.node);
}

/// A strength in dBm that is 0 for such a node, and where none was measured.
template <WirelessStrength Node::*what, std::int8_t Strength::*field>
Value KnownDbm(const NodeRow& row) {
  if ((row.node.*what).*field == kNoDbm) return Value::Unsigned(0);
  return IfSent<Dbm<what, field>>(row.node);
}

Value AssociationStrength(const NodeRow& row) {
  return row.nodes.AssociationStrength(row.index, row.node);
}

// clang-format off
constexpr Column<NodeRow> kColumns[] = {
    {kStrType, kSwitchWLANType, Of<Type>},
    {kStrFirstTimeSent, kSwitchWLANFirstTimeSent, Of<wireless_node::Time<&Node::first_time_sent>>},
    {kStrLastTimeSent, kSwitchWLANLastTimeSent, Of<wireless_node::Time<&Node::last_time_sent>>},
    {kStrFirstTimeReceived, kSwitchWLANFirstTimeReceived, Of<wireless_node::Time<&Node::first_time_received>>},
    {kStrLastTimeReceived, kSwitchWLANLastTimeReceived, Of<wireless_node::Time<&Node::last_time_received>>},
    {kStrPacketsSent, kSwitchWLANPacketsSent, Of<Count<&Node::packets_sent>>},
    {kStrPacketsReceived, kSwitchWLANPacketsReceived, Of<Count<&Node::packets_received>>},
    {kStrBytesSent, kAlways, Of<Count<&Node::bytes_sent>>},
    {kStrBytesReceived, kAlways, Of<Count<&Node::bytes_received>>},
    {kStrBroadcastPackets, kSwitchWLANBroadcastPackets, Of<BroadcastPackets>},
    {kStrBroadcastBytes, kSwitchWLANBroadcastBytes, Sent<Count<&Node::broadcast_bytes>>},
    {kStrMulticastPackets, kSwitchWLANMulticastPackets, Sent<Count<&Node::multicast_packets>>},
    {kStrMulticastBytes, kSwitchWLANMulticastBytes, Sent<Count<&Node::multicast_bytes>>},
    {kStrMinSizeSent, kSwitchWLANMinSizeSent, Sent<MinSize<&Node::min_size_sent>>},
    {kStrMaxSizeSent, kSwitchWLANMaxSizeSent, Sent<MaxSize<&Node::max_size_sent>>},
    {kStrAvgSizeSent, kSwitchWLANAvgSizeSent, Of<wireless_node::AverageSize<&Node::bytes_sent, &Node::packets_sent>>},
    {kStrMinSizeReceived, kSwitchWLANMinSizeReceived, Sent<MinSize<&Node::min_size_received>>},
    {kStrMaxSizeReceived, kSwitchWLANMaxSizeReceived, Sent<MaxSize<&Node::max_size_received>>},
    {kStrAvgSizeReceived, kSwitchWLANAvgSizeReceived, Of<wireless_node::AverageSize<&Node::bytes_received, &Node::packets_received>>},
    {kStrRetryPackets, kSwitchWLANRetryPackets, Sent<Count<&Node::retry_packets>>},
    {kStrBeaconPackets, kSwitchWLANBeaconPackets, Sent<Count<&Node::beacon_packets>>},
    {kStrWepPackets, kSwitchWLANWEPPackets, Sent<Count<&Node::wep_packets>>},
    {kStrWepIcvErrors, kSwitchWLANICVErrorPackets, Sent<Count<&Node::icv_errors>>},
    {kStrEssid, kSwitchWLANESSID, Of<NetworkName>},
    {kStrChannel, kSwitchWLANChannel, Of<Channel>},
    {kStrWepKey, kSwitchWLANWEPKey, Sent<WepKey>},
    {kStrMinSignal, kSwitchWLANSignalMin, Sent<Percent<&Node::signal, &Strength::min_percent>>},
    {kStrMaxSignal, kSwitchWLANSignalMax, Sent<Percent<&Node::signal, &Strength::max_percent>>},
    {kStrCurSignal, kSwitchWLANSignalCur, Sent<Percent<&Node::signal, &Strength::current_percent>>},
    {kStrMinSignalDbm, kSwitchWLANSignalMindBm, KnownDbm<&Node::signal, &Strength::min_dbm>},
    {kStrMaxSignalDbm, kSwitchWLANSignalMaxdBm, KnownDbm<&Node::signal, &Strength::max_dbm>},
    {kStrCurSignalDbm, kSwitchWLANSignalCurdBm, KnownDbm<&Node::signal, &Strength::current_dbm>},
    {kStrMinNoise, kSwitchWLANNoiseMin, Sent<Percent<&Node::noise, &Strength::min_percent>>},
    {kStrMaxNoise, kSwitchWLANNoiseMax, Sent<Percent<&Node::noise, &Strength::max_percent>>},
    {kStrCurNoise, kSwitchWLANNoiseCur, Sent<Percent<&Node::noise, &Strength::current_percent>>},
    {kStrMinNoiseDbm, kSwitchWLANNoiseMindBm, KnownDbm<&Node::noise, &Strength::min_dbm>},
    {kStrMaxNoiseDbm, kSwitchWLANNoiseMaxdBm, KnownDbm<&Node::noise, &Strength::max_dbm>},
    {kStrCurNoiseDbm, kSwitchWLANNoiseCurdBm, KnownDbm<&Node::noise, &Strength::current_dbm>},
    {kStrDuration, kSwitchWLANDuration, Of<Duration>},
    {kStrEncryption, kSwitchWLANEncryption, Of<Encryption>},
    {kStrAuthentication, kSwitchWLANAuth, Of<Authentication>},
    {kStrPrivacy, kSwitchWLANPrivacy, Of<Privacy>},
    {kStrBroadcastEssid, kSwitchWLANBeaconESSID, Of<BroadcastName>},
    {kStrAssociationStrength, kSwitchWLANAssociations, AssociationStrength},
    {kStrTrust, kSwitchWLANTrust, Of<Trust>},
};
// clang-format on

/// Ends with a separator, as the rows do.
std::string Header(const TextReport& report, const ColumnSet<NodeRow>& columns, const RateColumns& rates) {
  TextBuffer line(2048);
  line.Append("Report Saved");
  line.Append(report.separator);
  line.Append(AsciiTextOf(kStrAddress));
  columns.AppendTitles(report.separator, &line);
  rates.AppendTitles(report, &line);
  line.Append(report.separator);
  line.Append('\n');
  return std::string(line.view());
}

/// The record of an address in the first table that has it, else null. Either table may be missing.
const AddressRecord* FindRecord(std::uint32_t address, IAddressTable* first, IAddressTable* second) {
  const AddressRecord* record = nullptr;
  for (IAddressTable* table : {first, second}) {
    if (!record && table) Check(table->GetRecord(address, &record));
  }
  return record;
}

/// The node's traffic by rate; a node whose rates cannot be had counts as having none.
std::span<const WirelessRate> RatesOf(IWirelessNodeStats& statistics, std::uint32_t index) {
  const WirelessRate* rates = nullptr;
  std::uint32_t count = 0;
  if (Failed(statistics.GetRates(index, &rates, &count)) || !rates) return {};
  return {rates, count};
}

}  // namespace

void WriteWirelessNodeFile(TextReport& report) {
  ComPtr<IWirelessNodeStats> statistics;
  if (Failed(GetCategory(report.job.statistics, kWirelessNodeCategory, &statistics)) || !statistics) return;
  // A snapshot need not have addresses of its own; those of the live context do as well.
  ComPtr<IAddressTable> addresses;
  if (Failed(report.job.statistics->GetAddressTable(addresses.Out()))) addresses.Reset();
  const ColumnSet<NodeRow> columns(report, kColumns);
  RateColumns rates(report);

  auto write_rows = [&](SectionFile& file) {
    const std::string time_saved = TimeSaved(report);
    WirelessNodes nodes(*statistics);
    nodes.ForEach([&](std::uint32_t index, const Node& node) {
      const AddressRecord* record = FindRecord(node.address, addresses.get(), report.addresses.get());
      if (!record) return;
      TextBuffer& row = file.row();
      row.Append(time_saved);
      row.Append(report.separator);
      AppendAddress(report, record, &row);
      columns.AppendValues(report, {.index = index, .node = node, .nodes = nodes}, &row);
      if (rates.is_on()) rates.AppendValues(report, RatesOf(*statistics, index), &row);
      row.Append(report.separator);
      file.EndRow();
    });
  };
  WriteSectionFile(report, FilePath(report, kStrWirelessStatistics), Header(report, columns, rates), write_rows);
}

}  // namespace orvo
