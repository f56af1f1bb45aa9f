#include "pdf/section_table.h"
#include "pdf/sections.h"
#include "prefs/switch_ids.h"
#include "statistics/channel_values.h"
#include "statistics/obtain.h"
#include "statistics/wireless_nodes.h"
#include "statistics/wireless_values.h"

namespace orvo {
namespace {

using Node = WirelessNodeEntry;
using Strength = WirelessStrength;

/// What a row of nodes is made of.
struct NodeRow {
  const AddressRecord& address;
  const Node& node;
};

template <Value (*value)(const Node&)>
Value Of(const NodeRow& row) {
  return value(row.node);
}

/// 0 for a node that has sent nothing.
template <Value (*value)(const Node&)>
Value Sent(const NodeRow& row) {
  return wireless_node::IfSent<value>(row.node);
}

void ShowNode(PdfReport& report, const NodeRow& row, SectionCell* cell) {
  report.util.FormatAddress(row.address, true, &cell->text);
}

/// Pages show the channels of a node the other way round than text and XML do: what announces a network where it was
/// seen last, and everything else the channel that its network announces.
Value OtherChannel(const NodeRow& row) {
  const bool announces = row.node.type == kWirelessAccessPoint || row.node.type == kWirelessAdHoc;
  return Value::Unsigned(announces ? row.node.current_channel : row.node.beacon_channel);
}

constexpr SectionColumn<NodeRow> kNodes[] = {
    {"Node", "", 50, ShowNode},
    {"ESSID", "", 150, Show<Of<wireless_node::NetworkName>>, 18},
    {"Type", "", 250, Show<Of<wireless_node::Type>>},
    {"Channel", "", 300, Show<OtherChannel>},
    {"Retry", "Packets", 350, Show<Sent<wireless_node::Count<&Node::retry_packets>>>},
    {"Beacon", "Packets", 400, Show<Sent<wireless_node::Count<&Node::beacon_packets>>>},
    {"WEP", "Packets", 450, Show<Sent<wireless_node::Count<&Node::wep_packets>>>},
    {"Signal", "Min", 500, Show<Sent<wireless_node::Percent<&Node::signal, &Strength::min_percent>>>},
    {"Signal", "Max", 550, Show<Sent<wireless_node::Percent<&Node::signal, &Strength::max_percent>>>},
};

using Channel = WirelessChannelEntry;

/// Empty for a band without a label.
Value LabelledBand(const Channel& channel) {
  return BandLabel(channel.band, channel.channel).empty() ? Value() : wireless_channel::Band(channel);
}

template <FrameCount Channel::*frames>
constexpr Value Bytes(const Channel& channel) {
  return wireless_channel::Frames<frames, &FrameCount::bytes>(channel);
}

template <FrameCount Channel::*frames>
constexpr Value Packets(const Channel& channel) {
  return wireless_channel::Frames<frames, &FrameCount::packets>(channel);
}

constexpr SectionColumn<Channel> kChannelBytes[] = {
    {"Channel", "", 50, Show<wireless_channel::Number>},       {"Band", "", 100, Show<LabelledBand>},
    {"Total", "Bytes", 170, Show<Bytes<&Channel::total>>},     {"Data", "Bytes", 240, Show<Bytes<&Channel::data>>},
    {"Mngt", "Bytes", 310, Show<Bytes<&Channel::management>>}, {"Ctrl", "Bytes", 380, Show<Bytes<&Channel::control>>},
    {"Retry", "Bytes", 450, Show<Bytes<&Channel::retry>>},
};

constexpr SectionColumn<Channel> kChannelPackets[] = {
    {"Channel", "", 50, Show<wireless_channel::Number>},
    {"Frequency", "", 100, Show<wireless_channel::Frequency>},
    {"Total", "Packets", 170, Show<Packets<&Channel::total>>},
    {"Data", "Packets", 240, Show<Packets<&Channel::data>>},
    {"Mngt", "Packets", 310, Show<Packets<&Channel::management>>},
    {"Ctrl", "Packets", 380, Show<Packets<&Channel::control>>},
    {"Retry", "Packets", 450, Show<Packets<&Channel::retry>>},
};

}  // namespace

void PrintWirelessNodes(PdfReport& report, PdfOutline* parent) {
  if (!report.IsOn(kSwitchOutputWLANStats)) return;
  const ComPtr<IWirelessNodeStats> statistics = Obtain(*report.job.statistics, kWirelessNodeCategory);
  if (!statistics || !report.addresses) return;
  SectionTable<NodeRow> table(report, parent,
                              {.bookmark = u"WLAN", .page_title = u"Wireless Node Statistics: Reported "}, kNodes);
  WirelessNodes(*statistics).ForEach([&](std::uint32_t /*index*/, const Node& node) {
    const AddressRecord* record = nullptr;
    if (Failed(report.addresses->GetRecord(node.address, &record)) || !record) return;
    table.AddRow({.address = *record, .node = node});
  });
}

void PrintWirelessChannels(PdfReport& report, PdfOutline* parent) {
  if (!report.IsOn(kSwitchOutputWChannelsStats)) return;
  const ComPtr<IWirelessChannelStats> statistics = Obtain(*report.job.live, kWirelessChannelCategory);
  if (!statistics) return;
  auto print = [&](const SectionTitle& title, std::span<const SectionColumn<Channel>> columns) {
    Contain(report, [&] {
      SectionTable<Channel> table(report, parent, title, columns);
      std::uint32_t count = 0;
      Check(statistics->GetCount(&count));
      for (std::uint32_t index = 0; index < count; ++index) {
        const Channel* channel = nullptr;
        Check(statistics->GetEntry(index, &channel));
        table.AddRow(*channel);
      }
    });
  };
  print({u"Wireless Channels", u"Wireless Channel Statistics (Bytes): Reported "}, kChannelBytes);
  print({u"", u"Wireless Channel Statistics (Packets): Reported "}, kChannelPackets);
}

}  // namespace orvo
