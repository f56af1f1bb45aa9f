#include "pdf/section_table.h"
#include "pdf/sections.h"
#include "prefs/switch_ids.h"
#include "statistics/medium.h"
#include "statistics/node_values.h"
#include "statistics/node_walk.h"
#include "statistics/obtain.h"

namespace orvo {
namespace {

using node_values::Count;

/// What a row is made of.
struct NodeRow {
  const AddressRecord& address;
  const NodeEntry& node;
  bool shows_packets;
};

/// A value of the entry itself.
template <Value (*value)(const NodeEntry&)>
Value Of(const NodeRow& row) {
  return value(row.node);
}

/// The same where packets are shown.
template <Value (*value)(const NodeEntry&)>
Value IfPackets(const NodeRow& row) {
  return row.shows_packets ? value(row.node) : Value();
}

template <std::uint64_t NodeEntry::*first, std::uint64_t NodeEntry::*second>
constexpr Value Sum(const NodeEntry& node) {
  return Value::Unsigned(node.*first + node.*second);
}

void ShowAddress(PdfReport& report, const NodeRow& row, SectionCell* cell) {
  report.util.FormatAddress(row.address, true, &cell->text);
}

constexpr auto kBytes = Sum<&NodeEntry::bytes_sent, &NodeEntry::bytes_received>;
constexpr auto kPackets = Sum<&NodeEntry::packets_sent, &NodeEntry::packets_received>;

constexpr SectionColumn<NodeRow> kTraffic[] = {
    {"Address", "", 50, ShowAddress, 18},
    {"Bytes", "", 150, Show<Of<kBytes>>},
    {"Bytes", "Sent", 220, Show<Of<Count<&NodeEntry::bytes_sent>>>},
    {"Bytes", "Received", 290, Show<Of<Count<&NodeEntry::bytes_received>>>},
    {"Packets", "", 360, Show<Of<kPackets>>},
    {"Packets", "Sent", 430, Show<Of<Count<&NodeEntry::packets_sent>>>},
    {"Packets", "Received", 500, Show<Of<Count<&NodeEntry::packets_received>>>},
};

constexpr SectionColumn<NodeRow> kGroupTraffic[] = {
    {"Address", "", 50, ShowAddress, 18},
    {"Bytes", "", 150, Show<Of<kBytes>>},
    {"Broadcast", "Bytes", 220, Show<Of<Count<&NodeEntry::broadcast_bytes>>>},
    {"Multicast", "Bytes", 290, Show<Of<Count<&NodeEntry::multicast_bytes>>>},
    {"Packets", "", 360, Show<IfPackets<kPackets>>},
    {"Broadcast", "Packets", 430, Show<IfPackets<Count<&NodeEntry::broadcast_packets>>>},
    {"Multicast", "Packets", 500, Show<IfPackets<Count<&NodeEntry::multicast_packets>>>},
};

constexpr std::u16string_view kTitle = u"Node Statistics: Reported ";

/// The kind of address that tells the most of a medium's nodes.
std::uint8_t AddressTypeOf(IStatsContext& context) {
  std::uint32_t type = 0;
  std::uint32_t subtype = 0;
  Check(context.GetMediumType(&type));
  Check(context.GetMediumSubtype(&subtype));
  if (type == kMediumEthernet && subtype == kSubtypeWired) return kAddressIp;
  return IsWirelessSubtype(subtype) ? kAddressPhysical : PhysicalTypeOf(type, subtype);
}

}  // namespace

void PrintNodes(PdfReport& report, PdfOutline* parent) {
  if (!report.IsOn(kSwitchOutputNodeStats)) return;
  const ComPtr<INodeStats> nodes = Obtain(*report.job.live, kNodeCategory);
  if (!nodes || !report.addresses) return;
  const std::uint8_t type = AddressTypeOf(*report.job.live);
  auto print = [&](std::u16string_view bookmark, std::span<const SectionColumn<NodeRow>> columns, bool shows_packets) {
    SectionTable<NodeRow> table(report, parent, {.bookmark = bookmark, .page_title = kTitle}, columns);
    Contain(report, [&] {
      ForEachNode(*report.addresses, *nodes, type, [&](const AddressRecord& address, const NodeEntry& node) {
        table.AddRow({.address = address, .node = node, .shows_packets = shows_packets});
      });
    });
    return table.rows() != 0;
  };
  if (!print(u"Nodes", kTraffic, true)) return;
  print({}, kGroupTraffic, report.IsOn(kSwitchNodePackets));
}

}  // namespace orvo
