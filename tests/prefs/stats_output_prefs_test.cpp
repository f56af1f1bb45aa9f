#include "prefs/stats_output_prefs.h"

#include <gtest/gtest.h>

#include <set>
#include <thread>
#include <vector>

#include "platform/lock.h"
#include "tests/support/ask.h"
#include "tests/support/settings_document.h"

namespace orvo {
namespace {

using Settings = test::SettingsDocument;

ComPtr<IStatsOutputPrefs> MakePreferences() {
  ComPtr<IStatsOutputPrefs> preferences;
  EXPECT_EQ(CreateStatsOutputPrefs(IStatsOutputPrefs::kIid, preferences.OutVoid()), S_OK);
  return preferences;
}

std::int32_t Read(IStatsOutputPrefs* preferences, std::uint32_t identifier) {
  std::int32_t value = -77;
  EXPECT_EQ(preferences->GetPreference(identifier, &value), S_OK);
  return value;
}

TEST(SwitchTable, NamesAndExplainsEverySwitch) {
  std::set<std::string_view> names;
  for (const Switch& entry : kSwitches) {
    EXPECT_TRUE(names.insert(entry.name).second) << entry.name;
    EXPECT_TRUE(entry.explanation.size() > 10 && entry.explanation.ends_with('.')) << entry.name;
    bool is_special_report =
        entry.identifier == 121 || entry.identifier == 122 || entry.identifier == 125 || entry.identifier == 126;
    EXPECT_EQ(entry.default_value, is_special_report ? 0 : 1) << entry.name;
  }
  const struct {
    std::size_t place;
    std::uint32_t identifier;
    const char* group;
    const char* name;
  } cases[] = {
      {0, 0, "NodeStats", "OutputNodeStats"},
      {18, 18, "NodeStats", "NodeTypeIPX"},
      {19, 19, "ProtocolStats", "OutputProtocolStats"},
      {22, 22, "SummaryStats", "SumPackets"},
      {28, 28, "ExpertStats", "OutputExpertStats"},
      {31, 31, "WLANStats", "OutputWLANStats"},
      {47, 48, "WLANStats", "WLANMinSizeReceived"},
      {48, 47, "WLANStats", "WLANMaxSizeReceived"},
      {75, 75, "WLANStats", "WLANTrust"},
      {76, 76, "WChannelsStats", "OutputWChannelsStats"},
      {92, 92, "WChannelsStats", "WChannelDS2DSBytes"},
      {117, 117, "WirelessDataRates", "OutputDataRates"},
      {120, 120, "Graphs", "OutputGraphs"},
      {121, 121, "AdditionalReports", "OutputAdditionalNode"},
      {123, 125, "AdditionalReports", "OutputExpertSummary"},
      {125, 124, "AdditionalReports", "OutputVoIPOnly"},
  };
  for (const auto& c : cases) {
    const Switch& entry = kSwitches.at(c.place);
    EXPECT_EQ(entry.identifier, c.identifier);
    EXPECT_EQ(entry.name, c.name);
    EXPECT_EQ(kSwitchGroupElements.at(static_cast<std::size_t>(entry.group)), c.group);
  }
}

TEST(StatsOutputPrefs, KeepsValuesUnchanged) {
  auto preferences = MakePreferences();
  for (std::int32_t value : {7, 0, -1, INT32_MIN, INT32_MAX}) {
    EXPECT_EQ(preferences->SetPreference(5, value), S_OK);
    EXPECT_EQ(Read(preferences.get(), 5), value);
    EXPECT_EQ(Read(preferences.get(), 4), 1);
  }
  for (const Switch& entry : kSwitches) preferences->SetPreference(entry.identifier, 42);
  EXPECT_EQ(preferences->SetDefaults(), S_OK);
  for (const Switch& entry : kSwitches) EXPECT_EQ(Read(preferences.get(), entry.identifier), entry.default_value);
  EXPECT_EQ(preferences->GetPreference(0, nullptr), E_POINTER);
}

TEST(StatsOutputPrefs, IgnoresSwitchesThatDoNotExist) {
  auto preferences = MakePreferences();
  for (std::uint32_t identifier : {123U, 127U, 128U, 0x80000000U, 0xFFFFFFFFU}) {
    EXPECT_EQ(preferences->SetPreference(identifier, 5), S_OK);
    EXPECT_EQ(Read(preferences.get(), identifier), -77) << "the caller's value stays";
  }
  EXPECT_EQ(Read(preferences.get(), 122), 0);
  EXPECT_EQ(Read(preferences.get(), 126), 0);
}

TEST(StatsOutputPrefs, AnswersItsInterfaces) {
  auto preferences = MakePreferences();
  ComPtr<IPersistXml> persist_xml = Settings::PersistOf(preferences);
  ComPtr<IPersist> persist;
  EXPECT_EQ(Query(preferences.get(), &persist), S_OK);
  EXPECT_EQ(persist.get(), persist_xml.get());
  ComPtr<IPersistStream> stream;
  EXPECT_EQ(Query(preferences.get(), &stream), E_NOINTERFACE);
  EXPECT_FALSE(stream);

  EXPECT_EQ(test::Ask(persist)(&IPersist::GetClassID), kStatsOutputPrefsClass);
  EXPECT_EQ(persist->GetClassID(nullptr), E_POINTER);
}

TEST(StatsOutputPrefs, IsNotMadeWithoutItsLock) {
  std::uint32_t objects = ModuleReference::Count();
  void* out = &objects;
  FailNextCriticalSection(E_FAIL);
  EXPECT_EQ(CreateStatsOutputPrefs(IStatsOutputPrefs::kIid, &out), E_FAIL);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(CreateStatsOutputPrefs(IPersistStream::kIid, &out), E_NOINTERFACE);
  EXPECT_EQ(out, nullptr);
  EXPECT_EQ(CreateStatsOutputPrefs(IStatsOutputPrefs::kIid, nullptr), E_POINTER);
  EXPECT_EQ(ModuleReference::Count(), objects) << "a failed creation leaves nothing behind";
  auto preferences = MakePreferences();
  EXPECT_EQ(ModuleReference::Count(), objects + 1);
}

TEST(StatsOutputPrefs, SavesAndLoadsEverySwitch) {
  auto saved = MakePreferences();
  for (const Switch& entry : kSwitches) {
    saved->SetPreference(entry.identifier, static_cast<std::int32_t>(entry.identifier) * 1000 - 60000);
  }
  Settings settings;
  EXPECT_EQ(settings.SaveFrom(saved), S_OK);
  auto loaded = MakePreferences();
  EXPECT_EQ(settings.LoadInto(loaded), S_OK);
  for (const Switch& entry : kSwitches) {
    EXPECT_EQ(Read(loaded.get(), entry.identifier), Read(saved.get(), entry.identifier)) << entry.name;
  }
}

TEST(StatsOutputPrefs, SavesInTheOrderOfItsTable) {
  auto preferences = MakePreferences();
  preferences->SetPreference(5, 7);
  preferences->SetPreference(20, -2);
  Settings settings("<before/>");
  ASSERT_EQ(settings.SaveFrom(preferences), S_OK);
  std::string text = settings.Text();
  std::size_t at = text.find("<before");
  auto follows = [&](const std::string& piece) {
    std::size_t found = text.find(piece, at);
    EXPECT_NE(found, text.npos) << piece << " does not follow in\n" << text;
    if (found != text.npos) at = found + piece.size();
  };
  follows("<StatsOutputPrefs>");
  for (std::size_t group = 0; group < kSwitchGroupElements.size(); ++group) {
    follows("<" + std::string(kSwitchGroupElements[group]));
    for (const Switch& entry : kSwitches) {
      if (static_cast<std::size_t>(entry.group) != group) continue;
      int value = entry.identifier == 5 ? 7 : entry.identifier == 20 ? -2 : entry.default_value;
      follows(" " + std::string(entry.name) + "=\"" + std::to_string(value) + "\"");
    }
  }
  follows("</StatsOutputPrefs>");
}

TEST(StatsOutputPrefs, LoadsWhatIsThere) {
  const struct {
    const char* what;
    const char* inside;
    Status status;
    std::vector<std::pair<std::uint32_t, std::int32_t>> values;
  } cases[] = {
      {"no element", "<other/>", S_FALSE, {{0, 9}, {5, 9}, {121, 9}}},
      {"an element of another's",
       "<other><StatsOutputPrefs><NodeStats OutputNodeStats='0'/></StatsOutputPrefs></other>",
       S_FALSE,
       {{0, 9}, {121, 9}}},
      {"an empty element", "<StatsOutputPrefs/>", S_FALSE, {{0, 9}, {121, 0}, {122, 9}, {124, 9}}},
      {"older documents",
       "<StatsOutputPrefs><NodeStats OutputNodeStats='0' NodeFirstTime='-5'/><Graphs OutputGraphs='3'/>"
       "</StatsOutputPrefs>",
       S_FALSE,
       {{0, 0}, {5, -5}, {6, 9}, {19, 9}, {120, 3}, {121, 0}, {122, 9}, {124, 9}, {125, 9}, {126, 9}}},
      {"one group and the last",
       "<StatsOutputPrefs><AdditionalReports OutputVoIPOnly='0'/></StatsOutputPrefs>",
       S_OK,
       {{0, 9}, {121, 9}, {124, 0}}},
      {"a switch in the wrong group",
       "<StatsOutputPrefs><Graphs OutputNodeStats='0'/><AdditionalReports/></StatsOutputPrefs>",
       S_OK,
       {{0, 9}}},
      {"the first of two elements",
       "<StatsOutputPrefs><AdditionalReports OutputVoIPOnly='1'/></StatsOutputPrefs>"
       "<StatsOutputPrefs><AdditionalReports OutputVoIPOnly='2'/></StatsOutputPrefs>",
       S_OK,
       {{124, 1}}},
      {"no number",
       "<StatsOutputPrefs><NodeStats OutputNodeStats='0' OutputNodeDetails='yes' OutputNodeHierarchy='0'/>"
       "<ProtocolStats OutputProtocolStats='0'/></StatsOutputPrefs>",
       DISP_E_TYPEMISMATCH,
       {{0, 0}, {1, 9}, {2, 9}, {19, 9}, {121, 9}}},
      {"an empty value",
       "<StatsOutputPrefs><NodeStats OutputNodeStats=''/></StatsOutputPrefs>",
       DISP_E_TYPEMISMATCH,
       {{0, 9}}},
      {"too large a number",
       "<StatsOutputPrefs><AdditionalReports OutputConversationsOnly='2147483648'/></StatsOutputPrefs>",
       DISP_E_OVERFLOW,
       {{122, 9}}},
      {"the ends of the range",
       "<StatsOutputPrefs><NodeStats OutputNodeStats='2147483647' OutputNodeDetails='-2147483648'/>"
       "<AdditionalReports/></StatsOutputPrefs>",
       S_OK,
       {{0, INT32_MAX}, {1, INT32_MIN}}},
  };
  for (const auto& c : cases) {
    auto preferences = MakePreferences();
    for (const Switch& entry : kSwitches) preferences->SetPreference(entry.identifier, 9);
    Settings settings(c.inside);
    EXPECT_EQ(settings.LoadInto(preferences), c.status) << c.what;
    for (auto [identifier, value] : c.values) {
      EXPECT_EQ(Read(preferences.get(), identifier), value) << c.what << ", switch " << identifier;
    }
  }
}

TEST(StatsOutputPrefs, AsksItsArgumentsForTheirInterfaces) {
  auto preferences = MakePreferences();
  ComPtr<IPersistXml> persist = Settings::PersistOf(preferences);
  Settings settings;
  IUnknown* document = settings.document();
  IUnknown* node = settings.node();
  IUnknown* stranger = preferences.get();
  const struct {
    IUnknown* document;
    IUnknown* node;
    Status status;
  } cases[] = {{nullptr, node, E_POINTER},      {document, nullptr, E_POINTER}, {nullptr, nullptr, E_POINTER},
               {stranger, node, E_NOINTERFACE}, {node, node, E_NOINTERFACE},    {document, stranger, E_NOINTERFACE}};
  std::string before = settings.Text();
  for (const auto& c : cases) {
    EXPECT_EQ(persist->Load(c.document, c.node), c.status);
    EXPECT_EQ(persist->Save(c.document, c.node), c.status);
  }
  EXPECT_EQ(settings.Text(), before);
}

TEST(StatsOutputPrefs, MayBeUsedByManyThreads) {
  auto preferences = MakePreferences();
  std::vector<std::thread> threads;
  for (std::int32_t own = 1; own <= 4; ++own) {
    threads.emplace_back([&preferences, own] {
      Settings settings;
      for (std::int32_t i = 0; i < 100; ++i) {
        preferences->SetPreference(10, own * 1000 + i);
        std::int32_t seen = Read(preferences.get(), 10) % 1000;
        EXPECT_TRUE(seen >= 0 && seen < 100) << "a value that nobody has written";
        if (i % 10 == 0) {
          EXPECT_EQ(settings.SaveFrom(preferences), S_OK);
        }
        if (i % 25 == 0) {
          EXPECT_EQ(settings.LoadInto(preferences), S_OK);
        }
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace orvo
