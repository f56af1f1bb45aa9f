#include <array>
#include <vector>

#include "capture/context/analysis_table.h"
#include "capture/context/expert_cells.h"
#include "capture/context/expert_tables.h"

namespace orvo {
namespace {

using R = const ApplicationRow&;

template <std::uint64_t ApplicationRow::*count>
std::u16string NumberCell(R row) {
  return CountCell(row.*count);
}

template <std::array<std::uint64_t, 2> ApplicationRow::*pair, FlowSide side>
std::u16string SideCell(R row) {
  return CountCell((row.*pair)[side]);
}

template <std::array<std::uint64_t, 2> ApplicationRow::*pair>
std::u16string SumCell(R row) {
  return CountCell((row.*pair)[kClient] + (row.*pair)[kServer]);
}

/// What the application is spoken over: for a service, the protocol that it is reached by.
std::u16string CarrierCell(R row) {
  return row.applications[1] == 0 ? TransportCell(row.ip_protocol) : ProtocolCell(row.applications, row.ip_protocol);
}

using Column = AnalysisColumn<ApplicationRow>;

constexpr std::array kColumns{
    Column{"NAME", "Name", [](R row) { return ApplicationCell(row.applications, row.ip_protocol); }},
    Column{"EVENT_SEVERITY_MAX", "Highest Severity", [](R row) { return PlainCell(SeverityName(row.severity)); }},
    Column{"RESPONSE_TIME_BEST", "Best Response Time (ms)", [](R row) { return BestCell(row.responses); }},
    Column{"DELAY", "Response Time (ms)", [](R row) { return MeanCell(row.responses); }},
    Column{"RESPONSE_TIME_WORST", "Worst Response Time (ms)", [](R row) { return WorstCell(row.responses); }},
    Column{"FLOWS_WITH_EVENTS", "Flows with Events", NumberCell<&ApplicationRow::flows_with_events>},
    Column{"FLOWS", "Flows", NumberCell<&ApplicationRow::flows>},
    Column{"PROBLEM_COUNT", "Events", NumberCell<&ApplicationRow::events>},
    Column{"PROTOCOL", "Protocol", CarrierCell},
    Column{"APDEX_SCORE", "Apdex", [](R row) { return ApdexCell(row.responses); }},
    Column{"SAMPLE_COUNT", "Sample Count", [](R row) { return CountCell(row.responses.count()); }},
    Column{"RETRANSMISSIONS", "Retransmissions", SumCell<&ApplicationRow::retransmissions>},
    Column{"PACKETS", "Packets", SumCell<&ApplicationRow::packets>},
    Column{"CLIENT_PACKETS", "C->S Packets", SideCell<&ApplicationRow::packets, kClient>},
    Column{"SERVER_PACKETS", "S->C Packets", SideCell<&ApplicationRow::packets, kServer>},
    Column{"BYTES", "Bytes", SumCell<&ApplicationRow::bytes>},
    Column{"CLIENT_BYTES", "C->S Bytes", SideCell<&ApplicationRow::bytes, kClient>},
    Column{"SERVER_BYTES", "S->C Bytes", SideCell<&ApplicationRow::bytes, kServer>},
    Column{"APDEX_SATISFIED", "Satisfied", [](R row) { return CountCell(row.responses.satisfied); }},
    Column{"APDEX_TOLERATED", "Tolerated", [](R row) { return CountCell(row.responses.tolerated); }},
    Column{"APDEX_FRUSTRATED", "Frustrated", [](R row) { return CountCell(row.responses.frustrated); }},
};

}  // namespace

ComPtr<ITable> MakeApplicationTable(const FrozenExpert& expert) {
  using Rows = std::vector<ApplicationRow>;
  return ComPtr<ITable>(MakeObject<AnalysisTable<Rows, kColumns>>(expert.Applications()).get());
}

}  // namespace orvo
