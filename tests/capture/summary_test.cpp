#include <gtest/gtest.h>

#include <bit>
#include <set>

#include "tests/capture/engine_fixture.h"

namespace orvo::test {
namespace {

void FeedErrors(CaptureEngine* engine) {
  Buffer error = Ethernet(Mac(2), Mac(1), 0x0800, Ipv4(Ip4(1), Ip4(2), 1, Icmp(3)));
  Buffer reset = Ethernet(Mac(2), Mac(1), 0x8100, Vlan(0x0800, Ipv4(Ip4(1), Ip4(2), 6, Tcp(1, 80, 0x06))));
  Buffer bad = Ethernet(Mac(2), Mac(1), 0x0800, {0x11});
  engine->Feed(MakePacket(error, kNewYear + kSecond));
  engine->Feed(MakePacket(error, kNewYear));
  engine->Feed(MakePacket(reset, kNewYear));
  engine->Feed(MakePacket(bad, kNewYear));
  Packet part = MakePacket(bad, kNewYear);
  part.original_length = 1514;
  engine->Feed(part);
  engine->SetDropped(12);
}

TEST(Summary, SaysWhatWasCounted) {
  CaptureEngine engine;
  FeedSmallCapture(&engine);
  FeedErrors(&engine);
  View view(engine);
  const struct {
    const char* name;
    SummaryKind kind;
    std::uint64_t first;
    std::uint64_t second = 0;
  } cases[] = {
      {"Start Date", kSummaryDate, kNewYear - kSecond},
      {"Start Time", kSummaryTime, kNewYear - kSecond},
      {"Duration", kSummaryDuration, 4 * kSecond},
      {"Time of Last Packet", kSummaryTime, kNewYear + 3 * kSecond},
      {"Total Packets", kSummaryPackets, 9},
      {"Total Bytes", kSummaryBytes, 262 + 42 + 42 + 58 + 15 + 1514},
      {"Total Broadcast", kSummaryPacketsAndBytes, 1, 42},
      {"Total Multicast", kSummaryPacketsAndBytes, 1, 60},
      {"VLAN Tagged", kSummaryPacketsAndBytes, 1, 58},
      {"Malformed Packets", kSummaryPackets, 1},
      {"Packets Captured in Part", kSummaryPackets, 1},
      {"Packets Dropped by the Capture", kSummaryPackets, 12},
      {"Packets out of Time Order", kSummaryPackets, 3},
      {"ICMP Errors", kSummaryPacketsAndBytes, 2, 84},
      {"Time of Last ICMP Error", kSummaryTime, kNewYear + kSecond},
      {"SYN Packets", kSummaryPackets, 1},
      {"RST Packets", kSummaryPackets, 1},
      {"FIN Packets", kSummaryPackets, 0},
      {"Physical Addresses", kSummaryInteger, 4},
      {"IP Addresses", kSummaryInteger, 3},
      {"Protocols", kSummaryInteger, 6},
      {"Smallest Packet", kSummaryInteger, 15},
      {"Largest Packet", kSummaryInteger, 1514},
      {"Average Packet Size", kSummaryReal, std::bit_cast<std::uint64_t>(1933.0 / 9)},
      {"Average Packets per Second", kSummaryReal, std::bit_cast<std::uint64_t>(9.0 / 4)},
      {"64 Bytes or Fewer", kSummaryPackets, 7},
  };
  for (const auto& c : cases) {
    SummaryValue value = view.Value(c.name);
    EXPECT_EQ(value.kind, c.kind) << c.name;
    EXPECT_EQ(value.first, c.first) << c.name;
    EXPECT_EQ(value.second, c.second) << c.name;
  }
}

TEST(Summary, WhatHasNoValueHasNoKind) {
  CaptureEngine engine;
  View empty(engine);
  for (const char* name :
       {"Start Date", "Time of Last ICMP Error", "Smallest Packet", "Average Packet Size", "Average Bits per Second"}) {
    EXPECT_EQ(empty.Value(name).kind, kSummaryNone) << name;
  }
  EXPECT_EQ(empty.Value("Total Packets").kind, kSummaryPackets);
  EXPECT_EQ(empty.Value("Duration").kind, kSummaryDuration);
}

TEST(Summary, EveryStatisticHasANameAndAGroup) {
  CaptureEngine engine;
  View view(engine);
  ComPtr<ISummarySnapshot> snapshot = view.Summary();
  const auto ask = Ask(snapshot);
  std::set<Guid> identifiers;
  Guid first_group;
  Guid previous_group;
  std::set<Guid> groups;
  for (std::uint32_t i = 0, count = ask(&ISummarySnapshot::GetCount); i < count; ++i) {
    const Guid identifier = ask(&ISummarySnapshot::GetIdentifier, i);
    const Guid group = ask(&ISummarySnapshot::GetParent, identifier);
    EXPECT_TRUE(identifiers.insert(identifier).second);
    EXPECT_FALSE(ask(&ISummarySnapshot::GetName, identifier).empty());
    EXPECT_FALSE(ask(&ISummarySnapshot::GetName, group).empty());
    if (i == 0) first_group = group;
    EXPECT_EQ(groups.insert(group).second, group != previous_group) << "groups stand together";
    previous_group = group;
  }
  for (const Guid& known :
       {kStatTotalPackets, kStatTotalBytes, kStatDuration, kStatStartDate, kStatStartTime, kStatFirstGroup}) {
    EXPECT_EQ(identifiers.count(known), 1U);
  }
  EXPECT_EQ(ask(&ISummarySnapshot::GetParent, kStatFirstGroup), first_group);
}

TEST(Summary, UnknownIdentifiersHaveEmptyResults) {
  CaptureEngine engine;
  ComPtr<ISummarySnapshot> snapshot = View(engine).Summary();
  Guid group = kStatDuration;
  SummaryValue value{kSummaryBytes, 1, 1};
  std::u16string name = u"x";
  EXPECT_EQ(snapshot->GetValue(Guid{}, &value), S_FALSE);
  EXPECT_EQ(snapshot->GetName(Guid{}, &name), S_FALSE);
  EXPECT_EQ(snapshot->GetParent(Guid{}, &group), S_FALSE);
  EXPECT_EQ(snapshot->GetIdentifier(9999, &group), S_FALSE);
  EXPECT_EQ(value.kind, kSummaryNone);
  EXPECT_EQ(name, u"");
  EXPECT_EQ(group, Guid{});
}

TEST(Summary, StoredOnesStandBesideThePresentOne) {
  EngineOptions options;
  options.max_stored_summaries = 2;
  CaptureEngine engine(options);
  engine.StoreSummary(u"dropped");
  engine.StoreSummary(u"before");
  FeedSmallCapture(&engine);
  engine.StoreSummary(u"after");
  FeedSmallCapture(&engine);
  View view(engine);
  ASSERT_EQ(Ask(view.Get(kSummaryCategory))(&ISummaryStats::GetSnapshotCount), 3U);
  const std::pair<const char16_t*, std::uint64_t> expected[] = {{u"Current", 8}, {u"before", 0}, {u"after", 4}};
  for (std::uint32_t i = 0; i < 3; ++i) {
    EXPECT_EQ(Ask(view.Summary(i))(&ISummarySnapshot::GetSnapshotName), expected[i].first);
    EXPECT_EQ(view.Value("Total Packets", i).first, expected[i].second);
  }
  ComPtr<ISummarySnapshot> none;
  EXPECT_EQ(view.Get(kSummaryCategory)->GetSnapshot(3, none.Out()), E_INVALIDARG);
}

}  // namespace
}  // namespace orvo::test
