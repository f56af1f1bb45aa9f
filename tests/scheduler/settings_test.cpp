#include <gmock/gmock.h>

#include "prefs/stats_output_prefs.h"
#include "tests/scheduler/schedule_fixture.h"
#include "tests/support/ask.h"

namespace orvo::test {
namespace {

/// A new scheduler.
class SchedulerSettingsTest : public testing::Test {
 protected:
  SchedulerSettingsTest() {
    EXPECT_EQ(CreateSkryStatsOutput(ISkryStatsOutput::kIid, scheduler_.OutVoid()), S_OK);
    persist_ = SettingsDocument::PersistOf(scheduler_);
  }

  Status Load(const std::string& inside) const { return SettingsDocument(inside).LoadInto(scheduler_); }
  /// The element that it saves.
  std::string Saved() const {
    const SettingsDocument document;
    EXPECT_EQ(document.SaveFrom(scheduler_), S_OK);
    const std::string xml = document.Text();
    const std::size_t begin = xml.find("<statsoutput ");
    return begin == xml.npos ? xml : xml.substr(begin, xml.find('>', begin) + 1 - begin);
  }

  ComPtr<ISkryStatsOutput> scheduler_;
  ComPtr<IPersistXml> persist_;
};

constexpr char kFresh[] =
    R"(<statsoutput enabled="0" userPath="" reportPath="" outputInterval="1" outputIntervalUnit="3" alignOutput="1" )"
    R"(newSetEnabled="1" newSetInterval="1" newSetIntervalUnit="4" alignNewSet="1" keepEnabled="1" keep="7" )"
    R"(scheduled="0" notify="1" ResetOutput="0" outputType="0" />)";

// Every value differs from that of a new scheduler and from its neighbours.
constexpr char kOther[] =
    R"(<statsoutput enabled="1" userPath="U:\a" reportPath="b &amp; c" outputInterval="4294967295" )"
    R"(outputIntervalUnit="-2147483648" alignOutput="0" newSetEnabled="0" newSetInterval="3" newSetIntervalUnit="77" )"
    R"(alignNewSet="0" keepEnabled="0" keep="4000000000" scheduled="1" notify="0" ResetOutput="-5" outputType="4" />)";

TEST_F(SchedulerSettingsTest, AreSavedInOrderAndLoaded) {
  EXPECT_EQ(Saved(), kFresh);
  EXPECT_EQ(Load(kOther), S_OK);
  EXPECT_EQ(Saved(), kOther);
  EXPECT_EQ(Load(kFresh), S_OK);
  EXPECT_EQ(Saved(), kFresh);
}

TEST_F(SchedulerSettingsTest, LoadWhatIsThere) {
  const struct {
    const char* inside;
    Status status;
    const char* changed;  // of a new scheduler
    const char* into;
  } cases[] = {
      {"", S_FALSE, "", ""},
      {"<other><statsoutput enabled='1'/></other>", S_FALSE, "", ""},
      {"<statsoutput/>", S_OK, "", ""},
      {"<statsoutput enabled='5'/>", S_OK, R"(enabled="0")", R"(enabled="1")"},
      {"<statsoutput userPath='D:\\x'/>", S_OK, R"(userPath="")", R"(userPath="D:\x")"},
      {"<statsoutput notify='0' outputType='yes' ResetOutput='3'/>", DISP_E_TYPEMISMATCH,
       R"(notify="1" ResetOutput="0")", R"(notify="0" ResetOutput="3")"},
      {"<statsoutput keep='-1' enabled='1' notify='0'/>", DISP_E_OVERFLOW, R"(enabled="0")", R"(enabled="1")"},
      {"<statsoutput outputInterval='4294967296'/>", DISP_E_OVERFLOW, "", ""},
      {"<statsoutput enabled=''/>", DISP_E_TYPEMISMATCH, "", ""},
  };
  for (const auto& c : cases) {
    ASSERT_EQ(Load(kFresh), S_OK);
    EXPECT_EQ(Load(c.inside), c.status) << c.inside;
    std::string expected = kFresh;
    expected.replace(expected.find(c.changed), std::string_view(c.changed).size(), c.into);
    EXPECT_EQ(Saved(), expected) << c.inside;
  }
}

TEST_F(SchedulerSettingsTest, AskTheirArgumentsForTheirInterfaces) {
  const SettingsDocument settings;
  const std::tuple<IUnknown*, IUnknown*, Status> cases[] = {{nullptr, settings.node(), E_POINTER},
                                                            {settings.document(), nullptr, E_POINTER},
                                                            {settings.node(), settings.node(), E_NOINTERFACE},
                                                            {settings.document(), scheduler_.get(), E_NOINTERFACE}};
  for (const auto& [document, node, status] : cases) {
    EXPECT_EQ(persist_->Load(document, node), status);
    EXPECT_EQ(persist_->Save(document, node), status);
  }
}

TEST_F(SchedulerSettingsTest, AreReadAndWrittenOneByOne) {
  using Get = Status (ISkryStatsOutput::*)(std::int32_t*);
  using Set = Status (ISkryStatsOutput::*)(std::int32_t);
  const std::vector<std::pair<std::int32_t, std::int32_t>> is_switch = {{0, 0}, {-3, 1}, {0, 0}, {256, 1}};
  const struct {
    const char* attribute;
    Get get;
    Set set;
    std::vector<std::pair<std::int32_t, std::int32_t>> values;  // given and stored
  } cases[] = {
      {"enabled", &ISkryStatsOutput::GetEnabled, &ISkryStatsOutput::SetEnabled, is_switch},
      {"notify", &ISkryStatsOutput::GetNotify, &ISkryStatsOutput::SetNotify, is_switch},
      {"alignOutput", &ISkryStatsOutput::GetAlignOutput, &ISkryStatsOutput::SetAlignOutput, is_switch},
      {"newSetEnabled", &ISkryStatsOutput::GetNewSetEnabled, &ISkryStatsOutput::SetNewSetEnabled, is_switch},
      {"scheduled", &ISkryStatsOutput::GetScheduled, &ISkryStatsOutput::SetScheduled, is_switch},
      {"alignNewSet", &ISkryStatsOutput::GetAlignNewSet, &ISkryStatsOutput::SetAlignNewSet, is_switch},
      {"keepEnabled", &ISkryStatsOutput::GetKeepEnabled, &ISkryStatsOutput::SetKeepEnabled, is_switch},
      {"ResetOutput", &ISkryStatsOutput::GetResetOutput, &ISkryStatsOutput::SetResetOutput, {{-7, -7}}},
      {"outputType", &ISkryStatsOutput::GetOutputType, &ISkryStatsOutput::SetOutputType, {{99, 99}}},
  };
  ISkryStatsOutput* scheduler = scheduler_.get();
  for (const auto& c : cases) {
    for (const auto& [given, stored] : c.values) {
      EXPECT_EQ((scheduler->*c.set)(given), S_OK);
      EXPECT_EQ(Ask(scheduler_)(c.get), stored) << c.attribute;
      EXPECT_THAT(Saved(), testing::HasSubstr(std::string(" ") + c.attribute + "=\"" + std::to_string(stored) + "\""));
    }
    EXPECT_EQ((scheduler->*c.get)(nullptr), E_POINTER) << c.attribute;
  }
  std::uint32_t number = 0;
  std::int32_t unit = 0;
  EXPECT_EQ(scheduler->SetKeep(0xFFFFFFFF), S_OK);
  EXPECT_EQ(Ask(scheduler_)(&ISkryStatsOutput::GetKeep), 0xFFFFFFFFU);
  EXPECT_EQ(scheduler->GetKeep(nullptr), E_POINTER);
  EXPECT_EQ(scheduler->SetOutputInterval(0, 9), S_OK);
  EXPECT_EQ(scheduler->SetNewSetInterval(8, -9), S_OK);
  EXPECT_EQ(scheduler->GetOutputInterval(&number, &unit), S_OK);
  EXPECT_TRUE(number == 0 && unit == 9);
  EXPECT_EQ(scheduler->GetNewSetInterval(&number, &unit), S_OK);
  EXPECT_TRUE(number == 8 && unit == -9);
  for (auto get : {&ISkryStatsOutput::GetOutputInterval, &ISkryStatsOutput::GetNewSetInterval}) {
    EXPECT_EQ((scheduler->*get)(nullptr, &unit), E_POINTER);
    EXPECT_EQ((scheduler->*get)(&number, nullptr), E_POINTER);
  }
}

TEST_F(SchedulerSettingsTest, TextsAreCopied) {
  const struct {
    Status (ISkryStatsOutput::*get)(BSTR*);
    Status (ISkryStatsOutput::*set)(BSTR);
    std::vector<std::pair<const char16_t*, const char16_t*>> texts;  // given and stored
  } cases[] = {
      {&ISkryStatsOutput::GetUserPath,
       &ISkryStatsOutput::SetUserPath,
       {{u"D:\\x", u"D:\\x\\"}, {u"D:\\x\\", u"D:\\x\\"}, {u"", u""}}},
      {&ISkryStatsOutput::GetReportPath, &ISkryStatsOutput::SetReportPath, {{u"x", u"x"}, {u"", u""}}},
      {&ISkryStatsOutput::GetTemplateRoot, &ISkryStatsOutput::SetTemplateRoot, {{u"T:\\", u"T:\\"}, {u"", u""}}},
  };
  for (const auto& c : cases) {
    Bstr text;
    for (const auto& [given, stored] : c.texts) {
      EXPECT_EQ((scheduler_.get()->*c.set)(Bstr(given).get()), S_OK);
      EXPECT_EQ((scheduler_.get()->*c.get)(text.Out()), S_OK);
      EXPECT_TRUE(text.get() && text.view() == stored) << ToUtf8(given);
      FailStringAllocation(0);
      BSTR none = nullptr;
      EXPECT_EQ((scheduler_.get()->*c.get)(&none), E_OUTOFMEMORY);
    }
    EXPECT_EQ((scheduler_.get()->*c.get)(nullptr), E_POINTER);
    // No text is an empty one, except for the template root, which is then absent.
    EXPECT_EQ((scheduler_.get()->*c.set)(nullptr), S_OK);
    EXPECT_EQ((scheduler_.get()->*c.get)(text.Out()), S_OK);
    EXPECT_EQ(StringLength(text.get()), 0U);
  }
  Bstr root(u"T:\\");
  scheduler_->SetTemplateRoot(root.get());
  FailStringAllocation(0);
  EXPECT_EQ(scheduler_->SetTemplateRoot(root.get()), E_OUTOFMEMORY);
  BSTR text = root.get();
  EXPECT_EQ(scheduler_->GetTemplateRoot(&text), S_OK);
  EXPECT_EQ(text, nullptr);
}

TEST_F(SchedulerSettingsTest, ObjectsAreHeldOrBorrowed) {
  Surroundings surroundings(0);
  const auto references = [](auto& object) {
    object->AddRef();
    return object->Release();
  };
  auto method = MakeObject<NotingMethod>(&surroundings);
  auto context = MakeObject<NotingContext>(&surroundings);
  auto sink = MakeObject<NotingSink>(&surroundings);
  ComPtr<IStatsOutputPrefs> preferences;
  ASSERT_EQ(CreateStatsOutputPrefs(IStatsOutputPrefs::kIid, preferences.OutVoid()), S_OK);
  for (int turn = 0; turn < 2; ++turn) {
    scheduler_->SetOutputMethod(method.get());
    scheduler_->SetPrefs(preferences.get());
    scheduler_->SetContext(context.get());
    scheduler_->SetNotifySink(sink.get(), kTestNotification);
  }
  EXPECT_EQ(references(method), 2U);
  EXPECT_EQ(references(preferences), 2U);
  EXPECT_EQ(references(context), 1U);
  EXPECT_EQ(references(sink), 1U);
  const auto ask = Ask(scheduler_);
  EXPECT_EQ(ask(&ISkryStatsOutput::GetOutputMethod).get(), method.get());
  EXPECT_EQ(ask(&ISkryStatsOutput::GetPrefs).get(), preferences.get());
  EXPECT_FALSE(ask(&ISkryStatsOutput::GetGraphs));
  {
    const ComPtr<IStatsContext> got = ask(&ISkryStatsOutput::GetContext);
    EXPECT_EQ(got.get(), context.get());
    EXPECT_EQ(references(context), 2U) << "what a getter hands out carries a reference";
    ComPtr<INotificationSink> got_sink;
    Guid identifier;
    EXPECT_EQ(scheduler_->GetNotifySink(got_sink.Out(), &identifier), S_OK);
    EXPECT_TRUE(got_sink.get() == sink.get() && identifier == kTestNotification);
    EXPECT_EQ(scheduler_->GetNotifySink(nullptr, &identifier), E_POINTER);
    EXPECT_EQ(scheduler_->GetNotifySink(got_sink.Out(), nullptr), E_POINTER);
  }
  EXPECT_EQ(scheduler_->GetOutputMethod(nullptr), E_POINTER);
  EXPECT_EQ(scheduler_->GetPrefs(nullptr), E_POINTER);
  EXPECT_EQ(scheduler_->GetContext(nullptr), E_POINTER);
  EXPECT_EQ(scheduler_->GetGraphs(nullptr), E_POINTER);
  scheduler_->SetContext(nullptr);
  EXPECT_FALSE(ask(&ISkryStatsOutput::GetContext));
  persist_.Reset();
  scheduler_.Reset();
  EXPECT_EQ(references(method), 1U);
  EXPECT_EQ(references(preferences), 1U);
}

TEST_F(SchedulerSettingsTest, TheSchedulerAnswersItsInterfaces) {
  ComPtr<IStartable> startable;
  ComPtr<IPersist> persist;
  ComPtr<IPersistStream> stream;
  EXPECT_EQ(Query(scheduler_.get(), &startable), S_OK);
  EXPECT_EQ(Query(scheduler_.get(), &persist), S_OK);
  EXPECT_EQ(persist.get(), persist_.get());
  EXPECT_EQ(Query(scheduler_.get(), &stream), E_NOINTERFACE);
  EXPECT_EQ(Ask(persist)(&IPersist::GetClassID), kSkryStatsOutputClass);
  EXPECT_EQ(persist_->GetClassID(nullptr), E_POINTER);
}

}  // namespace
}  // namespace orvo::test
