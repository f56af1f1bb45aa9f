#include "platform/error.h"
#include "prefs/switch_ids.h"
#include "statistics/node_values.h"
#include "statistics/node_walk.h"
#include "xml/category_documents.h"
#include "xml/node_families.h"
#include "xml/report_document.h"
#include "xml/xml_columns.h"

namespace orvo {
namespace {

// NOLINTBEGIN(misc-unused-using-decls): version 14 overlooks uses in arguments of templates.
using node_values::Count;
using node_values::Time;
// NOLINTEND(misc-unused-using-decls)

constexpr std::u16string_view kHistoryFile = u"NodeStatistics.xml";
constexpr std::string_view kElement = "NodeStatistics";

struct NodeRow {
  const NodeEntry& node;
  std::uint64_t total_bytes;
};

template <Value (*value)(const NodeEntry&)>
Value Of(const NodeRow& row) {
  return value(row.node);
}

template <std::uint64_t NodeEntry::*bytes>
Value Share(const NodeRow& row) {
  return Ratio(row.node.*bytes, row.total_bytes);
}

/// Nothing for what stands for no packet, the greatest sizes included.
template <std::uint16_t NodeEntry::*field>
Value Size(const NodeRow& row) {
  return node_values::MinSize<field>(row.node);
}

constexpr XmlColumn<NodeRow> kColumns[] = {
    {"FirstTimeSent", kSwitchNodeFirstTime, Of<Time<&NodeEntry::first_time_sent>>},
    {"LastTimeSent", kSwitchNodeLastTime, Of<Time<&NodeEntry::last_time_sent>>},
    {"FirstTimeReceived", kSwitchNodeFirstTime, Of<Time<&NodeEntry::first_time_received>>},
    {"LastTimeReceived", kSwitchNodeLastTime, Of<Time<&NodeEntry::last_time_received>>},
    {"PacketsSent", kSwitchNodePackets, Of<Count<&NodeEntry::packets_sent>>},
    {"BytesSent", kNoSwitch, Of<Count<&NodeEntry::bytes_sent>>},
    {"PctBytesSent", kNoSwitch, Share<&NodeEntry::bytes_sent>, RealForm::kRatio},
    {"PacketsReceived", kSwitchNodePackets, Of<Count<&NodeEntry::packets_received>>},
    {"BytesReceived", kNoSwitch, Of<Count<&NodeEntry::bytes_received>>},
    {"PctBytesReceived", kNoSwitch, Share<&NodeEntry::bytes_received>, RealForm::kRatio},
    {"BroadcastPackets", kSwitchNodeBroadPackets, Of<Count<&NodeEntry::broadcast_packets>>},
    {"BroadcastBytes", kSwitchNodeBroadBytes, Of<Count<&NodeEntry::broadcast_bytes>>},
    {"MulticastPackets", kSwitchNodeMultiPackets, Of<Count<&NodeEntry::multicast_packets>>},
    {"MulticastBytes", kSwitchNodeMultiBytes, Of<Count<&NodeEntry::multicast_bytes>>},
    {"MinSizeSent", kSwitchNodeMinSize, Size<&NodeEntry::min_size_sent>},
    {"MaxSizeSent", kSwitchNodeMaxSize, Size<&NodeEntry::max_size_sent>},
    {"MinSizeReceived", kSwitchNodeMinSize, Size<&NodeEntry::min_size_received>},
    {"MaxSizeReceived", kSwitchNodeMaxSize, Size<&NodeEntry::max_size_received>},
};

/// Moves the nodes of the report before, which a kept index still holds, into the history.
void MoveOldEntry(XmlReport& report) {
  const XmlParts::Part old = report.index.Take(kElement);
  if (old.empty()) return;
  MoveToHistory(report, kHistoryFile, kElement, old);
  report.memory.written.node_history = true;
}

bool WriteEntry(XmlReport& report) {
  const ComPtr<IAddressTable> addresses = Addresses(report);
  const ComPtr<INodeStats> nodes = Obtain(*report.job.live, kNodeCategory);
  if (!addresses || !nodes) return false;

  IndexEntry entry(report, kElement, u"2.0");
  std::uint32_t count = 0;
  Check(nodes->GetCount(&count));
  AddNumber(AddSummary(report, entry.element(), *report.job.live), "NodeCount", count);
  std::uint64_t total_bytes = 0;
  Check(report.job.live->GetTotalBytes(&total_bytes));

  const XmlColumns<NodeRow> columns(report, kColumns);
  std::uint64_t rows = 0;
  ForEachFamily(report, entry.element().AddElement("Stats"), [&](const XmlNodeFamily& family, XmlWriter type) {
    ForEachNode(*addresses, *nodes, family.type, [&](const AddressRecord& record, const NodeEntry& node) {
      const XmlWriter row = type.AddElement("NodeStat");
      row.AddElement("Addr", AddressText(report, &record));
      columns.AddTo(report, {.node = node, .total_bytes = total_bytes}, row);
      ++rows;
    });
  });
  entry.Keep(rows);
  return true;
}

}  // namespace

bool WriteNodeDocument(XmlReport& report) {
  std::u16string_view file = kHistoryFile;
  return Contain(report, file, [&] {
    MoveOldEntry(report);
    file = kIndexFile;
    return WriteEntry(report);
  });
}

}  // namespace orvo
