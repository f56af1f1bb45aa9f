#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/clock.h"
#include "prefs/stats_output_prefs.h"
#include "prefs/switch_ids.h"
#include "tests/support/scripted_engine.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/text.h"
#include "text/csv_stats_output.h"

namespace orvo::test {

/// 2026-11-22 14:05:09 UTC, and so many seconds later.
inline std::uint64_t Moment(std::int64_t seconds = 0) {
  return TimeFromUnix((1'795'356'309 + seconds) * 1'000'000'000);
}

/// A text report from a scripted engine into a folder of its own.
class TextReportTest : public testing::Test {
 protected:
  TextReportTest() {
    engine.snapshot_time = Moment();
    EXPECT_EQ(CreateCsvStatsOutput(IStatsOutputMethod::kIid, method.OutVoid()), S_OK);
    EXPECT_EQ(CreateStatsOutputPrefs(IStatsOutputPrefs::kIid, preferences.OutVoid()), S_OK);
    SetFormat(u".csv", u",");
  }

  /// Leaves the summary and the section of one switch.
  void OnlySection(std::uint32_t section) {
    for (std::uint32_t gate :
         {kSwitchOutputNodeStats, kSwitchOutputProtocolStats, kSwitchOutputWLANStats, kSwitchOutputWChannelsStats,
          kSwitchOutputNodeDetails, kSwitchOutputExpertStats, kSwitchOutputVoIPOnly}) {
      preferences->SetPreference(gate, gate == section);
    }
  }

  void SetFormat(std::u16string_view extension, std::u16string_view separator) {
    EXPECT_EQ(method->SetFormat(Bstr(extension).get(), Bstr(separator).get(), preferences.get(), nullptr), S_OK);
  }

  Status Output() { return method->Output(Bstr(folder.ReportFolder()).get(), engine.Context().get(), nullptr); }
  Status OutputLive() { return method->OutputLive(engine.Context().get(), Bstr(folder.ReportFolder()).get(), nullptr); }

  /// What the observer heard last of a file; S_FALSE when it heard nothing.
  Status FileStatus(const std::string& name) const {
    Status status = S_FALSE;
    for (const ScriptedEngine::FileReport& file : engine.files) {
      if (file.path == folder.ReportFolder() + Wide(name)) status = file.status;
    }
    return status;
  }

  std::vector<std::string> FileLines(const std::string& name) const { return Lines(folder.Read(name)); }

  TemporaryFolder folder;
  ScriptedEngine engine;
  ComPtr<IStatsOutputMethod> method;
  ComPtr<IStatsOutputPrefs> preferences;
};

}  // namespace orvo::test
