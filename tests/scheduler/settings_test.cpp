#include <gmock/gmock.h>

#include "prefs/stats_output_prefs.h"
#include "tests/scheduler/schedule_fixture.h"

namespace orvo::test {
namespace {

/// A new scheduler, and a document with an element <settings> to load it from and save it into.
class SchedulerSettingsTest : public testing::Test {
 protected:
  SchedulerSettingsTest() {
    EXPECT_EQ(CreateSkryStatsOutput(ISkryStatsOutput::kIid, scheduler_.OutVoid()), S_OK);
    EXPECT_EQ(Query(scheduler_.get(), &persist_), S_OK);
    Document({});
  }

  void Document(const std::string& inside) {
    ASSERT_EQ(CreateXmlDocument(document_.Out()), S_OK);
    ASSERT_EQ(document_->LoadText(FromUtf8("<settings>" + inside + "</settings>").c_str()), S_OK);
    ASSERT_EQ(document_->SelectSingleNode(u"settings", node_.Out()), S_OK);
  }

  Status Load(const std::string& inside) {
    Document(inside);
    return persist_->Load(document_.get(), node_.get());
  }

  /// The element that it saves.
  std::string Saved() {
    Document({});
    EXPECT_EQ(persist_->Save(document_.get(), node_.get()), S_OK);
    Bstr text;
    EXPECT_EQ(document_->GetText(text.Out()), S_OK);
    const std::string xml = ToUtf8(text.view());
    const std::size_t begin = xml.find("<statsoutput ");
    return begin == xml.npos ? xml : xml.substr(begin, xml.find('>', begin) + 1 - begin);
  }

  ComPtr<ISkryStatsOutput> scheduler_;
  ComPtr<IPersistXml> persist_;
  ComPtr<IXmlDocument> document_;
  ComPtr<IXmlNode> node_;
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
  EXPECT_EQ(persist_->Load(nullptr, node_.get()), E_POINTER);
  EXPECT_EQ(persist_->Load(document_.get(), nullptr), E_POINTER);
  EXPECT_EQ(persist_->Save(nullptr, node_.get()), E_POINTER);
  EXPECT_EQ(persist_->Save(document_.get(), nullptr), E_POINTER);
  EXPECT_EQ(persist_->Load(node_.get(), node_.get()), E_NOINTERFACE);
  EXPECT_EQ(persist_->Save(document_.get(), scheduler_.get()), E_NOINTERFACE);
}

TEST_F(SchedulerSettingsTest, AreReadAndWrittenOneByOne) {
  const struct {
    const char* attribute;
    Status (ISkryStatsOutput::*get)(std::int32_t*);
    Status (ISkryStatsOutput::*set)(std::int32_t);
  } switches[] = {
      {"enabled", &ISkryStatsOutput::GetEnabled, &ISkryStatsOutput::SetEnabled},
      {"notify", &ISkryStatsOutput::GetNotify, &ISkryStatsOutput::SetNotify},
      {"alignOutput", &ISkryStatsOutput::GetAlignOutput, &ISkryStatsOutput::SetAlignOutput},
      {"newSetEnabled", &ISkryStatsOutput::GetNewSetEnabled, &ISkryStatsOutput::SetNewSetEnabled},
      {"scheduled", &ISkryStatsOutput::GetScheduled, &ISkryStatsOutput::SetScheduled},
      {"alignNewSet", &ISkryStatsOutput::GetAlignNewSet, &ISkryStatsOutput::SetAlignNewSet},
      {"keepEnabled", &ISkryStatsOutput::GetKeepEnabled, &ISkryStatsOutput::SetKeepEnabled},
  };
  ISkryStatsOutput* scheduler = scheduler_.get();
  std::int32_t value = 0;
  for (const auto& s : switches) {
    for (const auto& [given, stored] : {std::pair(0, 0), std::pair(-3, 1), std::pair(0, 0), std::pair(256, 1)}) {
      EXPECT_EQ((scheduler->*s.set)(given), S_OK);
      EXPECT_EQ((scheduler->*s.get)(&value), S_OK);
      EXPECT_EQ(value, stored) << s.attribute;
      EXPECT_THAT(Saved(), testing::HasSubstr(std::string(" ") + s.attribute + "=\"" + std::to_string(stored) + "\""));
    }
    EXPECT_EQ((scheduler->*s.get)(nullptr), E_POINTER);
  }
  std::uint32_t number = 0;
  EXPECT_EQ(scheduler->SetKeep(0xFFFFFFFF), S_OK);
  EXPECT_EQ(scheduler->GetKeep(&number), S_OK);
  EXPECT_EQ(number, 0xFFFFFFFFU);
  EXPECT_EQ(scheduler->SetResetOutput(-7), S_OK);
  EXPECT_EQ(scheduler->GetResetOutput(&value), S_OK);
  EXPECT_EQ(value, -7);
  EXPECT_EQ(scheduler->SetOutputType(99), S_OK);
  EXPECT_EQ(scheduler->GetOutputType(&value), S_OK);
  EXPECT_EQ(value, 99);
  EXPECT_EQ(scheduler->SetOutputInterval(0, 9), S_OK);
  EXPECT_EQ(scheduler->SetNewSetInterval(8, -9), S_OK);
  EXPECT_EQ(scheduler->GetOutputInterval(&number, &value), S_OK);
  EXPECT_TRUE(number == 0 && value == 9);
  EXPECT_EQ(scheduler->GetNewSetInterval(&number, &value), S_OK);
  EXPECT_TRUE(number == 8 && value == -9);
  for (Status status :
       {scheduler->GetKeep(nullptr), scheduler->GetResetOutput(nullptr), scheduler->GetOutputType(nullptr),
        scheduler->GetOutputInterval(nullptr, &value), scheduler->GetOutputInterval(&number, nullptr),
        scheduler->GetNewSetInterval(nullptr, &value), scheduler->GetNewSetInterval(&number, nullptr)}) {
    EXPECT_EQ(status, E_POINTER);
  }
}

TEST_F(SchedulerSettingsTest, TextsAreCopied) {
  const struct {
    Status (ISkryStatsOutput::*get)(BSTR*);
    Status (ISkryStatsOutput::*set)(BSTR);
    const char16_t* given;
    const char16_t* stored;
  } cases[] = {
      {&ISkryStatsOutput::GetUserPath, &ISkryStatsOutput::SetUserPath, u"D:\\x", u"D:\\x\\"},
      {&ISkryStatsOutput::GetUserPath, &ISkryStatsOutput::SetUserPath, u"D:\\x\\", u"D:\\x\\"},
      {&ISkryStatsOutput::GetUserPath, &ISkryStatsOutput::SetUserPath, u"", u""},
      {&ISkryStatsOutput::GetReportPath, &ISkryStatsOutput::SetReportPath, u"x", u"x"},
      {&ISkryStatsOutput::GetReportPath, &ISkryStatsOutput::SetReportPath, u"", u""},
      {&ISkryStatsOutput::GetTemplateRoot, &ISkryStatsOutput::SetTemplateRoot, u"T:\\", u"T:\\"},
      {&ISkryStatsOutput::GetTemplateRoot, &ISkryStatsOutput::SetTemplateRoot, u"", u""},
  };
  for (const auto& c : cases) {
    EXPECT_EQ((scheduler_.get()->*c.set)(Bstr(c.given).get()), S_OK);
    Bstr text;
    EXPECT_EQ((scheduler_.get()->*c.get)(text.Out()), S_OK);
    EXPECT_TRUE(text.get() && text.view() == c.stored);
    FailStringAllocation(0);
    BSTR none = nullptr;
    EXPECT_EQ((scheduler_.get()->*c.get)(&none), E_OUTOFMEMORY);
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
  {
    ComPtr<IStatsOutputMethod> got_method;
    ComPtr<IStatsOutputPrefs> got_preferences;
    ComPtr<IStatsContext> got_context;
    ComPtr<INotificationSink> got_sink;
    ComPtr<IGraphCollection> got_graphs;
    Guid identifier;
    EXPECT_EQ(scheduler_->GetOutputMethod(got_method.Out()), S_OK);
    EXPECT_EQ(scheduler_->GetPrefs(got_preferences.Out()), S_OK);
    EXPECT_EQ(scheduler_->GetContext(got_context.Out()), S_OK);
    EXPECT_EQ(scheduler_->GetNotifySink(got_sink.Out(), &identifier), S_OK);
    EXPECT_EQ(scheduler_->GetGraphs(got_graphs.Out()), S_OK);
    EXPECT_TRUE(got_method.get() == method.get() && got_preferences.get() == preferences.get());
    EXPECT_TRUE(got_context.get() == context.get() && got_sink.get() == sink.get() && !got_graphs);
    EXPECT_EQ(identifier, kTestNotification);
    EXPECT_EQ(references(context), 2U) << "what a getter hands out carries a reference";
    EXPECT_EQ(scheduler_->GetNotifySink(nullptr, &identifier), E_POINTER);
    EXPECT_EQ(scheduler_->GetNotifySink(got_sink.Out(), nullptr), E_POINTER);
  }
  EXPECT_EQ(scheduler_->GetOutputMethod(nullptr), E_POINTER);
  EXPECT_EQ(scheduler_->GetPrefs(nullptr), E_POINTER);
  EXPECT_EQ(scheduler_->GetContext(nullptr), E_POINTER);
  EXPECT_EQ(scheduler_->GetGraphs(nullptr), E_POINTER);
  scheduler_->SetContext(nullptr);
  ComPtr<IStatsContext> none(context.get());
  EXPECT_EQ(scheduler_->GetContext(none.Out()), S_OK);
  EXPECT_FALSE(none);
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
  Guid class_id;
  EXPECT_EQ(persist_->GetClassID(&class_id), S_OK);
  EXPECT_EQ(class_id, kSkryStatsOutputClass);
  EXPECT_EQ(persist_->GetClassID(nullptr), E_POINTER);
}

}  // namespace
}  // namespace orvo::test
