#include "platform/error.h"
#include "prefs/switch_ids.h"
#include "statistics/wireless_nodes.h"
#include "statistics/wireless_values.h"
#include "xml/category_documents.h"
#include "xml/data_rate_elements.h"
#include "xml/report_document.h"
#include "xml/xml_columns.h"

namespace orvo {
namespace {

using Node = WirelessNodeEntry;
using Strength = WirelessStrength;

// NOLINTBEGIN(misc-unused-using-decls): version 14 overlooks uses in arguments of templates.
using wireless_node::Authentication;
using wireless_node::AverageSize;
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
using wireless_node::Time;
using wireless_node::Trust;
using wireless_node::Type;
using wireless_node::WepKey;
// NOLINTEND(misc-unused-using-decls)

constexpr std::u16string_view kHistoryFile = u"WirelessNodeStatistics.xml";
constexpr std::string_view kElement = "WirelessNodeStatistics";

/// What a row is made of.
struct NodeRow {
  std::uint32_t index;
  const Node& node;
  WirelessNodes& nodes;
  std::uint64_t total_bytes;
};

/// A value of the entry itself.
template <Value (*value)(const Node&)>
Value Of(const NodeRow& row) {
  return value(row.node);
}

/// A value that is 0 for a node that has sent nothing.
template <Value (*value)(const Node&)>
Value Sent(const NodeRow& row) {
  return IfSent<value>(row.node);
}

template <std::uint64_t Node::*bytes>
Value Share(const NodeRow& row) {
  return Ratio(row.node.*bytes, row.total_bytes);
}

Value TotalBytes(const NodeRow& row) {
  return Value::Unsigned(row.node.bytes_sent + row.node.bytes_received);
}

Value TotalPackets(const NodeRow& row) {
  return Value::Unsigned(row.node.packets_sent + row.node.packets_received);
}

Value Associations(const NodeRow& row) {
  return row.nodes.AssociationStrength(row.index, row.node);
}

/// In which of the two layouts a column stands.
enum class Layout { kFull, kBoth };

struct NodeColumn {
  XmlColumn<NodeRow> column;
  Layout layout = Layout::kFull;
};

// clang-format off
constexpr NodeColumn kColumns[] = {
    {{"NodeType", kSwitchWLANType, Of<Type>}, Layout::kBoth},
    {{"FirstTimeSent", kSwitchWLANFirstTimeSent, Of<Time<&Node::first_time_sent>>}},
    {{"LastTimeSent", kSwitchWLANLastTimeSent, Of<Time<&Node::last_time_sent>>}},
    {{"FirstTimeRec", kSwitchWLANFirstTimeReceived, Of<Time<&Node::first_time_received>>}},
    {{"LastTimeRec", kSwitchWLANLastTimeReceived, Of<Time<&Node::last_time_received>>}},
    {{"PktsSent", kSwitchWLANPacketsSent, Of<Count<&Node::packets_sent>>}, Layout::kBoth},
    {{"PktsRec", kSwitchWLANPacketsReceived, Of<Count<&Node::packets_received>>}, Layout::kBoth},
    {{"TotalBytes", kNoSwitch, TotalBytes}, Layout::kBoth},
    {{"TotalPackets", kNoSwitch, TotalPackets}, Layout::kBoth},
    {{"BytesSent", kNoSwitch, Of<Count<&Node::bytes_sent>>}, Layout::kBoth},
    {{"BytesSentPct", kNoSwitch, Share<&Node::bytes_sent>, RealForm::kRatio}, Layout::kBoth},
    {{"BytesRec", kNoSwitch, Of<Count<&Node::bytes_received>>}, Layout::kBoth},
    {{"BytesRecPct", kNoSwitch, Share<&Node::bytes_received>, RealForm::kRatio}, Layout::kBoth},
    {{"BroadcastPkts", kSwitchWLANBroadcastPackets, Of<BroadcastPackets>}, Layout::kBoth},
    {{"BroadcastBytes", kSwitchWLANBroadcastBytes, Sent<Count<&Node::broadcast_bytes>>}, Layout::kBoth},
    {{"MulticastPkts", kSwitchWLANMulticastPackets, Sent<Count<&Node::multicast_packets>>}, Layout::kBoth},
    {{"MulticastBytes", kSwitchWLANMulticastBytes, Sent<Count<&Node::multicast_bytes>>}, Layout::kBoth},
    {{"MinSizeSent", kSwitchWLANMinSizeSent, Sent<MinSize<&Node::min_size_sent>>}},
    {{"MaxSizeSent", kSwitchWLANMaxSizeSent, Sent<MaxSize<&Node::max_size_sent>>}},
    {{"AvgSizeSent", kSwitchWLANAvgSizeSent, Of<AverageSize<&Node::bytes_sent, &Node::packets_sent>>}, Layout::kBoth},
    {{"MinSizeRec", kSwitchWLANMinSizeReceived, Sent<MinSize<&Node::min_size_received>>}},
    {{"MaxSizeRec", kSwitchWLANMaxSizeReceived, Sent<MaxSize<&Node::max_size_received>>}},
    {{"AvgSizeRec", kSwitchWLANAvgSizeReceived, Of<AverageSize<&Node::bytes_received, &Node::packets_received>>}, Layout::kBoth},
    {{"RetryPackets", kSwitchWLANRetryPackets, Sent<Count<&Node::retry_packets>>}, Layout::kBoth},
    {{"BeaconPackets", kSwitchWLANBeaconPackets, Sent<Count<&Node::beacon_packets>>}, Layout::kBoth},
    {{"WEPPackets", kSwitchWLANWEPPackets, Sent<Count<&Node::wep_packets>>}},
    {{"WEPICVPackets", kSwitchWLANICVErrorPackets, Sent<Count<&Node::icv_errors>>}},
    {{"ESSID", kSwitchWLANESSID, Of<NetworkName>}, Layout::kBoth},
    {{"Channel", kSwitchWLANChannel, Of<Channel>}, Layout::kBoth},
    {{"WEPKey", kSwitchWLANWEPKey, Sent<WepKey>}},
    {{"SignalMin", kSwitchWLANSignalMin, Sent<Percent<&Node::signal, &Strength::min_percent>>}},
    {{"SignalMax", kSwitchWLANSignalMax, Sent<Percent<&Node::signal, &Strength::max_percent>>}},
    {{"SignalCur", kSwitchWLANSignalCur, Sent<Percent<&Node::signal, &Strength::current_percent>>}},
    {{"SignaldBmMin", kSwitchWLANSignalMindBm, Sent<Dbm<&Node::signal, &Strength::min_dbm>>}},
    {{"SignaldBmMax", kSwitchWLANSignalMaxdBm, Sent<Dbm<&Node::signal, &Strength::max_dbm>>}},
    {{"SignaldBmCur", kSwitchWLANSignalCurdBm, Sent<Dbm<&Node::signal, &Strength::current_dbm>>}},
    {{"NoiseMin", kSwitchWLANNoiseMin, Sent<Percent<&Node::noise, &Strength::min_percent>>}},
    {{"NoiseMax", kSwitchWLANNoiseMax, Sent<Percent<&Node::noise, &Strength::max_percent>>}},
    {{"NoiseCur", kSwitchWLANNoiseCur, Sent<Percent<&Node::noise, &Strength::current_percent>>}},
    {{"NoisedBmMin", kSwitchWLANNoiseMindBm, Sent<Dbm<&Node::noise, &Strength::min_dbm>>}},
    {{"NoisedBmMax", kSwitchWLANNoiseMaxdBm, Sent<Dbm<&Node::noise, &Strength::max_dbm>>}},
    {{"NoisedBmCur", kSwitchWLANNoiseCurdBm, Sent<Dbm<&Node::noise, &Strength::current_dbm>>}},
    {{"Duration", kSwitchWLANDuration, Of<Duration>}},
    {{"Encryption", kSwitchWLANEncryption, Of<Encryption>}},
    {{"Authentication", kSwitchWLANAuth, Of<Authentication>}},
    {{"Privacy", kSwitchWLANPrivacy, Of<Privacy>}},
    {{"BeaconESSID", kSwitchWLANBeaconESSID, Of<BroadcastName>}},
    {{"Associations", kSwitchWLANAssociations, Associations}},
    {{"Trust", kSwitchWLANTrust, Of<Trust>}},
};
// clang-format on

XmlColumns<NodeRow> ColumnsOf(const XmlReport& report, bool is_executive) {
  std::vector<XmlColumn<NodeRow>> columns;
  for (const NodeColumn& one : kColumns) {
    if (!is_executive || one.layout == Layout::kBoth) columns.push_back(one.column);
  }
  return {report, columns};
}

/// The record of an address, asked for a second time when the first answer is a failure; null when it stays one.
const AddressRecord* FindRecord(IAddressTable& addresses, std::uint32_t address) {
  const AddressRecord* record = nullptr;
  if (Succeeded(addresses.GetRecord(address, &record)) || Succeeded(addresses.GetRecord(address, &record))) {
    return record;
  }
  return nullptr;
}

std::span<const WirelessRate> RatesOf(IWirelessNodeStats& statistics, std::uint32_t index) {
  const WirelessRate* rates = nullptr;
  std::uint32_t count = 0;
  Check(statistics.GetRates(index, &rates, &count));
  if (!rates) return {};
  return {rates, count};
}

void AddWirelessSummary(XmlReport& report, IStatsContext& totals, IWirelessNodeStats& statistics, XmlWriter entry) {
  WirelessCounts counts;
  Check(statistics.GetCounts(&counts));
  const XmlWriter summary = AddSummary(report, entry, totals);
  AddNumber(summary, "BSSNetworkCount", counts.networks);
  AddNumber(summary, "APNodeCount", counts.access_points);
  AddNumber(summary, "AdHocNetworkCount", counts.ad_hoc_networks);
  AddNumber(summary, "ClientNodeCount", counts.clients);
}

/// Adds a row for every node; `parent_of` gives the element that it belongs to, an empty one for a node that is not
/// shown. Gives the number of rows.
template <class ParentOf>
std::uint64_t AddRows(XmlReport& report, IStatsContext& context, IAddressTable& addresses,
                      IWirelessNodeStats& statistics, bool is_executive, ParentOf&& parent_of) {
  const XmlColumns<NodeRow> columns = ColumnsOf(report, is_executive);
  std::optional<DataRateElements> rates;
  if (!is_executive) rates.emplace(report, context);
  std::uint64_t total_bytes = 0;
  Check(context.GetTotalBytes(&total_bytes));
  WirelessNodes nodes(statistics);
  std::uint64_t rows = 0;
  nodes.ForEach([&](std::uint32_t index, const Node& node) {
    const XmlWriter parent = parent_of(node);
    const AddressRecord* record = parent ? FindRecord(addresses, node.address) : nullptr;
    if (!record) return;
    const XmlWriter row = parent.AddElement("WirelessNodeStat");
    row.AddElement("Node", AddressText(report, record));
    columns.AddTo(report, {.index = index, .node = node, .nodes = nodes, .total_bytes = total_bytes}, row);
    if (rates && rates->is_on()) rates->AddTo(RatesOf(statistics, index), row);
    ++rows;
  });
  return rows;
}

/// Fills an entry of the index or of the history; nothing when the statistics have no wireless nodes.
std::optional<std::uint64_t> FillFull(XmlReport& report, IStatsContext& context, IAddressTable& addresses,
                                      XmlWriter entry) {
  const ComPtr<IWirelessNodeStats> statistics = Obtain(context, kWirelessNodeCategory);
  if (!statistics) return {};
  AddWirelessSummary(report, context, *statistics, entry);
  const XmlWriter stats = entry.AddElement("Stats");
  return AddRows(report, context, addresses, *statistics, false, [&](const Node& /*node*/) { return stats; });
}

XmlWriter AddType(XmlStream& stream, std::u16string_view name) {
  const XmlWriter type = stream.Add("Type");
  type.SetAttribute("Name", name);
  return type;
}

/// Access points and stations alone, apart from each other.
std::optional<std::uint64_t> FillExecutive(XmlReport& report, IStatsContext& context, IAddressTable& addresses,
                                           XmlWriter entry) {
  const ComPtr<IWirelessNodeStats> statistics = Obtain(context, kWirelessNodeCategory);
  if (!statistics) return {};
  AddWirelessSummary(report, context, *statistics, entry);
  const XmlWriter stats = entry.AddElement("Stats");
  // Both kinds come mixed.
  XmlStream of_access_points(stats.depth());
  const XmlWriter access_points = AddType(of_access_points, u"AP");
  XmlStream of_stations(stats.depth());
  const XmlWriter stations = AddType(of_stations, u"STA");
  const std::uint64_t rows = AddRows(report, context, addresses, *statistics, true, [&](const Node& node) {
    if (node.type == kWirelessAccessPoint) return access_points;
    return node.type == kWirelessStation ? stations : XmlWriter();
  });
  stats.AddLines(of_access_points.Finish());
  stats.AddLines(of_stations.Finish());
  return rows;
}

}  // namespace

bool WriteWirelessNodeDocument(XmlReport& report) {
  std::u16string_view file = kIndexFile;
  return Contain(report, file, [&] {
    const SwitchReading wanted = ReadSwitch(report, kSwitchOutputWLANStats);
    if (wanted.value == 0) {
      report.memory.written.channels = false;
      return false;
    }
    const ComPtr<IAddressTable> addresses = Addresses(report);
    if (!addresses) return false;
    IndexEntry entry(report, kElement, u"2.0");
    const auto fill = report.IsOn(kSwitchOutputExecutiveSummary) ? FillExecutive : FillFull;
    const std::optional<std::uint64_t> rows = fill(report, *report.job.live, *addresses, entry.element());
    if (!rows) return false;
    entry.Keep(*rows);
    if (report.memory.extends_history()) {
      file = kHistoryFile;
      AddHistory(report, kHistoryFile, kElement, "History",
                 [&](XmlWriter history) { return FillFull(report, *report.job.statistics, *addresses, history); });
    }
    return wanted.status == S_OK;
  });
}

}  // namespace orvo
