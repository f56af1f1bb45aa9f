// What the output method does around its writers: index, kinds of reports, flags, failures.

#include <gmock/gmock.h>

#include <functional>

#include "platform/object.h"
#include "tests/xml/xml_report_fixture.h"

namespace orvo::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class XmlStatsOutputTest : public XmlReportTest {};

/// Preferences that remember what is read and changed, and fail for one switch.
class WatchedPreferences final : public Object<IStatsOutputPrefs> {
 public:
  Status GetPreference(std::uint32_t identifier, std::int32_t* value) override {
    read.push_back(identifier);
    if (identifier == failing) return DISP_E_OVERFLOW;
    *value = std::ranges::find(on, identifier) != on.end();
    return S_OK;
  }
  Status SetPreference(std::uint32_t identifier, std::int32_t value) override {
    changed.emplace_back(identifier, value);
    return S_OK;
  }
  Status SetDefaults() override { return S_OK; }

  std::vector<std::uint32_t> read;
  std::vector<std::uint32_t> on;
  std::vector<std::pair<std::uint32_t, std::int32_t>> changed;
  std::uint32_t failing = 4711;
};

TEST_F(XmlStatsOutputTest, TheFirstReportMakesAnIndexTheSecondExtendsIt) {
  SwitchOff({kSwitchOutputNodeStats, kSwitchOutputProtocolStats, kSwitchOutputGraphs});
  engine.live.missing = {kSummaryCategory.identifier};
  EXPECT_EQ(Reported().folder.Read("StatsReport.xml"), std::string(kDeclaration) + "<StatsReport>\n</StatsReport>\n");
  folder.Write("StatsReport.xml", "<StatsReport><Foreign/></StatsReport>");
  EXPECT_THAT(Reported().Sections(), ElementsAre("Foreign"));

  const std::string too_deep = [] {
    std::string text;
    for (int i = 0; i < 300; ++i) text += "<a>";
    for (int i = 0; i < 300; ++i) text += "</a>";
    return "<StatsReport>" + text + "</StatsReport>";
  }();
  for (const std::string& broken :
       {std::string("<StatsReport><Cut"), std::string(), too_deep, std::string("<Other><Foreign/></Other>"),
        std::string("<!DOCTYPE a [<!ENTITY b '&b;'>]><StatsReport>&b;</Stats>"), std::string("\xFF\xFE<\0S", 5)}) {
    folder.Write("StatsReport.xml", broken);
    EXPECT_THAT(Reported().Sections(), IsEmpty()) << broken.substr(0, 60);
  }
}

TEST_F(XmlStatsOutputTest, KindsAreReadInOneOrderAndWinInAnother) {
  auto watched = MakeObject<WatchedPreferences>();
  method->SetFormat(nullptr, nullptr, watched.get(), nullptr);
  engine.availability = E_FAIL;
  ASSERT_EQ(Output(), S_OK);
  EXPECT_THAT(watched->read, ElementsAre(121, 122, 126, 125)) << "before it is known that there is nothing to report";
  EXPECT_THAT(folder.Names(), IsEmpty());

  engine.availability = S_OK;
  const std::pair<std::uint32_t, std::size_t> kinds[] = {{126, 8}, {125, 5}, {121, 9}, {122, 0}};
  engine.live.medium_subtype = kSubtype80211a;
  for (const auto& [identifier, changes] : kinds) {
    watched->on.push_back(identifier);
    watched->changed.clear();
    ASSERT_EQ(Output(), S_OK);
    EXPECT_EQ(watched->changed.size(), changes) << identifier << " wins over those before it";
  }
  watched->on = {121};
  watched->changed.clear();
  ASSERT_EQ(Output(), S_OK);
  EXPECT_THAT(watched->changed,
              ElementsAre(std::pair(30, 0), std::pair(2, 0), std::pair(124, 0), std::pair(13, 1), std::pair(14, 0),
                          std::pair(15, 0), std::pair(16, 0), std::pair(17, 0), std::pair(18, 0)));

  watched->on = {};
  watched->failing = 125;
  EXPECT_EQ(Output(), DISP_E_OVERFLOW);
  watched->failing = kSwitchOutputNodeStats;
  EXPECT_EQ(Output(), DISP_E_OVERFLOW) << "the gate of the nodes is the report's own";
  watched->failing = kSwitchOutputProtocolStats;
  EXPECT_EQ(Output(), S_OK) << "that of the protocols is its writer's";
}

TEST_F(XmlStatsOutputTest, ASpecialReportEndsHistoriesAndKeptIndexes) {
  Switch(kSwitchOutputGraphs, 0);
  engine.live.protocols.push_back({.key = engine.live.AddProtocol(1)});
  Switch(kSwitchOutputConversationsOnly, 1);
  engine.availability = E_FAIL;
  ASSERT_EQ(Output(), S_OK);
  engine.availability = S_OK;
  Switch(kSwitchOutputConversationsOnly, 0);
  folder.Write("StatsReport.xml", "<StatsReport><Foreign/></StatsReport>");
  EXPECT_THAT(Reported().Sections(), testing::Not(testing::Contains("Foreign")));
  EXPECT_FALSE(folder.Has("ProtocolStatistics.xml"));
}

TEST_F(XmlStatsOutputTest, HalfAnAnswerIsEnoughForASnapshotOnly) {
  engine.availability = S_FALSE;
  EXPECT_EQ(OutputLive(), S_OK);
  EXPECT_THAT(folder.Names(), IsEmpty());
  EXPECT_EQ(Output(), S_OK);
  EXPECT_TRUE(folder.Has("StatsReport.xml"));
}

TEST_F(XmlStatsOutputTest, AFolderWithoutASeparatorIsAPrefix) {
  std::u16string path = folder.ReportFolder() + u"sub";
  Switch(kSwitchOutputGraphs, 0);
  EXPECT_EQ(method->Output(Bstr(path).get(), engine.Context().get(), nullptr), S_OK);
  EXPECT_TRUE(folder.Has("subStatsReport.xml"));
}

TEST_F(XmlStatsOutputTest, AnIndexThatCannotBeSavedEndsTheReport) {
  std::filesystem::create_directory(folder.Path("StatsReport.xml"));
  EXPECT_TRUE(Failed(Output()));
  EXPECT_TRUE(Failed(FileStatus("StatsReport.xml"))) << "which file it was is told";
}

/// A document in another encoding, of the same content.
std::string InUtf16(const std::string& utf8) {
  std::string wide("\xFF\xFE", 2);
  for (char c : utf8.substr(utf8.find('\n') + 1)) wide += std::string{c, '\0'};
  return wide;
}

TEST_F(XmlStatsOutputTest, DocumentsOfAnEarlierReportAreTakenUpOrBegunAnew) {
  engine.protocol_tree = {{1, {u"Ethernet", 0}}};
  engine.live.protocols.push_back({.key = engine.live.AddProtocol(1)});
  Switch(kSwitchOutputGraphs, 0);
  struct {
    const char* what;
    std::string (*bytes)(const std::string& good);
    std::size_t entries;  // afterwards
  } const cases[] = {
      {"as it was", [](const std::string& good) { return good; }, 2},
      {"another encoding", InUtf16, 2},
      {"on one line",
       [](const std::string& good) {
         std::string line = good;
         std::erase(line, '\n');
         return line;
       },
       2},
      {"cut off", [](const std::string& good) { return good.substr(0, good.size() / 2); }, 1},
      {"empty", [](const std::string&) { return std::string(); }, 1},
      {"too deep", [](const std::string&) { return std::string(100'000, '<') + "<a>"; }, 1},
      {"another root", [](const std::string&) { return std::string("<Other><History/></Other>"); }, 1},
      {"entities",
       [](const std::string&) {
         return std::string("<!DOCTYPE a [<!ENTITY b '&c;&c;'><!ENTITY c 'x'>]><ProtocolStatistics>&b;</Protocol>");
       },
       1},
      {"zeros", [](const std::string& good) { return std::string(good.size(), '\0'); }, 1},
  };
  for (const auto& one : cases) {
    NewMethod();
    SetTemplates({});
    for (const std::string& name : folder.Names()) std::filesystem::remove_all(folder.Path(name));
    ASSERT_EQ(Output(), S_OK);
    for (const char* file : {"StatsReport.xml", "ProtocolStatistics.xml", "MainMenu.htm"}) {
      folder.Write(file, one.bytes(folder.Read(file)));
    }
    ASSERT_EQ(Output(), S_OK) << one.what;
    EXPECT_EQ(Children("ProtocolStatistics.xml", {}).size(), one.entries) << one.what;
    EXPECT_THAT(Sections(), testing::Contains("ProtocolStatistics")) << one.what;
    EXPECT_THAT(Children("MainMenu.htm", {}), testing::Contains("img")) << one.what;
  }
}

/// Preferences of which reading one calls something first.
class PreferencesWithCall final : public Object<IStatsOutputPrefs> {
 public:
  PreferencesWithCall(IStatsOutputPrefs* real, std::uint32_t identifier, std::function<void()> call)
      : real_(real), identifier_(identifier), call_(std::move(call)) {}
  Status GetPreference(std::uint32_t identifier, std::int32_t* value) override {
    if (identifier == identifier_) call_();
    return real_->GetPreference(identifier, value);
  }
  Status SetPreference(std::uint32_t identifier, std::int32_t value) override {
    return real_->SetPreference(identifier, value);
  }
  Status SetDefaults() override { return real_->SetDefaults(); }

 private:
  IStatsOutputPrefs* real_;
  std::uint32_t identifier_;
  std::function<void()> call_;
};

TEST_F(XmlStatsOutputTest, AFolderThatIsLostOnTheWayKeepsWholeDocuments) {
  engine.protocol_tree = {{1, {u"Ethernet", 0}}};
  engine.live.protocols.push_back({.key = engine.live.AddProtocol(1)});
  ASSERT_EQ(Output(), S_OK);
  const std::string before = folder.Read("StatsReport.xml");
  // After the nodes and what belongs to them, and before the protocols and the index.
  const std::string moved = folder.Path() + "-moved";
  auto watched = MakeObject<PreferencesWithCall>(preferences.get(), kSwitchOutputProtocolStats, [&] {
    if (folder.Has("StatsReport.xml")) std::filesystem::rename(folder.Path(), moved);
  });
  EXPECT_EQ(method->SetFormat(nullptr, nullptr, watched.get(), nullptr), S_OK);
  EXPECT_TRUE(Failed(Output()));
  ASSERT_TRUE(std::filesystem::exists(moved));
  std::filesystem::remove_all(folder.Path());
  std::filesystem::rename(moved, folder.Path());
  EXPECT_EQ(folder.Read("StatsReport.xml"), before);
  for (const std::string& name : folder.Names()) {
    EXPECT_NE(name.front(), '.') << "nothing unfinished is left";
    if (!name.ends_with(".xml")) continue;
    XmlTree document;
    EXPECT_EQ(document.Load(PathFromSystem(folder.Path(name))), S_OK) << name;
  }
  EXPECT_EQ(Children("ProtocolStatistics.xml", {}).size(), 1U);
  EXPECT_EQ(Children("NodeStatistics.xml", {}).size(), 1U) << "was moved before";
}

TEST_F(XmlStatsOutputTest, NamesThatNoDocumentMayHoldAreShownWithMarksInTheirPlaces) {
  NodeEntry& node = engine.live.nodes.emplace_back();
  node.address = engine.live.AddIp(10, 0, 0, 1);
  engine.names[u"10.0.0.1"] = std::u16string(1, 0xD800) + std::u16string(1, 0) + u"\x1b]]>\uFFFE\n<&\"";
  Switch(kSwitchOutputGraphs, 0);
  for (int round = 0; round < 2; ++round) ASSERT_EQ(Output(), S_OK);
  for (const char* file : {"StatsReport.xml", "NodeStatistics.xml"}) {
    EXPECT_THAT(folder.Read(file), testing::HasSubstr("<Addr>\uFFFD\uFFFD\uFFFD]]&gt;\uFFFD&#10;&lt;&amp;\"</Addr>"));
  }
}

}  // namespace
}  // namespace orvo::test
