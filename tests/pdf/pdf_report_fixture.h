#pragma once

#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

#include "pdf/pdf_stats_output.h"
#include "tests/support/pdf_pages.h"
#include "tests/support/report_fixture.h"

namespace orvo::test {

/// A failure that nothing but a test's own engine answers with.
inline constexpr Status kDenied = StatusFromError(kErrorAccessDenied);

class PdfReportTest : public ReportTest {
 public:
  using Page = std::vector<std::string>;

  PdfReportTest() : ReportTest(CreatePdfStatsOutput) {
    engine.live.start_time = Moment(-7);
    engine.live.duration = 7'000'000'000;
    engine.live.total_packets = 10;
    engine.live.total_bytes = 1000;
    EXPECT_EQ(method->SetFormat(nullptr, nullptr, preferences.get(), nullptr), S_OK);
  }

  /// After a report that must go through.
  PdfReportTest& Reported(const std::source_location& place = std::source_location::current()) {
    ExpectReport(place);
    return *this;
  }
  std::string Report() const { return folder.Path("Report.pdf"); }
  /// The pages whose first line is this title, with the time of the report behind it.
  std::vector<Page> PagesTitled(const std::string& title) const {
    std::vector<Page> found;
    for (const Page& page : PdfPages(Report())) {
      if (!page.empty() && page.front().ends_with(":" + title + ": Reported 11/22/2026 14:05:09"))
        found.push_back(page);
    }
    return found;
  }
  /// The same after a new report.
  std::vector<Page> Print(const std::string& title) {
    EXPECT_EQ(Output(), S_OK);
    return PagesTitled(title);
  }
  /// What stands below title and header.
  static Page Rows(const Page& page) { return {page.begin() + 3, page.end()}; }
  /// The entries of the outline, without what every report has: the root, the dashboard and the statistics.
  std::vector<std::string> Entries() const {
    std::vector<std::string> entries = PdfOutlineOf(Report());
    EXPECT_GE(entries.size(), 3U);
    return {entries.begin() + 3, entries.end()};
  }
  /// What the observer heard last of the report.
  ScriptedEngine::FileReport Heard() const {
    EXPECT_FALSE(engine.files.empty());
    return engine.files.empty() ? ScriptedEngine::FileReport() : engine.files.back();
  }
};

}  // namespace orvo::test
