#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "tests/support/report_fixture.h"
#include "text/csv_stats_output.h"

namespace orvo::test {

class TextReportTest : public ReportTest {
 public:
  TextReportTest() : ReportTest(CreateCsvStatsOutput) { SetFormat(u".csv", u","); }

  /// Leaves the summary and the section of one switch.
  void OnlySection(std::uint32_t section) {
    SwitchOff({kSwitchOutputNodeStats, kSwitchOutputProtocolStats, kSwitchOutputWLANStats, kSwitchOutputWChannelsStats,
               kSwitchOutputNodeDetails, kSwitchOutputExpertStats, kSwitchOutputVoIPOnly});
    Switch(section, 1);
  }

  void SetFormat(std::u16string_view extension, std::u16string_view separator) {
    EXPECT_EQ(method->SetFormat(Bstr(extension).get(), Bstr(separator).get(), preferences.get(), nullptr), S_OK);
  }

  /// After a report that must go through.
  TextReportTest& Reported(const std::source_location& place = std::source_location::current()) {
    ExpectReport(place);
    return *this;
  }
  std::vector<std::string> FileLines(const std::string& name) const { return Lines(folder.Read(name)); }
  /// The lines of a file that one report makes anew; none when it makes no such file.
  std::vector<std::string> Written(const std::string& name) {
    std::filesystem::remove(folder.Path(name));
    EXPECT_EQ(Output(), S_OK);
    return folder.Has(name) ? FileLines(name) : std::vector<std::string>();
  }
};

}  // namespace orvo::test
