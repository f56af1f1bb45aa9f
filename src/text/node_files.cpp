#include "text/node_files.h"

#include "platform/error.h"
#include "prefs/switch_ids.h"
#include "statistics/node_values.h"
#include "statistics/node_walk.h"
#include "text/columns.h"
#include "text/hierarchy_file.h"
#include "text/section_file.h"

namespace orvo {
namespace {

using node_values::Count;
using node_values::MaxSize;
using node_values::MinSize;
using node_values::Time;

constexpr Column<NodeEntry> kNodeColumns[] = {
    {kStrFirstTimeSent, kSwitchNodeFirstTime, Time<&NodeEntry::first_time_sent>},
    {kStrLastTimeSent, kSwitchNodeLastTime, Time<&NodeEntry::last_time_sent>},
    {kStrFirstTimeReceived, kSwitchNodeFirstTime, Time<&NodeEntry::first_time_received>},
    {kStrLastTimeReceived, kSwitchNodeLastTime, Time<&NodeEntry::last_time_received>},
    {kStrPacketsSent, kSwitchNodePackets, Count<&NodeEntry::packets_sent>},
    {kStrBytesSent, kAlways, Count<&NodeEntry::bytes_sent>},
    {kStrPacketsReceived, kSwitchNodePackets, Count<&NodeEntry::packets_received>},
    {kStrBytesReceived, kAlways, Count<&NodeEntry::bytes_received>},
    {kStrBroadcastPackets, kSwitchNodeBroadPackets, Count<&NodeEntry::broadcast_packets>},
    {kStrBroadcastBytes, kSwitchNodeBroadBytes, Count<&NodeEntry::broadcast_bytes>},
    {kStrMulticastPackets, kSwitchNodeMultiPackets, Count<&NodeEntry::multicast_packets>},
    {kStrMulticastBytes, kSwitchNodeMultiBytes, Count<&NodeEntry::multicast_bytes>},
    {kStrMinSizeSent, kSwitchNodeMinSize, MinSize<&NodeEntry::min_size_sent>},
    {kStrMaxSizeSent, kSwitchNodeMaxSize, MaxSize<&NodeEntry::max_size_sent>},
    {kStrMinSizeReceived, kSwitchNodeMinSize, MinSize<&NodeEntry::min_size_received>},
    {kStrMaxSizeReceived, kSwitchNodeMaxSize, MaxSize<&NodeEntry::max_size_received>},
};

struct NodeFamily {
  int gate;
  StringId title;
  std::uint8_t type;
};

constexpr NodeFamily kFamilies[] = {
    {kSwitchNodeTypeIP, kStrIp, kAddressIp},          {kSwitchNodeTypeIPv6, kStrIpv6, kAddressIpv6},
    {kSwitchNodeTypeDEC, kStrDecnet, kAddressDecnet}, {kSwitchNodeTypeApple, kStrAppleTalk, kAddressAppleTalk},
    {kSwitchNodeTypeIPX, kStrIpx, kAddressIpx},       {kSwitchNodeTypePhysical, kStrPhysical, kAddressPhysical},
};

std::string NodeHeader(const TextReport& report, const ColumnSet<NodeEntry>& columns) {
  TextBuffer line(512);
  line.Append("Time Saved");
  line.Append(report.separator);
  line.Append(AsciiTextOf(kStrAddress));
  columns.AppendTitles(report.separator, &line);
  line.Append('\n');
  return std::string(line.view());
}

void WriteNodeRows(TextReport& report, INodeStats& nodes, std::uint8_t type, const ColumnSet<NodeEntry>& columns,
                   SectionFile& file) {
  const std::string time_saved = TimeSaved(report);
  TextBuffer& row = file.row();
  ForEachNode(*report.addresses, nodes, type, [&](const AddressRecord& record, const NodeEntry& node) {
    row.Append(time_saved);
    row.Append(report.separator);
    AppendAddress(report, &record, &row);
    columns.AppendValues(report, node, &row);
    file.EndRow();
  });
}

void WriteFamilyFile(TextReport& report, const NodeFamily& family) {
  ComPtr<INodeStats> nodes;
  if (Failed(GetCategory(report.job.live, kNodeCategory, &nodes)) || !nodes || !report.addresses) return;
  ColumnSet<NodeEntry> columns(report, kNodeColumns);
  WriteSectionFile(report, FilePath(report, kStrNodeStatistics, family.title), NodeHeader(report, columns),
                   [&](SectionFile& file) { WriteNodeRows(report, *nodes, family.type, columns, file); });
}

}  // namespace

void WriteNodeFiles(TextReport& report) {
  if (report.IsOn(kSwitchOutputNodeHierarchy)) (void)Guard([&] { WriteHierarchyFile(report); });
  for (const NodeFamily& family : kFamilies) {
    if (report.IsOn(family.gate)) (void)Guard([&] { WriteFamilyFile(report, family); });
  }
}

}  // namespace orvo
