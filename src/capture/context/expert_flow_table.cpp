#include <array>
#include <memory>
#include <utility>
#include <vector>

#include "capture/context/address_text.h"
#include "capture/context/analysis_table.h"
#include "capture/context/expert_cells.h"
#include "capture/context/expert_tables.h"
#include "capture/decode/packet_facts.h"

namespace orvo {
namespace {

using R = const FlowRow&;

template <FlowSide side>
std::u16string AddressCell(R row) {
  AddressRecord record;
  if (row.ip_version == 4) {
    SetAddress<4>(&record, kAddressIp, row.addresses[side].data());
  } else {
    SetAddress<16>(&record, kAddressIpv6, row.addresses[side].data());
  }
  std::u16string text;
  AppendAddress(record, &text);
  return text;
}

/// Bits per second over the time in which the flow was active; 0 for a flow of one moment.
template <FlowSide side>
std::u16string RateCell(R row) {
  if (row.active_time == 0) return u"0";
  return RealCell(static_cast<double>(row.bytes[side]) * 8e9 / static_cast<double>(row.active_time), 0);
}

template <auto FlowRow::*pair, FlowSide side>
std::u16string SideCell(R row) {
  return CountCell((row.*pair)[side]);
}

template <auto FlowRow::*pair>
std::u16string SumCell(R row) {
  return CountCell(std::uint64_t{(row.*pair)[kClient]} + (row.*pair)[kServer]);
}

template <auto FlowRow::*count>
std::u16string NumberCell(R row) {
  return CountCell(row.*count);
}

std::u16string SecondCell(std::uint64_t nanoseconds) {
  return RealCell(static_cast<double>(nanoseconds) / 1e9, 6);
}

using Column = AnalysisColumn<FlowRow>;

constexpr std::array kColumns{
    Column{"FLOW_ID", "Flow ID", NumberCell<&FlowRow::id>},
    Column{"CLIENT_ADDRESS", "Client Address", AddressCell<kClient>},
    Column{"CLIENT_PORT", "Client Port", SideCell<&FlowRow::ports, kClient>},
    Column{"SERVER_ADDRESS", "Server Address", AddressCell<kServer>},
    Column{"SERVER_PORT", "Server Port", SideCell<&FlowRow::ports, kServer>},
    Column{"PROBLEM_COUNT", "Events", NumberCell<&FlowRow::events>},
    Column{"PROTOCOL", "Protocol", [](R row) { return ProtocolCell(row.applications, row.ip_protocol); }},
    Column{"APDEX_SCORE", "Apdex Score", [](R row) { return ApdexCell(row.responses); }},
    Column{"SAMPLE_COUNT", "Sample Count", [](R row) { return CountCell(row.responses.count()); }},
    Column{"EVENT_SEVERITY_MAX", "Highest Severity", [](R row) { return PlainCell(SeverityName(row.severity)); }},
    Column{"PACKETS", "Packets", SumCell<&FlowRow::packets>},
    Column{"CLIENT_PACKETS", "C->S Packets", SideCell<&FlowRow::packets, kClient>},
    Column{"SERVER_PACKETS", "S->C Packets", SideCell<&FlowRow::packets, kServer>},
    Column{"BYTES", "Bytes", SumCell<&FlowRow::bytes>},
    Column{"CLIENT_BYTES", "C->S Bytes", SideCell<&FlowRow::bytes, kClient>},
    Column{"SERVER_BYTES", "S->C Bytes", SideCell<&FlowRow::bytes, kServer>},
    Column{"FIRST_PACKET", "First Packet", [](R row) { return TimeCell(row.first_time); }},
    Column{"LAST_PACKET", "Last Packet", [](R row) { return TimeCell(row.last_time); }},
    Column{"DURATION", "Duration (s)", [](R row) { return SecondCell(row.last_time - row.first_time); }},
    Column{"ACTIVE_TIME", "Active Time (s)", [](R row) { return SecondCell(row.active_time); }},
    Column{"RESPONSE_TIME_BEST", "Best Response Time (ms)", [](R row) { return BestCell(row.responses); }},
    Column{"RESPONSE_TIME_WORST", "Worst Response Time (ms)", [](R row) { return WorstCell(row.responses); }},
    Column{"DELAY", "Response Time (ms)", [](R row) { return MeanCell(row.responses); }},
    Column{"CONNECT_TIME", "TCP Connect Time (ms)",
           [](R row) { return row.connect_time == 0 ? u"" : MillisecondCell(row.connect_time); }},
    Column{"APDEX_SATISFIED", "Satisfied", [](R row) { return CountCell(row.responses.satisfied); }},
    Column{"APDEX_TOLERATED", "Tolerated", [](R row) { return CountCell(row.responses.tolerated); }},
    Column{"CLIENT_BITS_PER_SECOND", "C->S bps", RateCell<kClient>},
    Column{"APDEX_FRUSTRATED", "Frustrated", [](R row) { return CountCell(row.responses.frustrated); }},
    Column{"CLIENT_RETRANSMISSIONS", "C->S Retransmissions", SideCell<&FlowRow::retransmissions, kClient>},
    Column{"SERVER_RETRANSMISSIONS", "S->C Retransmissions", SideCell<&FlowRow::retransmissions, kServer>},
    Column{"SERVER_BITS_PER_SECOND", "S->C bps", RateCell<kServer>},
    Column{"OUT_OF_ORDER", "Out of Order", NumberCell<&FlowRow::out_of_order>},
    Column{"MISSING_SEGMENTS", "Missing Segments", NumberCell<&FlowRow::missing>},
    Column{"DUPLICATE_ACKS", "Duplicate Acknowledgements", NumberCell<&FlowRow::duplicate_acks>},
    Column{"ZERO_WINDOWS", "Zero Windows", NumberCell<&FlowRow::zero_windows>},
    Column{"RESETS", "Resets", NumberCell<&FlowRow::resets>},
    Column{"TRANSPORT", "Transport", [](R row) { return TransportCell(row.ip_protocol); }},
    Column{"APPLICATION", "Application", [](R row) { return ApplicationCell(row.applications, row.ip_protocol); }},
};

/// The rows in the order in which the flows began.
struct FlowRows {
  FrozenTable<FlowRow> rows;
  std::shared_ptr<const std::vector<std::uint32_t>> order;

  std::size_t size() const { return order->size(); }
  const FlowRow& operator[](std::size_t row) const { return rows[(*order)[row]]; }
};

}  // namespace

ComPtr<ITable> MakeFlowTable(const FrozenExpert& expert) {
  FlowRows rows{expert.flows.rows, std::make_shared<const std::vector<std::uint32_t>>(expert.FlowOrder())};
  return ComPtr<ITable>(MakeObject<AnalysisTable<FlowRows, kColumns>>(std::move(rows)).get());
}

}  // namespace orvo
