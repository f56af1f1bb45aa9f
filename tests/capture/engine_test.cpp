#include "capture/context/capture_engine.h"

#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <numeric>
#include <thread>

#include "capture/source/capture_file.h"
#include "engine/categories.h"
#include "engine/graphs.h"
#include "engine/tables.h"
#include "platform/class_factory.h"
#include "platform/object.h"
#include "tests/capture/engine_fixture.h"

namespace orvo::test {
namespace {

// What the rows say is compared with reviewed files where whole reports are.
TEST(Engine, FindsEveryRowThatItLists) {
  CaptureEngine engine;
  FeedSmallCapture(&engine);
  View view(engine);
  auto nodes = view.Get(kNodeCategory);
  std::uint32_t count = 0;
  ASSERT_EQ(nodes->GetCount(&count), S_OK);
  EXPECT_EQ(count, 7U);
  const NodeEntry* node = nullptr;
  for (std::uint32_t i = 0; i < count; ++i) {
    const NodeEntry* same = nullptr;
    ASSERT_EQ(nodes->GetEntry(i, &node), S_OK);
    EXPECT_EQ(nodes->FindByAddress(node->address, &same), S_OK);
    EXPECT_EQ(same, node);
  }
  EXPECT_EQ(nodes->GetEntry(count, &node), E_INVALIDARG);
  EXPECT_EQ(nodes->FindByAddress(kNoAddress, &node), S_FALSE);
  EXPECT_EQ(node, nullptr);

  auto protocols = view.Get(kProtocolCategory);
  ASSERT_EQ(protocols->GetCount(&count), S_OK);
  EXPECT_EQ(count, 3U);
  const ProtocolEntry* protocol = nullptr;
  for (std::uint32_t i = 0; i < count; ++i) {
    const ProtocolEntry* same = nullptr;
    ASSERT_EQ(protocols->GetEntry(i, &protocol), S_OK);
    EXPECT_EQ(protocols->FindByKey(protocol->key, &same), S_OK);
    EXPECT_EQ(same, protocol);
  }
  EXPECT_EQ(protocols->FindByKey(view.Index("10.0.0.1"), &protocol), S_FALSE);

  ComPtr<IConversationIndex> index;
  ASSERT_EQ(view.context->GetConversationIndex(index.Out()), S_OK);
  auto conversations = view.Get(kConversationCategory);
  const ConversationEntry* conversation = nullptr;
  ConversationEndpoints ends;
  std::uint64_t key = 0;
  ASSERT_EQ(index->FirstOfType(kAddressIp, &key), S_OK);
  EXPECT_EQ(conversations->FindByKey(key, &conversation), S_OK);
  EXPECT_EQ(conversation->key, key);
  EXPECT_EQ(index->FirstOfType(kAddressIpx, &key), S_FALSE);
  for (std::uint64_t wrong : {std::uint64_t{0}, std::uint64_t{99}, ~std::uint64_t{0}}) {
    EXPECT_EQ(index->Resolve(wrong, &ends), E_INVALIDARG);
    EXPECT_EQ(index->NextOfType(wrong, &key), S_FALSE);
    EXPECT_EQ(conversations->FindByKey(wrong, &conversation), S_FALSE);
  }
}

// The second packet is older than the first.
TEST(Engine, TakesTimesInWhateverOrder) {
  CaptureEngine engine;
  FeedSmallCapture(&engine);
  View view(engine);
  std::uint64_t start = 0;
  std::uint64_t duration = 0;
  EXPECT_EQ(view.context->GetStartTime(&start), S_OK);
  EXPECT_EQ(view.context->GetDuration(&duration), S_OK);
  EXPECT_EQ(start, kNewYear - kSecond);
  EXPECT_EQ(duration, 4 * kSecond);
  const NodeEntry* node = nullptr;
  ASSERT_EQ(view.Get(kNodeCategory)->FindByAddress(view.Index("10.0.0.2"), &node), S_OK);
  EXPECT_EQ(node->first_time_sent, kNewYear - kSecond);
  EXPECT_EQ(node->last_time_sent, kNewYear - kSecond);
  EXPECT_EQ(node->first_time_received, kNewYear);
}

TEST(Engine, PutsLogicalAddressesBehindPhysicalOnes) {
  CaptureEngine engine;
  FeedSmallCapture(&engine);
  View view(engine);
  auto hierarchy = view.Get(kHierarchyCategory);
  std::map<std::string, std::string> found;
  std::uint32_t count = 0;
  ASSERT_EQ(hierarchy->GetCount(&count), S_OK);
  for (std::uint32_t i = 0; i < count; ++i) {
    const HierarchyEntry* entry = nullptr;
    ASSERT_EQ(hierarchy->GetEntry(i, &entry), S_OK);
    std::string key = view.Text(entry->address) + " " + (entry->parent == kNoAddress ? "*" : view.Text(entry->parent));
    found[key] = std::to_string(entry->packets_sent) + " " + std::to_string(entry->bytes_sent) + " " +
                 std::to_string(entry->packets_received) + " " + std::to_string(entry->bytes_received);
  }
  const std::map<std::string, std::string> expected = {
      {"02:00:00:00:00:01 *", "3 162 1 100"},        {"02:00:00:00:00:01 10.0.0.1", "2 120 1 100"},
      {"02:00:00:00:00:02 *", "1 100 1 60"},         {"02:00:00:00:00:02 10.0.0.2", "1 100 1 60"},
      {"ff:ff:ff:ff:ff:ff *", "0 0 1 42"},           {"01:00:5e:00:00:fb *", "0 0 1 60"},
      {"01:00:5e:00:00:fb 224.0.0.251", "0 0 1 60"},
  };
  EXPECT_EQ(found, expected);
}

TEST(Engine, ALengthDoesNotReadAsNoLength) {
  for (std::uint32_t size : {0U, 1514U, 0xFFFEU, 0xFFFFU, 70'000U}) {
    CaptureEngine engine;
    Buffer frame = Ethernet(Mac(2), Mac(1), 0x0806, Arp());
    Packet packet = MakePacket(frame);
    packet.original_length = size;
    engine.Feed(packet);
    const NodeEntry* node = nullptr;
    auto nodes = View(engine).Get(kNodeCategory);
    ASSERT_EQ(nodes->GetEntry(0, &node), S_OK);
    EXPECT_EQ(node->min_size_sent, std::min(size, 0xFFFEU));
  }
}

TEST(Engine, OneEpochLastsUntilAvailabilityIsAskedAgain) {
  CaptureEngine engine;
  FeedSmallCapture(&engine);
  ComPtr<IStatsContext> context = engine.Context();
  ASSERT_EQ(context->IsAvailable(), S_OK);
  ComPtr<INodeStats> early;
  ASSERT_EQ(GetCategory(context.get(), kNodeCategory, &early), S_OK);
  const NodeEntry* node = nullptr;
  ASSERT_EQ(early->GetEntry(0, &node), S_OK);
  NodeEntry before = *node;

  FeedSmallCapture(&engine);
  Buffer stranger = Ethernet(Mac(2), Mac(77), 0x0806, Arp());
  engine.Feed(MakePacket(stranger));
  std::uint64_t packets = 0;
  std::uint32_t addresses = 0;
  ComPtr<IAddressTable> table;
  EXPECT_EQ(context->GetTotalPackets(&packets), S_OK);
  EXPECT_EQ(context->GetAddressTable(table.Out()), S_OK);
  EXPECT_EQ(table->GetCount(&addresses), S_OK);
  EXPECT_EQ(packets, 4U);
  EXPECT_EQ(addresses, 10U);  // 4 physical, 3 logical, 3 protocols
  EXPECT_EQ(node->packets_sent, before.packets_sent);

  ComPtr<IStatsContext> another = engine.Context();
  EXPECT_EQ(another->GetTotalPackets(&packets), S_OK);
  EXPECT_EQ(packets, 9U) << "another context starts with an epoch of its own";
  ASSERT_EQ(context->IsAvailable(), S_OK);
  EXPECT_EQ(context->GetTotalPackets(&packets), S_OK);
  EXPECT_EQ(packets, 9U);
  EXPECT_EQ(node->packets_sent, before.packets_sent) << "what was handed out does not change";
}

TEST(Engine, AnEmptyCaptureIsAvailable) {
  CaptureEngine engine;
  ComPtr<IStatsContext> context = engine.Context();
  EXPECT_EQ(context->IsAvailable(), S_OK);
  std::uint64_t start = 1;
  std::uint32_t medium = 1;
  std::uint32_t subtype = 1;
  EXPECT_EQ(context->GetStartTime(&start), S_OK);
  EXPECT_EQ(context->GetMediumType(&medium), S_OK);
  EXPECT_EQ(context->GetMediumSubtype(&subtype), S_OK);
  EXPECT_EQ(start, 0U);
  EXPECT_EQ(medium, kMediumEthernet);
  EXPECT_EQ(subtype, kSubtypeWired);
  EXPECT_EQ(context->GetTotalPackets(nullptr), E_POINTER);
}

TEST(Engine, OffersAnalysisTables) {
  CaptureEngine engine;
  ComPtr<ITableProvider> provider;
  ASSERT_EQ(View(engine).Get(kExpertCategory)->QueryInterface(ITableProvider::kIid, provider.OutVoid()), S_OK);
  ComPtr<ITable> table;
  EXPECT_EQ(provider->GetTable(kTableMedia, 1, table.Out()), S_OK);
  std::uint32_t rows = 1;
  EXPECT_EQ(table->GetRowCount(&rows), S_OK);
  EXPECT_EQ(rows, 0U);
  EXPECT_EQ(provider->GetTable(kTableMedia, 2, table.Out()), E_INVALIDARG);
  EXPECT_EQ(provider->GetTable(99, 1, table.Out()), E_INVALIDARG);
  EXPECT_FALSE(table);
  EXPECT_EQ(provider->GetTable(kTableMedia, 1, nullptr), E_POINTER);
}

TEST(Engine, CountsCallsAndTheirMedia) {
  CaptureEngine engine;
  SourceError error;
  auto source = OpenCaptureFile(ORVO_SOURCE_DIR "/samples/voice-lossy.pcap", &error);
  ASSERT_TRUE(source);
  for (Packet packet; source->Next(&packet);) engine.Feed(packet);
  engine.StoreSummary(u"stored");
  const std::pair<const char*, std::uint64_t> values[] = {
      {"Calls", 1}, {"Media Streams", 4}, {"SIP Requests", 3}, {"SIP Responses", 3}, {"RTP Packets", 1138}};
  for (const auto& [name, value] : values) {
    EXPECT_EQ(View(engine).Value(name).first, value) << name;
    EXPECT_EQ(View(engine).Value(name, 1).first, value) << name;
  }
  EXPECT_EQ(View(engine).context->ResetStatistics(), S_OK);
  EXPECT_EQ(View(engine).Value("Media Streams").first, 0U);
}

TEST(Engine, AnswersNoCategoryThatItLacks) {
  CaptureEngine engine;
  ComPtr<IStatsContext> context = engine.Context();
  ComPtr<IUnknown> object;
  for (const Guid& category : {kWirelessNodeCategory.identifier, kWirelessChannelCategory.identifier, Guid{}}) {
    EXPECT_EQ(context->GetCategory(category, IUnknown::kIid, object.OutVoid()), E_NOINTERFACE);
    EXPECT_FALSE(object);
  }
  EXPECT_EQ(context->GetCategory(kNodeCategory.identifier, IProtocolStats::kIid, object.OutVoid()), E_NOINTERFACE);
  EXPECT_EQ(context->GetCategory(kNodeCategory.identifier, INodeStats::kIid, nullptr), E_POINTER);
  ComPtr<INodeStats> top_talkers;
  EXPECT_EQ(GetCategory(context.get(), kTopTalkerCategory, &top_talkers), S_OK);
}

TEST(Engine, AResetStartsOverUnderTheOldIndices) {
  CaptureEngine engine;
  FeedSmallCapture(&engine);
  View before(engine);
  ASSERT_EQ(before.context->ResetStatistics(), S_OK);
  EXPECT_EQ(engine.packets(), 0U);
  Buffer frame = Ethernet(Mac(1), Mac(2), 0x0800, Ipv4(Ip4(2), Ip4(1), 1, Icmp(8)));
  engine.Feed(MakePacket(frame));
  View after(engine);
  std::uint64_t packets = 0;
  EXPECT_EQ(after.context->GetTotalPackets(&packets), S_OK);
  EXPECT_EQ(packets, 1U);
  EXPECT_EQ(after.Index("10.0.0.1"), before.Index("10.0.0.1"));
  std::uint32_t nodes = 0;
  EXPECT_EQ(after.Get(kNodeCategory)->GetCount(&nodes), S_OK);
  EXPECT_EQ(nodes, 4U);
  const NodeEntry* node = nullptr;
  EXPECT_EQ(after.Get(kNodeCategory)->FindByAddress(after.Index("224.0.0.251"), &node), S_FALSE);
  EXPECT_EQ(after.Get(kNodeCategory)->FindByAddress(after.Index("10.0.0.2"), &node), S_OK);
  EXPECT_EQ(node->packets_sent, 1U);
}

TEST(Engine, LimitsBoundTheTablesAndTheSummarySaysSo) {
  EngineOptions options;
  options.max_addresses = 3;
  options.max_conversations = 1;
  options.max_hierarchy_rows = 2;
  CaptureEngine engine(options);
  FeedSmallCapture(&engine);
  View view(engine);
  std::uint32_t count = 0;
  std::uint64_t packets = 0;
  EXPECT_EQ(view.Get(kNodeCategory)->GetCount(&count), S_OK);
  EXPECT_EQ(count, 3U);
  EXPECT_EQ(view.Get(kConversationCategory)->GetCount(&count), S_OK);
  EXPECT_EQ(count, 1U);
  EXPECT_EQ(view.Get(kHierarchyCategory)->GetCount(&count), S_OK);
  EXPECT_EQ(count, 2U);
  EXPECT_EQ(view.context->GetTotalPackets(&packets), S_OK);
  EXPECT_EQ(packets, 4U);
  EXPECT_EQ(view.Value("Packets of Addresses Not Listed").first, 4U);
  EXPECT_EQ(view.Value("Packets of Conversations Not Listed").first, 1U);
  EXPECT_EQ(view.Value("Packets of Hierarchy Rows Not Listed").first, 3U);
}

// Whatever the limits: both ends of a listed conversation have nodes, its protocol has an entry, and walking the types
// meets every conversation once.
TEST(Engine, ListedConversationsAreWholeUnderEveryLimit) {
  for (std::size_t limit = 0; limit <= 8; ++limit) {
    EngineOptions options;
    options.max_addresses = limit;
    options.max_hierarchy_rows = limit / 2;
    CaptureEngine engine(options);
    FeedSmallCapture(&engine);
    ASSERT_EQ(engine.Context()->ResetStatistics(), S_OK);  // addresses stay, their nodes do not
    FeedSmallCapture(&engine);
    View view(engine);
    ComPtr<IConversationIndex> index;
    ASSERT_EQ(view.context->GetConversationIndex(index.Out()), S_OK);
    auto conversations = view.Get(kConversationCategory);
    auto nodes = view.Get(kNodeCategory);
    auto protocols = view.Get(kProtocolCategory);
    std::uint32_t count = 0;
    ASSERT_EQ(conversations->GetCount(&count), S_OK);
    std::uint32_t walked = 0;
    for (unsigned type = 0; type < 256; ++type) {
      std::uint64_t key = 0;
      std::uint64_t previous = 0;
      for (Status status = index->FirstOfType(static_cast<std::uint8_t>(type), &key); status == S_OK;
           status = index->NextOfType(key, &key)) {
        EXPECT_GT(key, previous) << "in order of first appearance";
        previous = key;
        ++walked;
        ConversationEndpoints ends;
        const NodeEntry* node = nullptr;
        const ProtocolEntry* protocol = nullptr;
        const AddressRecord* source = nullptr;
        ASSERT_EQ(index->Resolve(key, &ends), S_OK);
        EXPECT_EQ(nodes->FindByAddress(ends.source, &node), S_OK);
        EXPECT_EQ(nodes->FindByAddress(ends.destination, &node), S_OK);
        EXPECT_EQ(protocols->FindByKey(ends.protocol, &protocol), S_OK);
        ASSERT_EQ(view.addresses->GetRecord(ends.source, &source), S_OK);
        EXPECT_EQ(source->type, type);
      }
    }
    EXPECT_EQ(walked, count) << limit;
    EXPECT_EQ(count, limit < 2 ? 0U : count);
    EXPECT_EQ(view.Value("Packets of Addresses Not Listed").first == 0, limit >= 7) << limit;
  }
}

class CountingObserver final : public Object<IReportObserver> {
 public:
  std::uint64_t rows = 0;
  Status FileDone(const char16_t*, std::uint64_t more, Status) override {
    rows += more;
    return S_OK;
  }
};

TEST(Engine, OffersAnObserverOnlyWhileOneIsSet) {
  CaptureEngine engine;
  ComPtr<IStatsContext> context = engine.Context();
  ComPtr<IReportObserver> offered;
  EXPECT_EQ(Query(context.get(), &offered), E_NOINTERFACE);
  auto observer = MakeObject<CountingObserver>();
  engine.SetObserver(observer.get());
  ASSERT_EQ(Query(context.get(), &offered), S_OK);
  EXPECT_EQ(offered->FileDone(u"a", 3, S_OK), S_OK);
  EXPECT_EQ(observer->rows, 3U);
  engine.SetObserver(nullptr);
  EXPECT_EQ(Query(context.get(), &offered), E_NOINTERFACE);
}

TEST(Engine, OnlyALiveCaptureHasASite) {
  for (bool live : {false, true}) {
    EngineOptions options;
    options.live = live;
    CaptureEngine engine(options);
    ComPtr<IObjectWithSite> with_site;
    ASSERT_EQ(Query(engine.Context().get(), &with_site), S_OK);
    ComPtr<IEngineSite> site;
    EXPECT_EQ(with_site->GetSite(IEngineSite::kIid, site.OutVoid()), live ? S_OK : E_FAIL);
    EXPECT_EQ(static_cast<bool>(site), live);
  }
}

/// Words every address, as a report does.
void AppendNames(const View& view, IAddressNameService* names) {
  std::uint32_t count = 0;
  view.addresses->GetCount(&count);
  for (std::uint32_t i = 0; i < count; ++i) {
    const AddressRecord* record = nullptr;
    std::u16string text;
    ASSERT_EQ(view.addresses->GetRecord(i, &record), S_OK);
    ASSERT_EQ(names->AppendAddressText(*record, &text), S_OK);
    EXPECT_FALSE(text.empty());
  }
}

TEST(EngineThreads, ReadAndFeedAtTheSameTime) {
  CaptureEngine engine;
  ASSERT_EQ(engine.RegisterClasses(), S_OK);
  ComPtr<IAddressNameService> names;
  ASSERT_EQ(CreateInstance(kAddressNameServiceClass, &names), S_OK);
  // A name server's answer: the name "n" belongs to 10.0.0.2.
  const Buffer answer = {0, 1, 0x80, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 'n', 0, 0, 1, 0, 1, 0, 0, 0, 9, 0, 4, 10, 0, 0, 2};
  std::atomic<bool> done = false;
  std::thread feeder([&] {
    for (int round = 0; round < 300; ++round) {
      Buffer frame = Ethernet(Mac(2), Mac(static_cast<std::uint8_t>(round)), 0x0800,
                              Ipv4(Ip4(static_cast<std::uint8_t>(round)), Ip4(2), 17, Udp(53, 1, answer)));
      engine.Feed(MakePacket(frame, kNewYear + static_cast<std::uint64_t>(round) * kSecond));
      FeedSmallCapture(&engine);
    }
    done = true;
  });
  while (!done) {
    View view(engine);
    auto nodes = view.Get(kNodeCategory);
    std::uint32_t count = 0;
    std::uint64_t sent = 0;
    std::uint64_t packets = 0;
    nodes->GetCount(&count);
    for (std::uint32_t i = 0; i < count; ++i) {
      const NodeEntry* node = nullptr;
      ASSERT_EQ(nodes->GetEntry(i, &node), S_OK);
      if (view.Text(node->address).find(':') != std::string::npos) sent += node->packets_sent;
    }
    view.context->GetTotalPackets(&packets);
    EXPECT_EQ(sent, packets) << "every packet has one physical sender";

    std::uint64_t bytes = 0;
    view.context->GetTotalBytes(&bytes);
    const double* rates = nullptr;
    std::uint32_t seconds = 0;
    auto history = view.Get(kTrafficHistoryCategory);
    history->GetSamples(&rates, &count);
    history->GetInterval(&seconds);
    EXPECT_NEAR(std::accumulate(rates, rates + count, 0.0) * seconds, static_cast<double>(bytes), 0.5);

    ComPtr<IGraphCollection> graphs = engine.Graphs();
    ComPtr<IGraph> graph;
    ComPtr<IGraphSeries> series;
    graphs->GetCount(&count);
    ASSERT_EQ(graphs->GetGraph(1, graph.Out()), S_OK);
    ASSERT_EQ(graph->GetSeries(series.Out()), S_OK);
    std::vector<double> points(400);
    count = 400;
    ASSERT_EQ(series->GetSamples(0, 0, 0, &count, points.data(), nullptr), S_OK);
    EXPECT_EQ(std::accumulate(points.begin(), points.begin() + count, 0.0), static_cast<double>(packets));
    AppendNames(view, names.get());
  }
  feeder.join();
  EXPECT_EQ(engine.packets(), 1500U);
}

/// Of all flows that the expert analysis lists.
std::uint64_t PacketsOfFlows(const View& view) {
  constexpr std::uint32_t kPackets = 10;
  ComPtr<ITableProvider> provider;
  ComPtr<ITable> flows;
  EXPECT_EQ(Query(view.Get(kExpertCategory).get(), &provider), S_OK);
  EXPECT_EQ(provider->GetTable(kTableFlows, 1, flows.Out()), S_OK);
  std::uint32_t count = 0;
  EXPECT_EQ(flows->GetRowCount(&count), S_OK);
  std::uint64_t packets = 0;
  std::u16string text;
  for (std::uint32_t row = 0; row < count; ++row) {
    EXPECT_EQ(flows->GetCell(row, kPackets, &text), S_OK);
    packets += std::stoull(Ascii(text));
  }
  return packets;
}

// Batches of all sizes, some counted by the feeding thread and some by the engine's own, while others read, reset and
// store summaries.
TEST(EngineThreads, CountWhatWasFedBeforeTheyAnswer) {
  constexpr int kHosts = 50;
  std::vector<Buffer> frames;
  std::vector<Packet> packets;
  for (unsigned i = 0; i < 600; ++i) {
    const auto host = static_cast<std::uint8_t>(i % kHosts);
    frames.push_back(Ethernet(Mac(200), Mac(host), 0x0800, Ipv4(Ip4(host), Ip4(200), 17, Udp(2000 + i % 7, 4000))));
  }
  for (const Buffer& frame : frames) packets.push_back(MakePacket(frame));
  auto engine = std::make_unique<CaptureEngine>();
  std::atomic<bool> done = false;
  const ComPtr<IStatsContext> resetting = engine->Context();
  std::thread reader([&] {
    while (!done) {
      const View view(*engine);
      auto nodes = view.Get(kNodeCategory);
      std::uint32_t count = 0;
      std::uint64_t sent = 0;
      std::uint64_t total = 0;
      nodes->GetCount(&count);
      for (std::uint32_t i = 0; i < count; ++i) {
        const NodeEntry* node = nullptr;
        ASSERT_EQ(nodes->GetEntry(i, &node), S_OK);
        sent += node->packets_sent;
      }
      view.context->GetTotalPackets(&total);
      EXPECT_EQ(sent, 2 * total) << "every packet has a physical and a logical sender";
      EXPECT_EQ(PacketsOfFlows(view), total) << "analyses tell of the same packets as tables";
      engine->StoreSummary(u"now");
    }
  });
  std::uint64_t fed = 0;
  for (std::size_t i = 0; i < 400; ++i) {
    const std::size_t count = i * 37 % packets.size();
    engine->Feed(std::span(packets).first(count));
    fed += count;
    if (i % 20 == 0) {
      EXPECT_EQ(engine->packets(), fed);
    }
    if (i % 50 == 49) {
      ASSERT_EQ(resetting->ResetStatistics(), S_OK);
      EXPECT_EQ(engine->packets(), 0U);
      fed = 0;
    }
  }
  done = true;
  reader.join();
  engine->Feed(packets);
  const ComPtr<IStatsContext> last = engine->Context();
  engine->Feed(packets);
  engine.reset();  // with packets on their way; the context holds on
  std::uint64_t total = 0;
  ASSERT_EQ(last->GetTotalPackets(&total), S_OK);
  EXPECT_EQ(total, fed + 2 * packets.size());
}

}  // namespace
}  // namespace orvo::test
