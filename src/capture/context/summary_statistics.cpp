#include "capture/context/summary_statistics.h"

#include <array>
#include <bit>

namespace orvo {

bool SummaryCatalogue::Index() {
  for (std::uint32_t i = 0; i < groups.size(); ++i) {
    if (!group_positions.emplace(groups[i].identifier, i).second) return false;
  }
  for (std::uint32_t i = 0; i < statistics.size(); ++i) {
    const Guid& identifier = statistics[i].identifier;
    if (group_positions.contains(identifier)) return false;
    if (!statistic_positions.emplace(identifier, i).second) return false;
  }
  return true;
}

namespace {

enum GroupPosition : std::uint32_t { kGeneral, kNetwork, kErrors, kTcp, kCounts, kSizes, kVoice };

struct GroupRow {
  Guid identifier;
  std::u16string_view name;
};

constexpr std::array kGroups{
    GroupRow{"1F9A2C74-9E56-4B8B-8F1E-6C0B7B1D5A01"_guid, u"General"},
    GroupRow{"6D2E5B30-41C7-4E6A-9A83-0F5D2C9E7B12"_guid, u"Network"},
    GroupRow{"C83B7F15-2A9D-4D04-B6E1-95A47D3C8F23"_guid, u"Errors"},
    GroupRow{"0E57A9D2-7C18-4FB3-8D26-E1B96F40A534"_guid, u"TCP"},
    GroupRow{"9B14D6E8-F03A-4C79-A5D7-3E82C1F7B645"_guid, u"Counts"},
    GroupRow{"42F8C05B-8E6D-4A12-B39C-7D05A8E4C756"_guid, u"Packet Sizes"},
    GroupRow{"3C1D7A90-52E4-4B6F-9A08-61F2B7C4D967"_guid, u"Voice and Video"},
};

/// The numbers of a value; `known` is false when this capture has none.
struct Numbers {
  std::uint64_t first = 0;
  std::uint64_t second = 0;
  bool known = true;
};

Numbers OnceOrNever(std::uint64_t time) {
  return {time, 0, time != 0};
}
Numbers Both(const Traffic& traffic) {
  return {traffic.packets, traffic.bytes};
}

Numbers Quotient(double dividend, double divisor) {
  if (divisor == 0) return {0, 0, false};
  return {std::bit_cast<std::uint64_t>(dividend / divisor)};
}

Numbers PerSecond(const Counters& c, std::uint64_t count) {
  return Quotient(static_cast<double>(count) * 1e9, static_cast<double>(c.duration()));
}

struct StatisticRow {
  Guid identifier;
  GroupPosition group;
  std::u16string_view name;
  SummaryKind kind;
  Numbers (*get)(const Counters& c);
};

using C = const Counters&;

constexpr std::array kStatistics{
    StatisticRow{kStatStartDate, kGeneral, u"Start Date", kSummaryDate, [](C c) { return OnceOrNever(c.first_time); }},
    StatisticRow{kStatStartTime, kGeneral, u"Start Time", kSummaryTime, [](C c) { return OnceOrNever(c.first_time); }},
    StatisticRow{kStatDuration, kGeneral, u"Duration", kSummaryDuration, [](C c) { return Numbers{c.duration()}; }},
    StatisticRow{kStatFirstGroup, kGeneral, u"Time of Last Packet", kSummaryTime,
                 [](C c) { return OnceOrNever(c.last_time); }},

    StatisticRow{kStatTotalBytes, kNetwork, u"Total Bytes", kSummaryBytes, [](C c) { return Numbers{c.total.bytes}; }},
    StatisticRow{kStatTotalPackets, kNetwork, u"Total Packets", kSummaryPackets,
                 [](C c) { return Numbers{c.total.packets}; }},
    StatisticRow{"3A7D10F4-6B52-4E98-9C3F-18D5E7A2B067"_guid, kNetwork, u"Total Broadcast", kSummaryPacketsAndBytes,
                 [](C c) { return Both(c.broadcast); }},
    StatisticRow{"B5C96E28-0D41-4F7A-8E12-A94F3D6B7C78"_guid, kNetwork, u"Total Multicast", kSummaryPacketsAndBytes,
                 [](C c) { return Both(c.multicast); }},
    StatisticRow{"58E1F3A6-C7B9-4D05-A2E4-6F0C9B8D1E89"_guid, kNetwork, u"VLAN Tagged", kSummaryPacketsAndBytes,
                 [](C c) { return Both(c.vlan); }},
    StatisticRow{"E20B4D97-5A3C-4168-B7F9-D1C86E5F2A9A"_guid, kNetwork, u"IP Fragments", kSummaryPacketsAndBytes,
                 [](C c) { return Both(c.fragments); }},
    StatisticRow{"7C46A8B1-E9D0-43F2-8A5B-2E7F0D3C4BAB"_guid, kNetwork, u"Average Bits per Second", kSummaryReal,
                 [](C c) { return PerSecond(c, c.total.bytes * 8); }},
    StatisticRow{"A91D5C3E-4F86-4B70-9D28-C5E3B1A7F0BC"_guid, kNetwork, u"Average Packets per Second", kSummaryReal,
                 [](C c) { return PerSecond(c, c.total.packets); }},

    StatisticRow{"16F2E8D3-B0A5-4C9E-8B47-F3D6A1C590CD"_guid, kErrors, u"Malformed Packets", kSummaryPackets,
                 [](C c) { return Numbers{c.malformed}; }},
    StatisticRow{"D48A7B6C-2E1F-4053-A9D6-0B5C8F7E31DE"_guid, kErrors, u"Packets Captured in Part", kSummaryPackets,
                 [](C c) { return Numbers{c.cut_off}; }},
    StatisticRow{"8B3E0F59-7D64-4A1B-BC82-E6A9D4F752EF"_guid, kErrors, u"Packets Dropped by the Capture",
                 kSummaryPackets, [](C c) { return Numbers{c.dropped}; }},
    StatisticRow{"2D95C7A0-F3B8-4E46-91CA-7B8E5D0F6AF0"_guid, kErrors, u"Packets out of Time Order", kSummaryPackets,
                 [](C c) { return Numbers{c.out_of_order}; }},
    StatisticRow{"F70C61E4-9A2D-4B85-86DF-34C1B7E8A501"_guid, kErrors, u"ICMP Errors", kSummaryPacketsAndBytes,
                 [](C c) { return Both(c.icmp_errors); }},
    StatisticRow{"6E1B9D82-C54F-4307-AE93-D0F7A6B42812"_guid, kErrors, u"Time of Last ICMP Error", kSummaryTime,
                 [](C c) { return OnceOrNever(c.last_icmp_error); }},

    StatisticRow{"91A4F5C8-3D7E-4B60-B81D-5C2E9F0A7323"_guid, kTcp, u"SYN Packets", kSummaryPackets,
                 [](C c) { return Numbers{c.tcp_syn}; }},
    StatisticRow{"4C8D2B7F-A6E1-4935-9F50-E8B3D7C61A34"_guid, kTcp, u"FIN Packets", kSummaryPackets,
                 [](C c) { return Numbers{c.tcp_fin}; }},
    StatisticRow{"B7F35E0A-18C9-4D2B-A6E4-92D0C5B8F745"_guid, kTcp, u"RST Packets", kSummaryPackets,
                 [](C c) { return Numbers{c.tcp_reset}; }},

    StatisticRow{"05E9A1D6-F82B-4C74-8D39-B6A7E3F0C256"_guid, kCounts, u"Physical Addresses", kSummaryInteger,
                 [](C c) { return Numbers{c.physical_nodes}; }},
    StatisticRow{"D3B60F8C-57A4-4E19-B2C8-1F9D6E7A0467"_guid, kCounts, u"IP Addresses", kSummaryInteger,
                 [](C c) { return Numbers{c.ipv4_nodes}; }},
    StatisticRow{"78C2D9E5-0B6F-4A31-95D7-E4F8A0B1C378"_guid, kCounts, u"IPv6 Addresses", kSummaryInteger,
                 [](C c) { return Numbers{c.ipv6_nodes}; }},
    StatisticRow{"2F50B7A3-E4D8-4C96-A17B-C9E6D2F3B589"_guid, kCounts, u"Protocols", kSummaryInteger,
                 [](C c) { return Numbers{c.protocols}; }},
    StatisticRow{"E6917C4D-A0F2-4B58-8EC3-7D1B5A9F069A"_guid, kCounts, u"Conversations", kSummaryInteger,
                 [](C c) { return Numbers{c.conversations}; }},
    StatisticRow{"B1CB1816-7D85-457C-9F32-2A1422D00E17"_guid, kCounts, u"TCP and UDP Flows", kSummaryInteger,
                 [](C c) { return Numbers{c.flows.begun}; }},
    StatisticRow{"5BB7FB0F-D8D9-415B-8725-460B8CE504DB"_guid, kCounts, u"Flows Recognized by Content", kSummaryInteger,
                 [](C c) { return Numbers{c.flows.recognised}; }},
    StatisticRow{"CE9C02E4-AAFB-4062-97FF-BBAAECA05990"_guid, kCounts, u"Flows Given Up", kSummaryInteger,
                 [](C c) { return Numbers{c.flows.given_up}; }},
    StatisticRow{"0583542F-4CD5-413D-8C6E-3438C63BE5A9"_guid, kCounts, u"Flows Not Inspected", kSummaryInteger,
                 [](C c) { return Numbers{c.flows.not_inspected}; }},
    StatisticRow{"9D08E3F1-6C7A-4525-BFA6-08C4D1E7B2AB"_guid, kCounts, u"Packets of Addresses Not Listed",
                 kSummaryPackets, [](C c) { return Numbers{c.unlisted_addresses}; }},
    StatisticRow{"53BA4C96-D1E8-4F07-A2D9-F6B7C0E835BC"_guid, kCounts, u"Packets of Conversations Not Listed",
                 kSummaryPackets, [](C c) { return Numbers{c.unlisted_conversations}; }},
    StatisticRow{"A8E4D17F-30C6-4B92-8D5E-71F2C9A06BD3"_guid, kCounts, u"Packets of Hierarchy Rows Not Listed",
                 kSummaryPackets, [](C c) { return Numbers{c.unlisted_hierarchy}; }},
    StatisticRow{"7E21C5B8-94D3-4A0F-B6E2-15F8A9C3D07E"_guid, kCounts, u"Packets of Wireless Rows Not Listed",
                 kSummaryPackets, [](C c) { return Numbers{c.unlisted_wireless}; }},
    StatisticRow{"4D96B0E8-C25A-4F31-B7D4-0E8A63F15CE4"_guid, kCounts, u"Names Not Listed", kSummaryInteger,
                 [](C c) { return Numbers{c.unlisted_names}; }},
    StatisticRow{"7B2E91C6-5D08-4A3F-9E74-31C8F0D6A25B"_guid, kCounts, u"Expert Events", kSummaryInteger,
                 [](C c) { return Numbers{c.expert.events}; }},
    StatisticRow{"C4F6083D-97B1-4E2A-8C55-D20E7A9B164F"_guid, kCounts, u"Expert Events Not Listed", kSummaryInteger,
                 [](C c) { return Numbers{c.expert.unlisted_events}; }},
    StatisticRow{"1E8D57A0-2F4C-49B6-B3E1-86A5C97D0F32"_guid, kCounts, u"Expert Flows Not Listed", kSummaryInteger,
                 [](C c) { return Numbers{c.expert.unlisted_flows}; }},

    StatisticRow{"C10F7E5A-8B92-4D36-94EB-A3D5F8C617CD"_guid, kSizes, u"Smallest Packet", kSummaryInteger,
                 [](C c) {
                   return Numbers{c.shortest, 0, c.total.packets != 0};
                 }},
    StatisticRow{"67D8B2E0-F5C4-4A13-8B7F-1E0A9C6D48DE"_guid, kSizes, u"Largest Packet", kSummaryInteger,
                 [](C c) {
                   return Numbers{c.longest, 0, c.total.packets != 0};
                 }},
    StatisticRow{
        "0A36F9C7-D2B1-4E84-A5C0-B8E7D4F159EF"_guid, kSizes, u"Average Packet Size", kSummaryReal,
        [](C c) { return Quotient(static_cast<double>(c.total.bytes), static_cast<double>(c.total.packets)); }},
    StatisticRow{"BE7150D4-9F3A-4C68-B1E2-4D6C8A0B7AF0"_guid, kSizes, u"64 Bytes or Fewer", kSummaryPackets,
                 [](C c) { return Numbers{PacketsBetween(c.sizes, 0, 64)}; }},
    StatisticRow{"F4C9A8E3-2B5D-4716-8FD0-C7E1B6A98B01"_guid, kSizes, u"65 to 255 Bytes", kSummaryPackets,
                 [](C c) { return Numbers{PacketsBetween(c.sizes, 64, 255)}; }},
    StatisticRow{"1D8E6B25-C0F7-4A59-93BE-E5D2F7C4AC12"_guid, kSizes, u"256 to 511 Bytes", kSummaryPackets,
                 [](C c) { return Numbers{PacketsBetween(c.sizes, 255, 511)}; }},
    StatisticRow{"A5B20D7E-4E93-4FC1-B6A8-0C9F3E8D1D23"_guid, kSizes, u"512 to 1023 Bytes", kSummaryPackets,
                 [](C c) { return Numbers{PacketsBetween(c.sizes, 511, 1023)}; }},
    StatisticRow{"80E7F1B9-D6A4-4352-A0CD-B2F5C6E73E34"_guid, kSizes, u"1024 to 1517 Bytes", kSummaryPackets,
                 [](C c) { return Numbers{PacketsBetween(c.sizes, 1023, 1517)}; }},
    StatisticRow{"39C54A8F-B7E0-4D2C-9E16-D7A8F0B94F45"_guid, kSizes, u"1518 Bytes or More", kSummaryPackets,
                 [](C c) { return Numbers{PacketsBetween(c.sizes, 1517, UINT64_MAX)}; }},

    StatisticRow{"A7E2B914-6C3D-4F50-8B17-D94C20E6F178"_guid, kVoice, u"Calls", kSummaryInteger,
                 [](C c) { return Numbers{c.voice.calls}; }},
    StatisticRow{"0D58C6F3-B941-4E2A-A7C5-3F186B9DE289"_guid, kVoice, u"Media Streams", kSummaryInteger,
                 [](C c) { return Numbers{c.voice.streams}; }},
    StatisticRow{"F19B47D2-83AE-4605-BD6C-72C0E5A1F39A"_guid, kVoice, u"SIP Requests", kSummaryPackets,
                 [](C c) { return Numbers{c.voice.sip_requests}; }},
    StatisticRow{"68C4A03E-D7F5-4B19-92E8-B5D31C7F64AB"_guid, kVoice, u"SIP Responses", kSummaryPackets,
                 [](C c) { return Numbers{c.voice.sip_responses}; }},
    StatisticRow{"B3F07E59-1A8C-42D6-8E94-C6A5D20B75BC"_guid, kVoice, u"RTP Packets", kSummaryPackets,
                 [](C c) { return Numbers{c.voice.rtp_packets}; }},
    StatisticRow{"5E92D1C8-F46B-4A37-B0F3-18D7E96CA6CD"_guid, kVoice, u"RTCP Packets", kSummaryPackets,
                 [](C c) { return Numbers{c.voice.rtcp_packets}; }},
    StatisticRow{"C84B6A27-0E9D-4F13-A5B8-E72D94F1B7DE"_guid, kVoice, u"SIP Messages of Calls Not Listed",
                 kSummaryPackets, [](C c) { return Numbers{c.voice.unlisted_sip_messages}; }},
    StatisticRow{"2A75F3E0-9C16-4D8B-87D4-5B0E6A38C8EF"_guid, kVoice, u"RTP Packets of Streams Not Listed",
                 kSummaryPackets, [](C c) { return Numbers{c.voice.unlisted_rtp_packets}; }},
};

}  // namespace

std::shared_ptr<const SummaryCatalogue> LiveCatalogue() {
  static const std::shared_ptr<const SummaryCatalogue> catalogue = [] {
    auto made = std::make_shared<SummaryCatalogue>();
    for (const GroupRow& row : kGroups) made->groups.push_back({row.identifier, std::u16string(row.name)});
    for (const StatisticRow& row : kStatistics) {
      made->statistics.push_back({row.identifier, row.group, std::u16string(row.name)});
    }
    made->Index();
    return made;
  }();
  return catalogue;
}

std::shared_ptr<const SummaryRecord> MakeSummary(const Counters& counters, std::u16string_view name) {
  auto record = std::make_shared<SummaryRecord>();
  record->name = name;
  record->values.reserve(kStatistics.size());
  for (const StatisticRow& row : kStatistics) {
    Numbers numbers = row.get(counters);
    record->values.push_back(numbers.known ? SummaryValue{row.kind, numbers.first, numbers.second} : SummaryValue{});
  }
  return record;
}

}  // namespace orvo
