#include <array>
#include <string>
#include <utility>
#include <vector>

#include "capture/context/address_text.h"
#include "capture/context/analysis_table.h"
#include "capture/context/expert_cells.h"
#include "capture/context/expert_tables.h"

namespace orvo {
namespace {

// What one kind of event says of itself, in both tables.
template <std::string_view ExpertEventType::*text>
std::u16string TypeText(ExpertEvent event) {
  return PlainCell(TypeOf(event).*text);
}
std::u16string LayerText(ExpertEvent event) {
  return PlainCell(LayerName(TypeOf(event).layer));
}
std::u16string SeverityText(ExpertEvent event) {
  return PlainCell(SeverityName(TypeOf(event).severity));
}

struct CountRow {
  ExpertEvent event;
  EventCount count;
};

template <std::u16string (*text)(ExpertEvent event)>
std::u16string OfCount(const CountRow& row) {
  return text(row.event);
}

using CountColumn = AnalysisColumn<CountRow>;

/// The first column is the event's name for programs. Separated text leaves out a column of that identifier; people
/// read the name in the fourth.
constexpr std::array kCountColumns{
    CountColumn{"EVENT_NAME", "Event Name", OfCount<TypeText<&ExpertEventType::key>>},
    CountColumn{"LAYER", "Layer", OfCount<LayerText>},
    CountColumn{"EVENT_SEVERITY_MAX", "Severity", OfCount<SeverityText>},
    CountColumn{"EVENT", "Event", OfCount<TypeText<&ExpertEventType::name>>},
    CountColumn{"PROBLEM_COUNT", "Events", [](const CountRow& row) { return CountCell(row.count.count); }},
    CountColumn{"FIRST_TIME", "First", [](const CountRow& row) { return TimeCell(row.count.first_time); }},
    CountColumn{"LAST_TIME", "Last", [](const CountRow& row) { return TimeCell(row.count.last_time); }},
    CountColumn{"CAUSE", "Cause", OfCount<TypeText<&ExpertEventType::cause>>},
    CountColumn{"ADVICE", "Advice", OfCount<TypeText<&ExpertEventType::advice>>},
};

template <std::u16string (*text)(ExpertEvent event)>
std::u16string OfRecord(const EventRecord& row) {
  return text(row.event);
}

template <AddressRecord EventRecord::*address>
std::u16string AddressCell(const EventRecord& row) {
  std::u16string text;
  AppendAddress(row.*address, &text);
  return text;
}

std::u16string RcodeCell(std::uint64_t rcode) {
  static constexpr std::array<std::string_view, 6> kNames{"NoError",  "FormErr", "ServFail",
                                                          "NXDomain", "NotImp",  "Refused"};
  return rcode < kNames.size() ? PlainCell(kNames[rcode]) : u"rcode " + CountCell(rcode);
}

std::u16string DetailCell(const EventRecord& row) {
  switch (TypeOf(row.event).measure) {
    case EventMeasure::kStatusCode: return u"status " + CountCell(row.value);
    case EventMeasure::kRcode: return RcodeCell(row.value);
    case EventMeasure::kAlert: return u"alert " + CountCell(row.value);
    case EventMeasure::kTypeAndCode:
      return u"type " + CountCell(row.value >> 8) + u" code " + CountCell(row.value & 0xFF);
    case EventMeasure::kBitsPerSecond: return CountCell(row.value) + u" bit/s";
    case EventMeasure::kPerSecond: return u"more than " + CountCell(row.value - 1) + u" per second";
    case EventMeasure::kInARow: return CountCell(row.value) + u" in a row";
    case EventMeasure::kDelay:
    case EventMeasure::kNothing: break;
  }
  return {};
}

std::u16string DelayCell(const EventRecord& row) {
  bool delayed = TypeOf(row.event).measure == EventMeasure::kDelay;
  return delayed ? MillisecondCell(static_cast<double>(row.value)) : u"";
}

using LogColumn = AnalysisColumn<EventRecord>;

constexpr std::array kLogColumns{
    LogColumn{"EVENT_NUMBER", "Number", [](const EventRecord& row) { return CountCell(row.number); }},
    LogColumn{"EVENT_TIME", "Time", [](const EventRecord& row) { return TimeCell(row.time); }},
    LogColumn{"LAYER", "Layer", OfRecord<LayerText>},
    LogColumn{"EVENT_SEVERITY_MAX", "Severity", OfRecord<SeverityText>},
    LogColumn{"EVENT", "Event", OfRecord<TypeText<&ExpertEventType::name>>},
    LogColumn{"SOURCE_ADDRESS", "Source Address", AddressCell<&EventRecord::source>},
    LogColumn{"SOURCE_PORT", "Source Port", [](const EventRecord& row) { return PortCell(row.source_port); }},
    LogColumn{"DESTINATION_ADDRESS", "Destination Address", AddressCell<&EventRecord::destination>},
    LogColumn{"DESTINATION_PORT", "Destination Port",
              [](const EventRecord& row) { return PortCell(row.destination_port); }},
    LogColumn{"APPLICATION", "Application",
              [](const EventRecord& row) { return ApplicationCell(row.applications, row.ip_protocol); }},
    LogColumn{"FLOW_ID", "Flow ID", [](const EventRecord& row) { return row.flow == 0 ? u"" : CountCell(row.flow); }},
    LogColumn{"DELAY", "Delay (ms)", DelayCell},
    LogColumn{"DETAIL", "Detail", DetailCell},
    LogColumn{"CAUSE", "Cause", OfRecord<TypeText<&ExpertEventType::cause>>},
    LogColumn{"ADVICE", "Advice", OfRecord<TypeText<&ExpertEventType::advice>>},
};

}  // namespace

ComPtr<ITable> MakeEventCountTable(const FrozenExpert& expert) {
  std::vector<CountRow> rows;
  for (const ExpertEventType& type : expert_events::kTypes) {
    const EventCount& count = expert.events.counts[static_cast<std::size_t>(type.event)];
    if (count.count != 0) rows.push_back({type.event, count});
  }
  return ComPtr<ITable>(MakeObject<AnalysisTable<std::vector<CountRow>, kCountColumns>>(std::move(rows)).get());
}

ComPtr<ITable> MakeEventLogTable(const FrozenExpert& expert) {
  return ComPtr<ITable>(MakeObject<AnalysisTable<FrozenEvents, kLogColumns>>(expert.events).get());
}

}  // namespace orvo
