#include "capture/context/engine_core.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "capture/context/summary_statistics.h"
#include "capture/names/dns_names.h"

namespace orvo {
namespace {

constexpr std::u16string_view kPresentName = u"Current";

/// Rows have numbers of 32 bits.
constexpr std::size_t kMostRows = 4'000'000'000;

TableLimits LimitsOf(const EngineOptions& options) {
  return {std::min(options.max_addresses, kMostRows), std::min(options.max_hierarchy_rows, kMostRows),
          std::min(options.max_conversations, kMostRows),
          WirelessLimits{.nodes = options.max_wireless_nodes, .channels = options.max_wireless_channels}};
}

std::shared_ptr<const TrustList> TrustOf(const EngineOptions& options) {
  if (options.trusted_addresses.empty()) return nullptr;
  auto trust = std::make_shared<TrustList>();
  for (const TrustedAddress& one : options.trusted_addresses) {
    trust->insert_or_assign(one.address, static_cast<std::uint8_t>(one.trust));
  }
  return trust;
}

std::shared_ptr<NameDirectory> DirectoryFor(const EngineOptions& options) {
  return options.plain_addresses ? nullptr : std::make_shared<NameDirectory>(options.max_names);
}

DetectionLimits DetectionLimitsOf(const EngineOptions& options) {
  DetectionLimits limits;
  limits.flows = options.detect_applications ? options.max_flows : 0;
  limits.undecided = options.max_undecided_flows;
  return limits;
}

ExpertOptions ExpertOptionsOf(const EngineOptions& options) {
  return {std::min(options.max_expert_flows, kMostRows), options.max_expert_events, options.apdex_target / 1000};
}

}  // namespace

EngineCore::EngineCore(const EngineOptions& options)
    : options_(options),
      names_(DirectoryFor(options)),
      detector_(DetectionLimitsOf(options)),
      voice_({options.max_calls, options.max_media_streams}),
      expert_(ExpertOptionsOf(options)),
      tables_(LimitsOf(options), TrustOf(options)),
      queue_([this](NoteBatch& batch) { Count(&batch); }) {}

void EngineCore::Feed(std::span<const Packet> packets) {
  const bool hand_over = packets.size() >= kWorthHandingOver && queue_.Start();
  if (!hand_over) queue_.Drain();
  while (!packets.empty()) {
    const std::span<const Packet> some = packets.first(std::min(packets.size(), NoteBatch::kMost));
    packets = packets.subspan(some.size());
    const FeedGate::Pass pass(gate_);
    NoteBatch& batch = hand_over ? queue_.Fill() : batch_;
    Decode(some, &batch);
    if (hand_over) {
      queue_.Publish();
    } else {
      Count(&batch);
    }
  }
  if (hand_over) queue_.Flush();
}

/// From bytes to what is to be counted. Each step takes all packets before the next begins.
void EngineCore::Decode(std::span<const Packet> packets, NoteBatch* batch) {
  const std::span<PacketFacts> facts(facts_.data(), packets.size());
  for (std::size_t i = 0; i < packets.size(); ++i) DecodePacket(packets[i], &facts[i]);
  detector_.Inspect(packets, facts);
  if (options_.expert_analysis) expert_reader_.Read(packets, facts, &batch->expert);
  for (std::size_t i = 0; i < packets.size(); ++i) {
    if (VoiceAnalysis::Concerns(facts[i])) voice_.Inspect(packets[i], facts[i]);
  }
  ProtocolTree& tree = ProtocolTree::Get();
  for (std::size_t i = 0; i < packets.size(); ++i) {
    if (names_ && MayHoldNames(facts[i])) Listen(facts[i], batch);
    std::construct_at(&batch->notes[i], packets[i], facts[i], tree.Classify(facts[i]));
    if (facts[i].is_wireless) batch->AddWireless(i, facts[i]);
  }
  batch->size = packets.size();
  batch->flows = detector_.counts();
}

void EngineCore::Count(NoteBatch* batch) {
  Learn(&batch->heard);
  std::lock_guard lock(mutex_);
  ++changes_;
  if (options_.expert_analysis) expert_.Inspect(batch->packets(), batch->expert);
  tables_.Count(batch->packets());
  tables_.SetFlows(batch->flows);
}

/// Names are learnt when the batch is counted, so that the last one that was heard of an address stays. Packets that
/// tell more names than may wait are learnt from at once, after all that were read before.
void EngineCore::Listen(const PacketFacts& facts, NoteBatch* batch) {
  ReadHeardNames(facts, &batch->heard);
  if (batch->heard.size() <= kMostHeard) return;
  queue_.Drain();
  Learn(&batch->heard);
}

void EngineCore::Learn(std::vector<KnownName>* heard) {
  for (const KnownName& known : *heard) names_->Learn(known.address, known.name, NameSource::kHeard);
  heard->clear();
}

std::uint64_t EngineCore::packets() {
  queue_.Drain();
  std::lock_guard lock(mutex_);
  return tables_.packets();
}

void EngineCore::SetDropped(std::uint64_t packets) {
  std::lock_guard lock(mutex_);
  ++changes_;
  tables_.SetDropped(packets);
}

void EngineCore::Reset() {
  const FeedGate::Stop stop(gate_);
  queue_.Drain();
  std::lock_guard lock(mutex_);
  ++changes_;
  tables_.Reset();
  voice_.Reset();
  expert_.Reset();
}

void EngineCore::StoreSummary(std::u16string_view name) {
  if (options_.max_stored_summaries == 0) return;
  const FeedGate::Stop stop(gate_);
  queue_.Drain();
  std::lock_guard lock(mutex_);
  Counters counters = tables_.Summary();
  counters.voice = voice_.counts();
  counters.expert = expert_.counts();
  stored_.push_back(MakeSummary(counters, name));
  ++changes_;
  if (stored_.size() > options_.max_stored_summaries) stored_.pop_front();
}

EpochPtr EngineCore::Freeze() {
  auto epoch = std::make_shared<Epoch>();
  auto tables = std::make_shared<FrozenTables>();
  std::uint64_t changes = 0;
  {
    // Tables and analyses are to tell of the same packets.
    const FeedGate::Stop stop(gate_);
    queue_.Drain();
    std::lock_guard lock(mutex_);
    if (latest_changes_ == changes_) {
      if (EpochPtr latest = latest_.lock()) return latest;
    }
    changes = changes_;
    *tables = tables_.Freeze();
    epoch->voice = voice_.Freeze();
    epoch->expert = expert_.Freeze();
    epoch->summaries.emplace_back();
    epoch->summaries.insert(epoch->summaries.end(), stored_.begin(), stored_.end());
  }
  tables->counters.voice = epoch->voice.counts;
  if (names_) tables->counters.unlisted_names = names_->refused();
  tables->counters.expert = epoch->expert.counts();
  const Counters& counters = tables->counters;
  epoch->packets = counters.total.packets;
  epoch->bytes = counters.total.bytes;
  epoch->start = counters.first_time;
  epoch->duration = counters.duration();
  epoch->catalogue = LiveCatalogue();
  epoch->summaries.front() = MakeSummary(counters, kPresentName);
  epoch->protocols = tables->protocols;
  epoch->wireless = tables->wireless;
  if (epoch->wireless) epoch->medium_subtype = epoch->wireless->subtype;
  epoch->tables = std::move(tables);
  std::lock_guard lock(mutex_);
  latest_ = epoch;
  latest_changes_ = changes;
  return epoch;
}

EpochPtr EngineCore::Latest() {
  {
    std::lock_guard lock(mutex_);
    if (EpochPtr latest = latest_.lock()) return latest;
  }
  return Freeze();
}

void EngineCore::SetObserver(IReportObserver* observer) {
  ComPtr<IReportObserver> replaced(observer);
  std::lock_guard lock(mutex_);
  std::swap(replaced, observer_);
}

ComPtr<IReportObserver> EngineCore::observer() const {
  std::lock_guard lock(mutex_);
  return observer_;
}

}  // namespace orvo
