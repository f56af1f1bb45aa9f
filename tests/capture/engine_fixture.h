#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "capture/context/address_text.h"
#include "capture/context/capture_engine.h"
#include "engine/categories.h"
#include "engine/tables.h"
#include "tests/capture/frames.h"
#include "tests/support/ask.h"

namespace orvo::test {

/// Four packets: a name query of 60 bytes, its answer of 100 (with an older time), an ARP broadcast of 42, and a
/// multicast name query of 60.
inline void FeedSmallCapture(CaptureEngine* engine) {
  Buffer query = Ethernet(Mac(2), Mac(1), 0x0800, Ipv4(Ip4(1), Ip4(2), 17, Udp(5000, 53, Zeros(18))));
  Buffer answer = Ethernet(Mac(1), Mac(2), 0x0800, Ipv4(Ip4(2), Ip4(1), 17, Udp(53, 5000, Zeros(58))));
  Buffer arp = Ethernet(BroadcastMac(), Mac(1), 0x0806, Arp());
  Buffer multicast =
      Ethernet(MulticastMac(), Mac(1), 0x0800, Ipv4(Ip4(1), {224, 0, 0, 251}, 17, Udp(5353, 5353, Zeros(18))));
  engine->Feed(MakePacket(query, kNewYear));
  engine->Feed(MakePacket(answer, kNewYear - kSecond));
  engine->Feed(MakePacket(arp, kNewYear + kSecond));
  engine->Feed(MakePacket(multicast, kNewYear + 3 * kSecond));
}

/// What a report sees of an engine at one moment.
struct View {
  explicit View(CaptureEngine& engine) : context(engine.Context()) {
    EXPECT_EQ(context->IsAvailable(), S_OK);
    EXPECT_EQ(context->GetAddressTable(addresses.Out()), S_OK);
  }

  template <class T>
  ComPtr<T> Get(const Category<T>& category) const {
    ComPtr<T> object;
    EXPECT_EQ(GetCategory(context.get(), category, &object), S_OK);
    return object;
  }

  /// All entries of a table; they live as long as the view.
  template <class T>
  auto Entries(const Category<T>& category) const {
    const ComPtr<T> table = Get(category);
    std::vector<decltype(Ask(table)(&T::GetEntry, 0U))> entries(Ask(table)(&T::GetCount));
    for (std::uint32_t i = 0; i < entries.size(); ++i) entries[i] = Ask(table)(&T::GetEntry, i);
    return entries;
  }
  std::uint64_t TotalPackets() const { return Ask(context)(&IStatsContext::GetTotalPackets); }

  std::string Text(std::uint32_t index) const {
    const AddressRecord* record = nullptr;
    if (addresses->GetRecord(index, &record) != S_OK) return "?";
    std::u16string text;
    AppendAddress(*record, &text);
    return Ascii(text);
  }

  std::uint32_t Index(const std::string& text) const {
    for (std::uint32_t i = 0, count = Ask(addresses)(&IAddressTable::GetCount); i < count; ++i) {
      if (Text(i) == text) return i;
    }
    return kNoAddress;
  }
  /// Null without statistics of the address.
  const NodeEntry* Node(const std::string& text) const {
    const NodeEntry* node = nullptr;
    Get(kNodeCategory)->FindByAddress(Index(text), &node);
    return node;
  }

  ComPtr<ISummarySnapshot> Summary(std::uint32_t index = 0) const {
    return Ask(Get(kSummaryCategory))(&ISummaryStats::GetSnapshot, index);
  }

  /// A value of the summary by its display name.
  SummaryValue Value(const std::string& name, std::uint32_t snapshot_index = 0) const {
    const ComPtr<ISummarySnapshot> snapshot = Summary(snapshot_index);
    const auto ask = Ask(snapshot);
    SummaryValue value;
    value.kind = 99;
    for (std::uint32_t i = 0, count = ask(&ISummarySnapshot::GetCount); i < count; ++i) {
      const Guid identifier = ask(&ISummarySnapshot::GetIdentifier, i);
      std::u16string found;
      EXPECT_EQ(snapshot->GetName(identifier, &found), S_OK);
      if (Ascii(found) != name) continue;
      EXPECT_EQ(snapshot->GetValue(identifier, &value), S_OK);
    }
    return value;
  }

  std::vector<std::uint64_t> SizeBuckets() const {
    const auto sizes = Get(kSizeCategory);  // holds the buckets
    const std::uint64_t* buckets = nullptr;
    std::uint32_t count = 0;
    EXPECT_EQ(sizes->GetBuckets(&buckets, &count), S_OK);
    return {buckets, buckets + count};
  }

  /// An analysis table of the expert category.
  ComPtr<ITable> Table(std::uint32_t kind) const {
    ComPtr<ITableProvider> provider;
    EXPECT_EQ(Query(Get(kExpertCategory).get(), &provider), S_OK);
    return Ask(provider)(&ITableProvider::GetTable, kind, 1U);
  }

  ComPtr<IStatsContext> context;
  ComPtr<IAddressTable> addresses;
};

/// The text of a cell.
inline std::string CellOf(const ComPtr<ITable>& table, std::uint32_t row, std::uint32_t column) {
  return Ascii(Ask(table)(&ITable::GetCell, row, column));
}

}  // namespace orvo::test
