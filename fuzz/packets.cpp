// Packets of every link type, through the decoders and the whole engine: protocols, names, tables, snapshot.

#include <functional>

#include "capture/context/address_text.h"
#include "capture/context/capture_engine.h"
#include "capture/context/stats_snapshot.h"
#include "capture/decode/protocol_registry.h"
#include "engine/categories.h"
#include "fuzz/support/packet_input.h"
#include "tests/capture/memory_stream.h"

namespace orvo::fuzz {
namespace {

// An input is a byte of these options, then packets.
enum Option : unsigned { kSmallTables = 1, kPlainAddresses = 2 };

bool LiesIn(Bytes part, Bytes whole) {
  return part.empty() || (part.data() >= whole.data() && part.data() + part.size() <= whole.data() + whole.size());
}

struct Totals {
  std::uint64_t packets = 0;
  std::uint64_t bytes = 0;
  std::uint64_t ends = 0;   ///< addresses of senders and receivers, each of each header
  std::uint64_t pairs = 0;  ///< of ends that one header names both
};

void Decode(const Packet& packet, Totals* totals) {
  ++totals->packets;
  totals->bytes += packet.original_length;
  PacketFacts facts;
  DecodePacket(packet, &facts);
  Require(LiesIn(facts.network, packet.bytes), "the outermost datagram lies in the packet");
  Require(LiesIn(facts.datagram, packet.bytes), "the innermost datagram lies in the packet");
  Require(LiesIn(facts.payload, packet.bytes), "the payload lies in the packet");
  Require(facts.pair_count <= PacketFacts::kMaxPairs, "no more pairs of addresses than there is room for");
  Require(facts.chain_length <= PacketFacts::kMaxChain, "no more protocols than there is room for");
  for (std::size_t i = 0; i < facts.chain_length; ++i) {
    Require(facts.chain[i] != 0 && facts.chain[i] < ProtocolRegistry::Get().count(), "protocols met are registered");
  }
  for (std::size_t i = 0; i < facts.pair_count; ++i) {
    const AddressPair& pair = facts.pairs[i];
    totals->ends += static_cast<std::uint64_t>(pair.source.valid != 0) + (pair.destination.valid != 0 ? 1 : 0);
    totals->pairs += pair.names_both_ends() ? 1 : 0;
    if (!pair.names_both_ends()) continue;
    Require(pair.source.type == pair.destination.type, "both ends are of one type");
    Require(pair.source.length <= pair.source.bytes.size(), "an address is no longer than its record");
  }
}

template <class T>
ComPtr<T> CategoryOf(IStatsContext* context, const Category<T>& category) {
  ComPtr<T> object;
  Require(GetCategory(context, category, &object) == S_OK, "the engine keeps its categories");
  return object;
}

/// Walks entries by index.
template <class Entry, class Stats>
void ForEach(Stats& stats, const std::function<void(const Entry&)>& take) {
  std::uint32_t count = 0;
  Require(stats.GetCount(&count) == S_OK, "entries are counted");
  for (std::uint32_t i = 0; i < count; ++i) {
    const Entry* entry = nullptr;
    Require(stats.GetEntry(i, &entry) == S_OK && entry, "every entry below the count is there");
    take(*entry);
  }
}

void CheckProtocols(IStatsContext* context, const Totals& fed) {
  Totals counted;
  ForEach<ProtocolEntry>(*CategoryOf(context, kProtocolCategory), [&](const ProtocolEntry& entry) {
    counted.packets += entry.packets;
    counted.bytes += entry.bytes;
  });
  Require(counted.packets == fed.packets && counted.bytes == fed.bytes, "every packet has one protocol");
}

/// `whole` when the tables took everything.
void CheckAddresses(IStatsContext* context, const Totals& fed, bool whole) {
  ComPtr<IAddressTable> addresses;
  Require(context->GetAddressTable(addresses.Out()) == S_OK, "there is an address table");
  std::uint32_t count = 0;
  Require(addresses->GetCount(&count) == S_OK, "addresses are counted");
  for (std::uint32_t i = 0; i < count; ++i) {
    const AddressRecord* record = nullptr;
    Require(addresses->GetRecord(i, &record) == S_OK && record, "every address below the count is there");
    std::u16string text;
    AppendAddress(*record, &text);
    for (char16_t unit : text) Require(unit >= u' ', "texts of addresses hold no control characters");
  }
  Totals counted;
  ForEach<NodeEntry>(*CategoryOf(context, kNodeCategory), [&](const NodeEntry& node) {
    Require(node.address < count, "a node has an address");
    Require(node.activity() > 0, "a node has sent or received");
    counted.ends += node.activity();
  });
  Require(whole ? counted.ends == fed.ends : counted.ends <= fed.ends, "nodes add up");
  ComPtr<IConversationIndex> index;
  Require(context->GetConversationIndex(index.Out()) == S_OK, "there is a conversation index");
  ForEach<ConversationEntry>(*CategoryOf(context, kConversationCategory), [&](const ConversationEntry& entry) {
    ConversationEndpoints ends;
    Require(index->Resolve(entry.key, &ends) == S_OK, "conversations resolve");
    Require(ends.source < count && ends.destination < count && ends.protocol < count, "their ends have addresses");
    counted.pairs += entry.packets;
  });
  Require(whole ? counted.pairs == fed.pairs : counted.pairs <= fed.pairs, "conversations add up");
}

void CheckSnapshot(IStatsContext* context) {
  ComPtr<IStatsSnapshotSource> source;
  Require(Query(context, &source) == S_OK, "a context writes snapshots");
  auto stream = MakeObject<test::MemoryStream>();
  std::uint64_t mark = 0;
  Require(source->WriteStatistics(stream.get(), &mark) == S_OK, "every state can be written");
  stream->position = 0;
  ComPtr<IPersistStream> snapshot;
  Require(Query(MakeStatsSnapshot().get(), &snapshot) == S_OK, "a snapshot loads from streams");
  Require(snapshot->Load(stream.get()) == S_OK, "what was written loads");
}

}  // namespace

void TestOneInput(Input input) {
  const unsigned chosen = TakeByte(&input);
  EngineOptions options;
  options.detect_applications = false;  // it takes long to begin, and has a target of its own
  options.plain_addresses = (chosen & kPlainAddresses) != 0;
  if ((chosen & kSmallTables) != 0) {
    options.max_addresses = 6;
    options.max_hierarchy_rows = options.max_conversations = 3;
    options.max_names = 1;
  }
  CaptureEngine engine(options);
  Totals fed;
  Packet packet;
  packet.time = kFirstTime;
  while (TakePacket(&input, &packet)) {
    Decode(packet, &fed);
    engine.Feed(packet);
  }
  ComPtr<IStatsContext> context = engine.Context();
  Require(engine.packets() == fed.packets, "every packet is counted");
  if (fed.packets == 0) return;
  Require(context->IsAvailable() == S_OK, "packets give statistics");
  Totals counted;
  Require(context->GetTotalPackets(&counted.packets) == S_OK && counted.packets == fed.packets, "packets add up");
  Require(context->GetTotalBytes(&counted.bytes) == S_OK && counted.bytes == fed.bytes, "bytes add up");
  CheckProtocols(context.get(), fed);
  CheckAddresses(context.get(), fed, (chosen & kSmallTables) == 0);
  CheckSnapshot(context.get());
}

/// The first packets of the samples, a few at a time, with every option.
void MakeSeeds(const SeedSink& add) {
  char chosen = 0;
  MakePacketSeeds([&](const std::string& packets) { add(std::string(1, chosen++) + packets); });
}

}  // namespace orvo::fuzz
