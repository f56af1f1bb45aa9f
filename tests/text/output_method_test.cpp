// What the output method does around the files: arguments, snapshot, availability, gates.

#include <gmock/gmock.h>

#include "platform/lock.h"
#include "platform/object.h"
#include "platform/xml_interfaces.h"
#include "tests/text/text_report_fixture.h"
#include "util/persist_xml.h"

namespace orvo::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Preferences that fail for one switch, and count who holds them.
class FailingPreferences final : public Object<IStatsOutputPrefs> {
 public:
  Status GetPreference(std::uint32_t identifier, std::int32_t* value) override {
    if (identifier == failing) return E_OUTOFMEMORY;
    *value = identifier != kSwitchOutputProtocolStats && identifier != kSwitchOutputNodeDetails;
    return S_OK;
  }
  Status SetPreference(std::uint32_t /*identifier*/, std::int32_t /*value*/) override { return S_OK; }
  Status SetDefaults() override { return S_OK; }

  std::uint32_t failing = 4711;
};

class OutputMethodTest : public TextReportTest {
 protected:
  OutputMethodTest() {
    NodeEntry node;
    node.address = engine.live.AddIp(10, 0, 0, 1);
    engine.live.nodes.push_back(node);
  }
};

TEST_F(OutputMethodTest, ChecksTheFolderBeforeTheContext) {
  ComPtr<IStatsContext> context = engine.Context();
  Bstr path(folder.ReportFolder());
  EXPECT_EQ(method->Output(nullptr, nullptr, nullptr), E_FAIL);
  EXPECT_EQ(method->Output(Bstr(u"").get(), context.get(), nullptr), E_FAIL);
  EXPECT_EQ(method->Output(path.get(), nullptr, nullptr), E_POINTER);
  EXPECT_EQ(method->OutputLive(nullptr, nullptr, nullptr), E_FAIL);
  EXPECT_EQ(method->OutputLive(context.get(), nullptr, nullptr), E_FAIL);
  EXPECT_EQ(method->OutputLive(nullptr, path.get(), nullptr), E_POINTER);
  EXPECT_EQ(engine.availability_queries, 0) << "nothing is touched before the arguments are checked";
}

TEST_F(OutputMethodTest, AFailingSnapshotStepEndsTheReport) {
  for (const char* step : {"IStatsSnapshotSource::WriteStatistics", "create snapshot", "IPersistStream::Load",
                           "IStatsContext::GetAddressTable"}) {
    engine.Fail(step, 1, DISP_E_OVERFLOW);
    EXPECT_EQ(Output(), DISP_E_OVERFLOW) << step;
    EXPECT_THAT(folder.Names(), IsEmpty());
  }
  engine.offers_snapshots = false;
  EXPECT_EQ(Output(), E_NOINTERFACE);
  EXPECT_EQ(engine.availability_queries, 5) << "availability is asked for before anything can fail";
  EXPECT_THAT(folder.Names(), IsEmpty());
}

TEST_F(OutputMethodTest, WithoutStatisticsNothingIsWrittenThoughTheSnapshotIsTaken) {
  engine.availability = E_FAIL;
  EXPECT_EQ(Output(), S_OK);
  EXPECT_EQ(OutputLive(), S_OK);
  EXPECT_THAT(folder.Names(), IsEmpty());
  EXPECT_EQ(engine.marks.size(), 1U);
  engine.availability = S_FALSE;  // not a failure
  EXPECT_EQ(Output(), S_OK);
  EXPECT_TRUE(folder.Has("Node Statistics-IP.csv"));
}

TEST_F(OutputMethodTest, KeepsTheMarkBetweenSnapshotsUntilItIsReset) {
  Output();
  Output();
  EXPECT_EQ(method->ResetMark(), S_OK);
  Output();
  EXPECT_THAT(engine.marks, ElementsAre(0, Moment(), 0));
}

class FixedClock : public Clock {
 public:
  std::uint64_t Now() override { return Moment(3600); }
  std::unique_ptr<Event> CreateEvent() override { return nullptr; }
};

TEST_F(OutputMethodTest, LiveReportsTakeNoSnapshotAndCarryTheCurrentTime) {
  FixedClock clock;
  SetProcessClock(&clock);
  EXPECT_EQ(OutputLive(), S_OK);
  SetProcessClock(nullptr);
  EXPECT_THAT(engine.marks, IsEmpty());
  EXPECT_THAT(FileLines("Node Statistics-IP.csv").at(1), testing::StartsWith("11/22/2026 15:05:09,10.0.0.1"));
}

TEST_F(OutputMethodTest, AGateThatCannotBeReadEndsTheReportASwitchInsideASectionOnlyTheSection) {
  auto failing = MakeObject<FailingPreferences>();
  failing->failing = kSwitchOutputNodeStats;
  method->SetFormat(Bstr(u".csv").get(), Bstr(u",").get(), failing.get(), nullptr);
  EXPECT_EQ(Output(), E_OUTOFMEMORY);
  EXPECT_THAT(folder.Names(), ElementsAre("Summary Statistics.csv"));

  failing->failing = kSwitchNodeTypeIPv6;
  EXPECT_EQ(Output(), S_OK);
  EXPECT_THAT(folder.Names(),
              ElementsAre("Node Statistics-Hierarchy.csv", "Node Statistics-IP.csv", "Summary Statistics.csv"));
}

TEST_F(OutputMethodTest, HoldsThePreferencesOnce) {
  auto held = MakeObject<FailingPreferences>();
  auto references = [&] {
    held->AddRef();
    return held->Release();
  };
  for (int i = 0; i < 3; ++i) method->SetFormat(nullptr, nullptr, held.get(), nullptr);
  EXPECT_EQ(references(), 2U);
  method->SetFormat(nullptr, nullptr, preferences.get(), nullptr);
  EXPECT_EQ(references(), 1U);
}

TEST_F(OutputMethodTest, CreationFailsWithTheStatusOfWhatItLacks) {
  ComPtr<IStatsOutputMethod> made;
  for (const char* part : {"create address names", "create protocol names"}) {
    engine.Fail(part, 1, DISP_E_OVERFLOW);
    EXPECT_EQ(CreateCsvStatsOutput(IStatsOutputMethod::kIid, made.OutVoid()), DISP_E_OVERFLOW) << part;
    EXPECT_FALSE(made);
  }
  FailNextCriticalSection(E_OUTOFMEMORY);
  EXPECT_EQ(CreateCsvStatsOutput(IStatsOutputMethod::kIid, made.OutVoid()), E_OUTOFMEMORY);
}

TEST_F(OutputMethodTest, AnswersItsTwoInterfacesAndNoOther) {
  ComPtr<IPersistXml> persist;
  ASSERT_EQ(Query(method.get(), &persist), S_OK);
  Guid class_id;
  EXPECT_EQ(persist->GetClassID(nullptr), E_POINTER);
  EXPECT_EQ(persist->GetClassID(&class_id), S_OK);
  EXPECT_EQ(class_id, kCsvStatsOutputClass);
  ComPtr<IPersist> base;
  EXPECT_EQ(Query(method.get(), &base), E_NOINTERFACE);
  EXPECT_FALSE(base);
}

// With the name of its element, and the status of a text method for arguments that are missing.
TEST_F(OutputMethodTest, FindsItsSettings) {
  ComPtr<IPersistXml> persist;
  ASSERT_EQ(Query(method.get(), &persist), S_OK);
  ComPtr<IXmlDocument> document;
  ASSERT_EQ(CreateXmlDocument(document.Out()), S_OK);
  EXPECT_EQ(persist->Load(nullptr, document.get()), E_FAIL);
  EXPECT_EQ(persist->Save(document.get(), nullptr), E_FAIL);
  EXPECT_EQ(persist->Save(document.get(), document.get()), S_OK);
  EXPECT_EQ(persist->Load(document.get(), document.get()), S_FALSE);
  ASSERT_EQ(document->LoadText(u"<csvstatsoutput/>"), S_OK);
  EXPECT_EQ(persist->Load(document.get(), document.get()), S_OK);
}

}  // namespace
}  // namespace orvo::test
