#include <gtest/gtest.h>

#include "capture/context/snapshot_format.h"
#include "capture/context/stats_snapshot.h"
#include "capture/context/summary_statistics.h"
#include "platform/clock.h"
#include "platform/error.h"
#include "tests/capture/engine_fixture.h"
#include "tests/capture/memory_stream.h"

namespace orvo::test {
namespace {

class SnapshotTest : public testing::Test {
 protected:
  SnapshotTest() {
    engine_.StoreSummary(u"st\u00f6red");
    FeedSmallCapture(&engine_);
  }

  /// The engine's statistics as bytes.
  std::string Take(std::uint64_t* mark = nullptr) {
    std::uint64_t time = 0;
    auto stream = MakeObject<MemoryStream>();
    stream->step = 1000;
    ComPtr<IStatsSnapshotSource> source;
    EXPECT_EQ(Query(engine_.Context().get(), &source), S_OK);
    EXPECT_EQ(source->WriteStatistics(stream.get(), mark ? mark : &time), S_OK);
    return stream->bytes;
  }

  static Status Load(const std::string& bytes, ComPtr<IUnknown>* snapshot) {
    *snapshot = MakeStatsSnapshot();
    ComPtr<IPersistStream> persist;
    EXPECT_EQ(Query(snapshot->get(), &persist), S_OK);
    auto stream = MakeObject<MemoryStream>();
    stream->bytes = bytes;
    stream->step = 700;
    return persist->Load(stream.get());
  }

  CaptureEngine engine_;
};

/// The totals and all of the summary, in words.
std::string Describe(IStatsContext* context) {
  std::string text;
  using Getter = Status (IStatsContext::*)(std::uint64_t*);
  for (Getter getter : {&IStatsContext::GetTotalPackets, &IStatsContext::GetTotalBytes, &IStatsContext::GetStartTime,
                        &IStatsContext::GetDuration}) {
    std::uint64_t total = 0;
    EXPECT_EQ((context->*getter)(&total), S_OK);
    text += std::to_string(total) + " ";
  }
  ComPtr<ISummaryStats> summary;
  std::uint32_t states = 0;
  EXPECT_EQ(GetCategory(context, kSummaryCategory, &summary), S_OK);
  EXPECT_EQ(summary->GetSnapshotCount(&states), S_OK);
  for (std::uint32_t i = 0; i < states; ++i) {
    ComPtr<ISummarySnapshot> state;
    std::u16string name;
    std::uint32_t statistics = 0;
    EXPECT_EQ(summary->GetSnapshot(i, state.Out()), S_OK);
    EXPECT_EQ(state->GetSnapshotName(&name), S_OK);
    EXPECT_EQ(state->GetCount(&statistics), S_OK);
    text += "\n" + Ascii(name);
    for (std::uint32_t s = 0; s < statistics; ++s) {
      Guid identifier;
      Guid group;
      SummaryValue value;
      EXPECT_EQ(state->GetIdentifier(s, &identifier), S_OK);
      EXPECT_EQ(state->GetParent(identifier, &group), S_OK);
      EXPECT_EQ(state->GetName(identifier, &name), S_OK);
      EXPECT_EQ(state->GetValue(identifier, &value), S_OK);
      text += "\n" + Ascii(FormatGuid(group) + name) + " " + std::to_string(value.kind) + " " +
              std::to_string(value.first) + " " + std::to_string(value.second);
    }
  }
  return text;
}

TEST_F(SnapshotTest, AnswersLikeTheContextThatWroteIt) {
  std::uint64_t mark = 0;
  ComPtr<IUnknown> object;
  ASSERT_EQ(Load(Take(&mark), &object), S_OK);
  EXPECT_EQ(mark, kNewYear + 3 * kSecond);
  View live(engine_);
  ComPtr<IStatsContext> snapshot;
  ASSERT_EQ(Query(object.get(), &snapshot), S_OK);
  EXPECT_EQ(snapshot->IsAvailable(), S_OK);
  const std::string expected = Describe(live.context.get());
  EXPECT_NE(expected.find("red\n"), std::string::npos) << "the stored state is among\n" << expected;
  EXPECT_EQ(Describe(snapshot.get()), expected);

  std::uint32_t count = 0;
  ComPtr<IProtocolStats> protocols;
  ASSERT_EQ(GetCategory(snapshot.get(), kProtocolCategory, &protocols), S_OK);
  ASSERT_EQ(protocols->GetCount(&count), S_OK);
  ASSERT_EQ(count, 3U);
  const ProtocolEntry* entry = nullptr;
  ASSERT_EQ(protocols->FindByKey(live.Index("DNS"), &entry), S_OK);
  EXPECT_EQ(entry->packets, 2U);
  EXPECT_EQ(entry->bytes, 160U);
}

TEST_F(SnapshotTest, HoldsNoMoreThanItSays) {
  ComPtr<IUnknown> object;
  ASSERT_EQ(Load(Take(), &object), S_OK);
  ComPtr<IStatsContext> snapshot;
  ASSERT_EQ(Query(object.get(), &snapshot), S_OK);
  ComPtr<INodeStats> nodes;
  ComPtr<IAddressTable> addresses;
  ComPtr<IConversationIndex> index;
  EXPECT_EQ(GetCategory(snapshot.get(), kNodeCategory, &nodes), E_NOINTERFACE);
  EXPECT_EQ(snapshot->GetAddressTable(addresses.Out()), E_NOINTERFACE);
  EXPECT_EQ(snapshot->GetConversationIndex(index.Out()), E_NOINTERFACE);
}

TEST_F(SnapshotTest, RefusesEveryDamage) {
  const std::string good = Take();
  ComPtr<IUnknown> object;
  for (std::size_t at = 0; at < good.size(); ++at) {
    std::string bad = good;
    bad[at] = static_cast<char>(bad[at] ^ (1 << (at % 8)));
    ASSERT_TRUE(Failed(Load(bad, &object))) << "byte " << at;
    ASSERT_TRUE(Failed(Load(good.substr(0, at), &object))) << "cut off at " << at;
  }
  ComPtr<IStatsContext> snapshot;
  ASSERT_EQ(Query(object.get(), &snapshot), S_OK);
  std::uint64_t packets = 0;
  EXPECT_EQ(snapshot->GetTotalPackets(&packets), E_UNEXPECTED) << "nothing was loaded";
  EXPECT_TRUE(Failed(snapshot->IsAvailable()));
  EXPECT_EQ(Load(good + "behind it", &object), S_OK);
}

/// CRC-32C bit by bit, so that damage can be given a right checksum.
void Sign(std::string* bytes) {
  std::uint32_t crc = 0xFFFFFFFF;
  for (std::size_t i = 16; i < bytes->size(); ++i) {
    crc ^= static_cast<unsigned char>((*bytes)[i]);
    for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0x82F63B78U : 0U);
  }
  for (std::size_t i = 0; i < 4; ++i) (*bytes)[12 + i] = static_cast<char>(~crc >> (8 * i));
}

// Whoever writes a snapshot by hand can sign it: bounds must hold by themselves.
TEST_F(SnapshotTest, SurvivesDamageWithARightChecksum) {
  std::string same = Take();
  const std::string good = same;
  Sign(&same);
  ASSERT_EQ(same, good) << "the checksum is that of the format's description";
  int refused = 0;
  for (std::size_t at = 24; at < good.size(); ++at) {
    std::string bad = good;
    bad[at] = static_cast<char>(~bad[at]);
    Sign(&bad);
    ComPtr<IUnknown> object;
    Status status = Load(bad, &object);
    EXPECT_TRUE(status == S_OK || status == E_FAIL) << "byte " << at;
    refused += Failed(status);
    if (Failed(status)) continue;
    ComPtr<IStatsContext> snapshot;
    ComPtr<ISummaryStats> summary;
    ComPtr<ISummarySnapshot> present;
    ASSERT_EQ(Query(object.get(), &snapshot), S_OK);
    ASSERT_EQ(GetCategory(snapshot.get(), kSummaryCategory, &summary), S_OK);
    ASSERT_EQ(summary->GetSnapshot(0, present.Out()), S_OK);
    SummaryValue value;
    present->GetValue(kStatDuration, &value);
  }
  EXPECT_GT(refused, 100);
}

TEST_F(SnapshotTest, AFailedLoadKeepsWhatWasLoaded) {
  const std::string good = Take();
  ComPtr<IUnknown> object;
  ASSERT_EQ(Load(good, &object), S_OK);
  ComPtr<IPersistStream> persist;
  ASSERT_EQ(Query(object.get(), &persist), S_OK);
  EXPECT_TRUE(Failed(persist->Load(MakeObject<MemoryStream>().get())));
  EXPECT_EQ(persist->Load(nullptr), E_POINTER);
  auto copy = MakeObject<MemoryStream>();
  EXPECT_EQ(persist->Save(copy.get(), true), S_OK);
  EXPECT_EQ(copy->bytes, good);
  Guid class_id;
  EXPECT_EQ(persist->GetClassID(&class_id), S_OK);
  EXPECT_EQ(class_id, kStatsSnapshotClass);
}

TEST_F(SnapshotTest, AFullStreamFailsTheWrite) {
  auto stream = MakeObject<MemoryStream>();
  stream->room = 100;
  ComPtr<IStatsSnapshotSource> source;
  ASSERT_EQ(Query(engine_.Context().get(), &source), S_OK);
  std::uint64_t mark = 0;
  EXPECT_EQ(source->WriteStatistics(stream.get(), &mark), STG_E_MEDIUMFULL);
  EXPECT_EQ(source->WriteStatistics(nullptr, &mark), E_POINTER);
}

class FixedClock final : public Clock {
 public:
  std::uint64_t Now() override { return 4711'00; }
  std::unique_ptr<Event> CreateEvent() override { return nullptr; }
};

TEST(SnapshotMark, IsThePresentForLiveAndEmptyCaptures) {
  FixedClock clock;
  SetProcessClock(&clock);
  for (bool live : {false, true}) {
    EngineOptions options;
    options.live = live;
    CaptureEngine engine(options);
    if (live) FeedSmallCapture(&engine);
    ComPtr<IStatsSnapshotSource> source;
    ASSERT_EQ(Query(engine.Context().get(), &source), S_OK);
    std::uint64_t mark = 0;
    EXPECT_EQ(source->WriteStatistics(MakeObject<MemoryStream>().get(), &mark), S_OK);
    EXPECT_EQ(mark, clock.Now());
  }
  SetProcessClock(nullptr);
}

}  // namespace
}  // namespace orvo::test
