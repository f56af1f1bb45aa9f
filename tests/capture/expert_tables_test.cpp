#include "capture/context/expert_tables.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <set>

#include "tests/capture/expert_fixture.h"
#include "tests/support/ask.h"
#include "tests/support/temporary_folder.h"

namespace orvo::test {
namespace {

/// What an ITable answers, read whole.
struct Sheet {
  explicit Sheet(const ComPtr<ITable>& table) {
    const auto ask = Ask(table);
    const std::uint32_t column_count = ask(&ITable::GetColumnCount);
    const std::uint32_t row_count = ask(&ITable::GetRowCount);
    for (std::uint32_t column = 0; column < column_count; ++column) {
      identifiers.push_back(Ascii(ask(&ITable::GetColumnIdentifier, column)));
      titles.push_back(Ascii(ask(&ITable::GetColumnTitle, column)));
    }
    for (std::uint32_t row = 0; row < row_count; ++row) {
      rows.emplace_back();
      for (std::uint32_t column = 0; column < column_count; ++column) {
        rows.back().push_back(Ascii(ask(&ITable::GetCell, row, column)));
      }
    }
    std::u16string text;
    EXPECT_EQ(table->GetCell(row_count, 0, &text), E_INVALIDARG);
    EXPECT_EQ(table->GetCell(0, column_count, &text), E_INVALIDARG);
  }

  std::string Cell(std::size_t row, std::string_view identifier) const {
    auto found = std::ranges::find(identifiers, identifier);
    return found == identifiers.end() ? "no such column"
                                      : rows.at(row).at(static_cast<std::size_t>(found - identifiers.begin()));
  }

  std::vector<std::string> identifiers;
  std::vector<std::string> titles;
  std::vector<std::vector<std::string>> rows;
};

/// A web request that fails after 20 ms, over a connection that took 10 ms to open.
void FeedRequest(ExpertFixture* expert) {
  auto client = [](std::uint32_t sequence, std::uint32_t acknowledged, std::uint8_t flags) {
    return TcpHeader(40000, 80, sequence, acknowledged, flags);
  };
  auto server = [](std::uint32_t sequence, std::uint32_t acknowledged, std::uint8_t flags) {
    return TcpHeader(80, 40000, sequence, acknowledged, flags);
  };
  expert->FeedIp(true, 6, client(0, 0, TcpSegment::kSyn), 0);
  expert->FeedIp(false, 6, server(0, 1, TcpSegment::kSyn | TcpSegment::kAck), 9);
  expert->FeedIp(true, 6, client(1, 1, TcpSegment::kAck), 10);
  expert->FeedIp(true, 6, client(1, 1, TcpSegment::kAck) + Text("GET / HTTP/1.1\r\n"), 10);
  expert->FeedIp(false, 6, server(1, 17, TcpSegment::kAck) + Text("HTTP/1.1 503 Busy\r\n"), 30);
}

TEST(ExpertTables, SayWhatReportsTakeFromFixedColumns) {
  ExpertFixture expert;
  FeedRequest(&expert);
  FrozenExpert frozen = expert.analysis.Freeze();

  Sheet flows(MakeFlowTable(frozen));
  ASSERT_EQ(flows.rows.size(), 1U);
  const std::pair<std::size_t, std::string> flow_cells[] = {
      {0, "1"},     {1, "10.0.0.1"}, {2, "40000"}, {3, "10.0.0.2"}, {4, "80"},      {13, "305"},    {10, "5"},
      {5, "1"},     {6, "HTTP"},     {7, "1.00"},  {8, "1"},        {22, "20.000"}, {26, "47467"},  {30, "33867"},
      {9, "Major"}, {11, "3"},       {12, "2"},    {14, "178"},     {15, "127"},    {23, "10.000"}, {24, "1"},
      {36, "TCP"},  {37, "HTTP"},    {35, "0"},    {18, "0.030000"}};
  for (const auto& [column, text] : flow_cells) EXPECT_EQ(flows.rows[0].at(column), text) << flows.titles.at(column);

  Sheet applications(MakeApplicationTable(frozen));
  ASSERT_EQ(applications.rows.size(), 1U);
  const std::pair<std::size_t, std::string> application_cells[] = {{0, "HTTP"}, {6, "1"},  {7, "1"},    {8, "TCP"},
                                                                   {9, "1.00"}, {10, "1"}, {15, "305"}, {12, "5"}};
  for (const auto& [column, text] : application_cells) {
    EXPECT_EQ(applications.rows[0].at(column), text) << applications.titles.at(column);
  }

  Sheet counts(MakeEventCountTable(frozen));
  ASSERT_EQ(counts.rows.size(), 1U);
  EXPECT_EQ(counts.identifiers[0], "EVENT_NAME");
  EXPECT_EQ(std::vector<std::string>(counts.rows[0].begin(), counts.rows[0].begin() + 5),
            (std::vector<std::string>{"HTTP_SERVER_ERROR", "Application", "Major", "HTTP Server Error", "1"}));

  Sheet log(MakeEventLogTable(frozen));
  ASSERT_EQ(log.rows.size(), 1U);
  const std::pair<const char*, const char*> log_cells[] = {
      {"EVENT_NUMBER", "1"},           {"SOURCE_ADDRESS", "10.0.0.2"}, {"SOURCE_PORT", "80"},
      {"DESTINATION_PORT", "40000"},   {"APPLICATION", "HTTP"},        {"FLOW_ID", "1"},
      {"EVENT_SEVERITY_MAX", "Major"}, {"DETAIL", "status 503"},       {"DELAY", ""},
  };
  for (auto [identifier, text] : log_cells) EXPECT_EQ(log.Cell(0, identifier), text) << identifier;
}

TEST(ExpertTables, HaveNamesForProgramsAndForPeople) {
  FrozenExpert empty = ExpertFixture().analysis.Freeze();
  for (const ComPtr<ITable>& table :
       {MakeFlowTable(empty), MakeApplicationTable(empty), MakeEventCountTable(empty), MakeEventLogTable(empty)}) {
    Sheet sheet(table);
    EXPECT_TRUE(sheet.rows.empty());
    std::set<std::string> identifiers(sheet.identifiers.begin(), sheet.identifiers.end());
    std::set<std::string> titles(sheet.titles.begin(), sheet.titles.end());
    EXPECT_EQ(identifiers.size(), sheet.identifiers.size());
    EXPECT_EQ(titles.size(), sheet.titles.size());
    for (const std::string& identifier : identifiers) {
      EXPECT_FALSE(identifier.empty());
      EXPECT_EQ(identifier.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ_"), std::string::npos) << identifier;
    }
    for (const std::string& title : titles) EXPECT_EQ(title.find_first_of(",\t"), std::string::npos) << title;
  }
}

TEST(ExpertTables, LeaveEmptyWhatWasNotMeasured) {
  ExpertFixture expert;
  expert.FeedIp(true, 17, Udp(50000, 50001, {1}));
  expert.Feed(Ethernet(Mac(1), Mac(2), 0x0800, Ipv4(Ip4(1), Ip4(2), 1, {3, 1, 0, 0, 0, 0, 0, 0})));
  FrozenExpert frozen = expert.analysis.Freeze();
  Sheet flows(MakeFlowTable(frozen));
  for (auto [identifier, text] : {std::pair{"DELAY", ""},
                                  {"CONNECT_TIME", ""},
                                  {"APDEX_SCORE", "NS"},
                                  {"CLIENT_BITS_PER_SECOND", "0"},
                                  {"PROTOCOL", "UDP"},
                                  {"EVENT_SEVERITY_MAX", "Informational"}}) {
    EXPECT_EQ(flows.Cell(0, identifier), text) << identifier;
  }
  Sheet log(MakeEventLogTable(frozen));
  for (auto [identifier, text] : {std::pair{"FLOW_ID", ""},
                                  {"SOURCE_PORT", ""},
                                  {"APPLICATION", ""},
                                  {"DETAIL", "type 3 code 1"},
                                  {"SOURCE_ADDRESS", "10.0.0.1"}}) {
    EXPECT_EQ(log.Cell(0, identifier), text) << identifier;
  }
}

std::string ThresholdText(const ExpertEventType& type) {
  if (type.threshold == 0) return "";
  std::string number = std::to_string(type.threshold);
  switch (type.measure) {
    case EventMeasure::kDelay: return "over " + number + " ms";
    case EventMeasure::kBitsPerSecond: return "below " + number + " bit/s";
    case EventMeasure::kPerSecond: return "over " + number + " per second";
    case EventMeasure::kPercent: return "over " + number + " %";
    case EventMeasure::kMinusDbm: return "below -" + number + " dBm";
    case EventMeasure::kInARow: return number + " in a row";
    default: return number;
  }
}

/// docs/expert-events.md as the table of events has it.
std::string EventPage() {
  std::string page =
      "# Events of the expert analysis\n\n"
      "Made from `src/capture/analysis/expert/expert_events.h` by the test `ExpertEvents.AreDocumented`; with\n"
      "`ORVO_REWRITE_EXPECTED=1` it writes this page anew.\n";
  for (auto layer : {EventLayer::kDataLink, EventLayer::kNetwork, EventLayer::kTransport, EventLayer::kApplication}) {
    page += "\n## " + std::string(LayerName(layer)) +
            "\n\n| event | severity | when | cause | advice |\n|---|---|---|---|---|\n";
    for (const ExpertEventType& type : expert_events::kTypes) {
      if (type.layer != layer) continue;
      page += "| " + std::string(type.name) + " | " + std::string(SeverityName(type.severity)) + " | " +
              ThresholdText(type) + " | " + std::string(type.cause) + " | " + std::string(type.advice) + " |\n";
    }
  }
  return page;
}

TEST(ExpertEvents, AreDocumented) {
  const std::string path = ORVO_SOURCE_DIR "/docs/expert-events.md";
  if (std::getenv("ORVO_REWRITE_EXPECTED")) std::ofstream(path) << EventPage();
  EXPECT_EQ(FileBytes(path), EventPage()) << "ORVO_REWRITE_EXPECTED=1 writes the page";
}

TEST(ExpertEvents, HaveTextsThatReportsCanShow) {
  std::set<std::string_view> keys;
  std::set<std::string_view> names;
  for (const ExpertEventType& type : expert_events::kTypes) {
    keys.insert(type.key);
    names.insert(type.name);
    for (std::string_view text : {type.key, type.name, type.cause, type.advice}) {
      EXPECT_FALSE(text.empty());
      EXPECT_EQ(text.find_first_of(",\t\n|"), std::string_view::npos) << text;
    }
  }
  EXPECT_EQ(keys.size(), kExpertEventCount);
  EXPECT_EQ(names.size(), kExpertEventCount);
}

}  // namespace
}  // namespace orvo::test
