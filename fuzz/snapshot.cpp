// Snapshots: untrusted bytes into the snapshot object, and what reports read of it.

#include <algorithm>

#include "capture/context/capture_engine.h"
#include "capture/context/stats_snapshot.h"
#include "capture/source/capture_file.h"
#include "engine/categories.h"
#include "fuzz/support/target.h"
#include "platform/error.h"
#include "statistics/summary_reader.h"
#include "tests/capture/memory_stream.h"

namespace orvo::fuzz {
namespace {

// See docs/snapshot-format.md.
constexpr std::size_t kHeaderLength = 24;
constexpr std::size_t kChecksumStart = 16;

void AppendLittle(std::uint64_t value, int bytes, std::string* text) {
  for (int i = 0; i < bytes; ++i) *text += static_cast<char>(value >> (8 * i));
}

std::uint32_t Crc32c(std::string_view bytes) {
  std::uint32_t crc = 0xFFFFFFFF;
  for (char byte : bytes) {
    crc ^= static_cast<unsigned char>(byte);
    for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ ((crc & 1U) != 0 ? 0x82F63B78U : 0U);
  }
  return ~crc;
}

/// A body with the header that makes it pass the first checks, which no fuzzer gets by on its own.
std::string WithHeader(std::string_view body) {
  std::string covered;
  AppendLittle(body.size(), 8, &covered);
  covered += body;
  std::string snapshot = "ORVOSNAP";
  AppendLittle(1, 4, &snapshot);
  AppendLittle(Crc32c(covered), 4, &snapshot);
  Require(snapshot.size() == kChecksumStart, "the checksum is in its place");
  return snapshot + covered;
}

class Snapshot {
 public:
  Snapshot() : object_(MakeStatsSnapshot()) {
    Require(Query(object_.get(), &persist_) == S_OK, "a snapshot loads from streams");
    Require(Query(object_.get(), &context_) == S_OK, "a snapshot is a context");
  }
  Status Load(const std::string& bytes) {
    auto stream = MakeObject<test::MemoryStream>();
    stream->bytes = bytes;
    return persist_->Load(stream.get());
  }
  std::string Save() {
    auto stream = MakeObject<test::MemoryStream>();
    Require(persist_->Save(stream.get(), true) == S_OK, "what was loaded can be saved");
    return stream->bytes;
  }
  IStatsContext* context() const { return context_.get(); }

 private:
  ComPtr<IUnknown> object_;
  ComPtr<IPersistStream> persist_;
  ComPtr<IStatsContext> context_;
};

void ReadSummary(ISummarySnapshot& summary, IStatsContext& context) {
  static const StatisticMap kNoMap;
  ReadReferenceTotals(summary, context);
  std::u16string name;
  Require(summary.GetSnapshotName(&name) == S_OK, "a state has a name");
  std::uint32_t count = 0;
  Require(summary.GetCount(&count) == S_OK, "statistics are counted");
  for (std::uint32_t i = 0; i < count; ++i) {
    Guid identifier;
    Guid group;
    SummaryValue value;
    Require(summary.GetIdentifier(i, &identifier) == S_OK, "a statistic has an identifier");
    Require(summary.GetValue(identifier, &value) == S_OK, "it has a value");
    Require(value.kind <= kSummaryReal, "its value is of a kind that there is");
    Require(summary.GetParent(identifier, &group) == S_OK, "it has a group");
    Require(summary.GetName(group, &name) == S_OK, "a group may have a name");
    SummaryName(summary, kNoMap, identifier);
  }
}

void ReadAll(IStatsContext* context) {
  ComPtr<ISummaryStats> summary;
  Require(GetCategory(context, kSummaryCategory, &summary) == S_OK, "there is a summary");
  std::uint32_t count = 0;
  Require(summary->GetSnapshotCount(&count) == S_OK && count > 0, "there is a present state");
  // All are of one form; each costs a walk.
  for (std::uint32_t i = 0; i < std::min(count, 8U); ++i) {
    ComPtr<ISummarySnapshot> state;
    Require(summary->GetSnapshot(i, state.Out()) == S_OK, "every state below the count is there");
    ReadSummary(*state, *context);
  }
  ComPtr<IProtocolStats> protocols;
  Require(GetCategory(context, kProtocolCategory, &protocols) == S_OK, "there are protocols");
  Require(protocols->GetCount(&count) == S_OK, "they are counted");
  for (std::uint32_t i = 0; i < count; ++i) {
    const ProtocolEntry* entry = nullptr;
    Require(protocols->GetEntry(i, &entry) == S_OK && entry, "every one below the count is there");
    const ProtocolEntry* found = nullptr;
    Require(protocols->FindByKey(entry->key, &found) == S_OK && found->key == entry->key, "its key finds it");
  }
}

}  // namespace

/// The first byte tells whether the rest is a whole snapshot or lacks the header.
void TestOneInput(Input input) {
  const bool whole = (TakeByte(&input) & 1U) != 0;
  const std::string bytes = whole ? std::string(AsText(input)) : WithHeader(AsText(input));
  Snapshot first;
  if (Failed(first.Load(bytes))) {
    Require(Failed(first.context()->IsAvailable()), "a load that fails loads nothing");
    return;
  }
  ReadAll(first.context());
  const std::string saved = first.Save();
  Snapshot second;
  Require(second.Load(saved) == S_OK, "what was saved loads");
  Require(second.Save() == saved, "what loads again is the same");
}

void MakeSeeds(const SeedSink& add) {
  for (const std::string& path : Samples()) {
    CaptureEngine engine;
    SourceError error;
    std::unique_ptr<PacketSource> source = OpenCaptureFile(path, &error);
    Require(source != nullptr, "samples can be read");
    engine.StoreSummary(u"before");
    for (Packet packet; source->Next(&packet);) engine.Feed(packet);
    ComPtr<IStatsContext> context = engine.Context();
    ComPtr<IStatsSnapshotSource> writer;
    auto stream = MakeObject<test::MemoryStream>();
    std::uint64_t mark = 0;
    Require(context->IsAvailable() == S_OK && Query(context.get(), &writer) == S_OK, "a capture gives snapshots");
    Require(writer->WriteStatistics(stream.get(), &mark) == S_OK, "they can be written");
    add('\1' + stream->bytes);
    add('\0' + stream->bytes.substr(kHeaderLength));
  }
}

}  // namespace orvo::fuzz
