#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <source_location>
#include <string>

#include "frame/stats_output_method.h"
#include "platform/clock.h"
#include "prefs/stats_output_prefs.h"
#include "prefs/switch_ids.h"
#include "tests/support/scripted_engine.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/text.h"

namespace orvo::test {

/// 2026-11-22 14:05:09 UTC, and so many seconds later.
inline std::uint64_t Moment(std::int64_t seconds = 0) {
  return TimeFromUnix((1'795'356'309 + seconds) * 1'000'000'000);
}

/// A report from a scripted engine into a folder of its own.
class ReportTest : public testing::Test {
 protected:
  explicit ReportTest(Status (*create)(const Guid& iid, void** out)) : create_(create) {
    engine.snapshot_time = Moment();
    NewMethod();
    EXPECT_EQ(CreateStatsOutputPrefs(IStatsOutputPrefs::kIid, preferences.OutVoid()), S_OK);
  }

 public:
  void NewMethod() { EXPECT_EQ(create_(IStatsOutputMethod::kIid, method.OutVoid()), S_OK); }

  void Switch(std::uint32_t identifier, std::int32_t value) { preferences->SetPreference(identifier, value); }
  void SwitchOff(std::initializer_list<std::uint32_t> identifiers) {
    for (std::uint32_t identifier : identifiers) Switch(identifier, 0);
  }

  Status Output(IGraphCollection* graphs = nullptr) {
    return method->Output(Bstr(folder.ReportFolder()).get(), engine.Context().get(), graphs);
  }
  Status OutputLive(IGraphCollection* graphs = nullptr) {
    return method->OutputLive(engine.Context().get(), Bstr(folder.ReportFolder()).get(), graphs);
  }

  void ExpectReport(const std::source_location& place) {
    const Status status = Output();
    if (status != S_OK) ADD_FAILURE_AT(place.file_name(), static_cast<int>(place.line())) << "the report: " << status;
  }

  /// What the observer heard last of a file; S_FALSE when it heard nothing.
  Status FileStatus(const std::string& name) const {
    Status status = S_FALSE;
    for (const ScriptedEngine::FileReport& file : engine.files) {
      if (file.path == folder.ReportFolder() + Wide(name)) status = file.status;
    }
    return status;
  }

  TemporaryFolder folder;
  ScriptedEngine engine;
  ComPtr<IStatsOutputMethod> method;
  ComPtr<IStatsOutputPrefs> preferences;

 private:
  Status (*create_)(const Guid& iid, void** out);
};

}  // namespace orvo::test
