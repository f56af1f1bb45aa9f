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
  const auto node_rows = view.Entries(kNodeCategory);
  EXPECT_EQ(node_rows.size(), 7U);
  for (const NodeEntry* node : node_rows) EXPECT_EQ(Ask(nodes)(&INodeStats::FindByAddress, node->address), node);
  const NodeEntry* node = node_rows[0];
  EXPECT_EQ(nodes->GetEntry(7, &node), E_INVALIDARG);
  EXPECT_EQ(nodes->FindByAddress(kNoAddress, &node), S_FALSE);
  EXPECT_EQ(node, nullptr);

  auto protocols = view.Get(kProtocolCategory);
  const auto protocol_rows = view.Entries(kProtocolCategory);
  EXPECT_EQ(protocol_rows.size(), 3U);
  for (const ProtocolEntry* row : protocol_rows) EXPECT_EQ(Ask(protocols)(&IProtocolStats::FindByKey, row->key), row);
  const ProtocolEntry* protocol = nullptr;
  EXPECT_EQ(protocols->FindByKey(view.Index("10.0.0.1"), &protocol), S_FALSE);

  const auto index = Ask(view.context)(&IStatsContext::GetConversationIndex);
  auto conversations = view.Get(kConversationCategory);
  std::uint64_t key = Ask(index)(&IConversationIndex::FirstOfType, kAddressIp);
  EXPECT_EQ(Ask(conversations)(&IConversationStats::FindByKey, key)->key, key);
  EXPECT_EQ(index->FirstOfType(kAddressIpx, &key), S_FALSE);
  for (std::uint64_t wrong : {std::uint64_t{0}, std::uint64_t{99}, ~std::uint64_t{0}}) {
    ConversationEndpoints ends;
    const ConversationEntry* conversation = nullptr;
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
  EXPECT_EQ(Ask(view.context)(&IStatsContext::GetStartTime), kNewYear - kSecond);
  EXPECT_EQ(Ask(view.context)(&IStatsContext::GetDuration), 4 * kSecond);
  const NodeEntry* node = view.Node("10.0.0.2");
  ASSERT_NE(node, nullptr);
  EXPECT_EQ(node->first_time_sent, kNewYear - kSecond);
  EXPECT_EQ(node->last_time_sent, kNewYear - kSecond);
  EXPECT_EQ(node->first_time_received, kNewYear);
}

TEST(Engine, PutsLogicalAddressesBehindPhysicalOnes) {
  CaptureEngine engine;
  FeedSmallCapture(&engine);
  View view(engine);
  std::map<std::string, std::string> found;
  for (const HierarchyEntry* entry : view.Entries(kHierarchyCategory)) {
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
    EXPECT_EQ(View(engine).Entries(kNodeCategory).at(0)->min_size_sent, std::min(size, 0xFFFEU));
  }
}

TEST(Engine, OneEpochLastsUntilAvailabilityIsAskedAgain) {
  CaptureEngine engine;
  FeedSmallCapture(&engine);
  ComPtr<IStatsContext> context = engine.Context();
  ASSERT_EQ(context->IsAvailable(), S_OK);
  ComPtr<INodeStats> early;
  ASSERT_EQ(GetCategory(context.get(), kNodeCategory, &early), S_OK);
  const NodeEntry* node = Ask(early)(&INodeStats::GetEntry, 0U);
  const std::uint64_t before = node->packets_sent;

  FeedSmallCapture(&engine);
  Buffer stranger = Ethernet(Mac(2), Mac(77), 0x0806, Arp());
  engine.Feed(MakePacket(stranger));
  const auto packets = [](const ComPtr<IStatsContext>& of) { return Ask(of)(&IStatsContext::GetTotalPackets); };
  EXPECT_EQ(packets(context), 4U);
  EXPECT_EQ(Ask(Ask(context)(&IStatsContext::GetAddressTable))(&IAddressTable::GetCount), 10U)
      << "4 physical, 3 logical, 3 protocols";
  EXPECT_EQ(node->packets_sent, before);
  EXPECT_EQ(packets(engine.Context()), 9U) << "another context starts with an epoch of its own";
  ASSERT_EQ(context->IsAvailable(), S_OK);
  EXPECT_EQ(packets(context), 9U);
  EXPECT_EQ(node->packets_sent, before) << "what was handed out does not change";
}

TEST(Engine, AnEmptyCaptureIsAvailable) {
  CaptureEngine engine;
  ComPtr<IStatsContext> context = engine.Context();
  EXPECT_EQ(context->IsAvailable(), S_OK);
  EXPECT_EQ(Ask(context)(&IStatsContext::GetStartTime), 0U);
  EXPECT_EQ(Ask(context)(&IStatsContext::GetMediumType), kMediumEthernet);
  EXPECT_EQ(Ask(context)(&IStatsContext::GetMediumSubtype), kSubtypeWired);
  EXPECT_EQ(context->GetTotalPackets(nullptr), E_POINTER);
}

TEST(Engine, OffersAnalysisTables) {
  CaptureEngine engine;
  View view(engine);
  EXPECT_EQ(Ask(view.Table(kTableMedia))(&ITable::GetRowCount), 0U);
  ComPtr<ITableProvider> provider;
  ASSERT_EQ(Query(view.Get(kExpertCategory).get(), &provider), S_OK);
  ComPtr<ITable> table;
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
  EXPECT_EQ(after.TotalPackets(), 1U);
  EXPECT_EQ(after.Index("10.0.0.1"), before.Index("10.0.0.1"));
  EXPECT_EQ(after.Entries(kNodeCategory).size(), 4U);
  EXPECT_EQ(after.Node("224.0.0.251"), nullptr);
  ASSERT_NE(after.Node("10.0.0.2"), nullptr);
  EXPECT_EQ(after.Node("10.0.0.2")->packets_sent, 1U);
}

TEST(Engine, LimitsBoundTheTablesAndTheSummarySaysSo) {
  EngineOptions options;
  options.max_addresses = 3;
  options.max_conversations = 1;
  options.max_hierarchy_rows = 2;
  CaptureEngine engine(options);
  FeedSmallCapture(&engine);
  View view(engine);
  EXPECT_EQ(view.Entries(kNodeCategory).size(), 3U);
  EXPECT_EQ(view.Entries(kConversationCategory).size(), 1U);
  EXPECT_EQ(view.Entries(kHierarchyCategory).size(), 2U);
  EXPECT_EQ(view.TotalPackets(), 4U);
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
    const auto index = Ask(view.context)(&IStatsContext::GetConversationIndex);
    auto nodes = view.Get(kNodeCategory);
    auto protocols = view.Get(kProtocolCategory);
    const std::size_t count = view.Entries(kConversationCategory).size();
    std::size_t walked = 0;
    for (unsigned type = 0; type < 256; ++type) {
      std::uint64_t key = 0;
      std::uint64_t previous = 0;
      for (Status status = index->FirstOfType(static_cast<std::uint8_t>(type), &key); status == S_OK;
           status = index->NextOfType(key, &key)) {
        EXPECT_GT(key, previous) << "in order of first appearance";
        previous = key;
        ++walked;
        const ConversationEndpoints ends = Ask(index)(&IConversationIndex::Resolve, key);
        for (std::uint32_t end : {ends.source, ends.destination}) Ask(nodes)(&INodeStats::FindByAddress, end);
        Ask(protocols)(&IProtocolStats::FindByKey, ends.protocol);
        EXPECT_EQ(Ask(view.addresses)(&IAddressTable::GetRecord, ends.source)->type, type);
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
  for (std::uint32_t i = 0, count = Ask(view.addresses)(&IAddressTable::GetCount); i < count; ++i) {
    std::u16string text;
    ASSERT_EQ(names->AppendAddressText(*Ask(view.addresses)(&IAddressTable::GetRecord, i), &text), S_OK);
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
    std::uint64_t sent = 0;
    for (const NodeEntry* node : view.Entries(kNodeCategory)) {
      if (view.Text(node->address).find(':') != std::string::npos) sent += node->packets_sent;
    }
    EXPECT_EQ(sent, view.TotalPackets()) << "every packet has one physical sender";

    const double* rates = nullptr;
    std::uint32_t count = 0;
    auto history = view.Get(kTrafficHistoryCategory);
    history->GetSamples(&rates, &count);
    EXPECT_NEAR(std::accumulate(rates, rates + count, 0.0) * Ask(history)(&ITrafficHistory::GetInterval),
                static_cast<double>(Ask(view.context)(&IStatsContext::GetTotalBytes)), 0.5);

    const auto series = Ask(Ask(engine.Graphs())(&IGraphCollection::GetGraph, 1U))(&IGraph::GetSeries);
    std::vector<double> points(400);
    count = 400;
    ASSERT_EQ(series->GetSamples(0, 0, 0, &count, points.data(), nullptr), S_OK);
    EXPECT_EQ(std::accumulate(points.begin(), points.begin() + count, 0.0), static_cast<double>(view.TotalPackets()));
    AppendNames(view, names.get());
  }
  feeder.join();
  EXPECT_EQ(engine.packets(), 1500U);
}

/// Of all flows that the expert analysis lists.
std::uint64_t PacketsOfFlows(const View& view) {
  constexpr std::uint32_t kPackets = 10;
  const ComPtr<ITable> flows = view.Table(kTableFlows);
  std::uint64_t packets = 0;
  for (std::uint32_t row = 0, count = Ask(flows)(&ITable::GetRowCount); row < count; ++row) {
    packets += std::stoull(CellOf(flows, row, kPackets));
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
      std::uint64_t sent = 0;
      for (const NodeEntry* node : view.Entries(kNodeCategory)) sent += node->packets_sent;
      EXPECT_EQ(sent, 2 * view.TotalPackets()) << "every packet has a physical and a logical sender";
      EXPECT_EQ(PacketsOfFlows(view), view.TotalPackets()) << "analyses tell of the same packets as tables";
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
  EXPECT_EQ(Ask(last)(&IStatsContext::GetTotalPackets), fed + 2 * packets.size());
}

}  // namespace
}  // namespace orvo::test
