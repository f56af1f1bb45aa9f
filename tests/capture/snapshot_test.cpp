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

  static ComPtr<IStatsSnapshotSource> SourceOf(CaptureEngine& engine) {
    ComPtr<IStatsSnapshotSource> source;
    EXPECT_EQ(Query(engine.Context().get(), &source), S_OK);
    return source;
  }
  /// The engine's statistics as bytes.
  std::string Take(std::uint64_t* mark = nullptr) {
    std::uint64_t time = 0;
    auto stream = MakeObject<MemoryStream>();
    stream->step = 1000;
    EXPECT_EQ(SourceOf(engine_)->WriteStatistics(stream.get(), mark ? mark : &time), S_OK);
    return stream->bytes;
  }

  static Status Load(const std::string& bytes, ComPtr<IStatsContext>* snapshot) {
    ComPtr<IPersistStream> persist;
    EXPECT_EQ(Query(MakeStatsSnapshot().get(), &persist), S_OK);
    EXPECT_EQ(Query(persist.get(), snapshot), S_OK);
    auto stream = MakeObject<MemoryStream>();
    stream->bytes = bytes;
    stream->step = 700;
    return persist->Load(stream.get());
  }

  CaptureEngine engine_;
};

/// The totals and all of the summary, in words.
std::string Describe(const ComPtr<IStatsContext>& context) {
  std::string text;
  for (auto getter : {&IStatsContext::GetTotalPackets, &IStatsContext::GetTotalBytes, &IStatsContext::GetStartTime,
                      &IStatsContext::GetDuration}) {
    text += std::to_string(Ask(context)(getter)) + " ";
  }
  ComPtr<ISummaryStats> summary;
  EXPECT_EQ(GetCategory(context.get(), kSummaryCategory, &summary), S_OK);
  for (std::uint32_t i = 0, states = Ask(summary)(&ISummaryStats::GetSnapshotCount); i < states; ++i) {
    const auto state = Ask(summary)(&ISummaryStats::GetSnapshot, i);
    const auto ask = Ask(state);
    text += "\n" + Ascii(ask(&ISummarySnapshot::GetSnapshotName));
    for (std::uint32_t s = 0, count = ask(&ISummarySnapshot::GetCount); s < count; ++s) {
      const Guid identifier = ask(&ISummarySnapshot::GetIdentifier, s);
      const SummaryValue value = ask(&ISummarySnapshot::GetValue, identifier);
      text += "\n" +
              Ascii(FormatGuid(ask(&ISummarySnapshot::GetParent, identifier)) +
                    ask(&ISummarySnapshot::GetName, identifier)) +
              " " + std::to_string(value.kind) + " " + std::to_string(value.first) + " " + std::to_string(value.second);
    }
  }
  return text;
}

TEST_F(SnapshotTest, AnswersLikeTheContextThatWroteIt) {
  std::uint64_t mark = 0;
  ComPtr<IStatsContext> snapshot;
  ASSERT_EQ(Load(Take(&mark), &snapshot), S_OK);
  EXPECT_EQ(mark, kNewYear + 3 * kSecond);
  View live(engine_);
  EXPECT_EQ(snapshot->IsAvailable(), S_OK);
  const std::string expected = Describe(live.context);
  EXPECT_NE(expected.find("red\n"), std::string::npos) << "the stored state is among\n" << expected;
  EXPECT_EQ(Describe(snapshot), expected);

  ComPtr<IProtocolStats> protocols;
  ASSERT_EQ(GetCategory(snapshot.get(), kProtocolCategory, &protocols), S_OK);
  EXPECT_EQ(Ask(protocols)(&IProtocolStats::GetCount), 3U);
  const ProtocolEntry* entry = Ask(protocols)(&IProtocolStats::FindByKey, live.Index("DNS"));
  ASSERT_NE(entry, nullptr);
  EXPECT_EQ(entry->packets, 2U);
  EXPECT_EQ(entry->bytes, 160U);
}

TEST_F(SnapshotTest, HoldsNoMoreThanItSays) {
  ComPtr<IStatsContext> snapshot;
  ASSERT_EQ(Load(Take(), &snapshot), S_OK);
  ComPtr<INodeStats> nodes;
  ComPtr<IAddressTable> addresses;
  ComPtr<IConversationIndex> index;
  EXPECT_EQ(GetCategory(snapshot.get(), kNodeCategory, &nodes), E_NOINTERFACE);
  EXPECT_EQ(snapshot->GetAddressTable(addresses.Out()), E_NOINTERFACE);
  EXPECT_EQ(snapshot->GetConversationIndex(index.Out()), E_NOINTERFACE);
}

TEST_F(SnapshotTest, RefusesEveryDamage) {
  const std::string good = Take();
  ComPtr<IStatsContext> snapshot;
  for (std::size_t at = 0; at < good.size(); ++at) {
    std::string bad = good;
    bad[at] = static_cast<char>(bad[at] ^ (1 << (at % 8)));
    ASSERT_TRUE(Failed(Load(bad, &snapshot))) << "byte " << at;
    ASSERT_TRUE(Failed(Load(good.substr(0, at), &snapshot))) << "cut off at " << at;
  }
  std::uint64_t packets = 0;
  EXPECT_EQ(snapshot->GetTotalPackets(&packets), E_UNEXPECTED) << "nothing was loaded";
  EXPECT_TRUE(Failed(snapshot->IsAvailable()));
  EXPECT_EQ(Load(good + "behind it", &snapshot), S_OK);
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
    ComPtr<IStatsContext> snapshot;
    Status status = Load(bad, &snapshot);
    EXPECT_TRUE(status == S_OK || status == E_FAIL) << "byte " << at;
    refused += Failed(status);
    if (Failed(status)) continue;
    ComPtr<ISummaryStats> summary;
    ASSERT_EQ(GetCategory(snapshot.get(), kSummaryCategory, &summary), S_OK);
    SummaryValue value;
    Ask(summary)(&ISummaryStats::GetSnapshot, 0U)->GetValue(kStatDuration, &value);
  }
  EXPECT_GT(refused, 100);
}

TEST_F(SnapshotTest, AFailedLoadKeepsWhatWasLoaded) {
  const std::string good = Take();
  ComPtr<IStatsContext> snapshot;
  ASSERT_EQ(Load(good, &snapshot), S_OK);
  ComPtr<IPersistStream> persist;
  ASSERT_EQ(Query(snapshot.get(), &persist), S_OK);
  EXPECT_TRUE(Failed(persist->Load(MakeObject<MemoryStream>().get())));
  EXPECT_EQ(persist->Load(nullptr), E_POINTER);
  auto copy = MakeObject<MemoryStream>();
  EXPECT_EQ(persist->Save(copy.get(), true), S_OK);
  EXPECT_EQ(copy->bytes, good);
  EXPECT_EQ(Ask(persist)(&IPersistStream::GetClassID), kStatsSnapshotClass);
}

TEST_F(SnapshotTest, AFullStreamFailsTheWrite) {
  auto stream = MakeObject<MemoryStream>();
  stream->room = 100;
  const auto source = SourceOf(engine_);
  std::uint64_t mark = 0;
  EXPECT_EQ(source->WriteStatistics(stream.get(), &mark), STG_E_MEDIUMFULL);
  EXPECT_EQ(source->WriteStatistics(nullptr, &mark), E_POINTER);
}

class FixedClock final : public Clock {
 public:
  std::uint64_t Now() override { return 4711'00; }
  std::unique_ptr<Event> CreateEvent() override { return nullptr; }
};

TEST_F(SnapshotTest, HasTheTimeOfThePresentForLiveAndEmptyCaptures) {
  FixedClock clock;
  SetProcessClock(&clock);
  for (bool live : {false, true}) {
    EngineOptions options;
    options.live = live;
    CaptureEngine engine(options);
    if (live) FeedSmallCapture(&engine);
    std::uint64_t mark = 0;
    EXPECT_EQ(SourceOf(engine)->WriteStatistics(MakeObject<MemoryStream>().get(), &mark), S_OK);
    EXPECT_EQ(mark, clock.Now());
  }
  SetProcessClock(nullptr);
}

}  // namespace
}  // namespace orvo::test
