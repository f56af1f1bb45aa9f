#pragma once

#include <gtest/gtest.h>

#include <string>

#include "capture/context/address_text.h"
#include "capture/context/capture_engine.h"
#include "engine/categories.h"
#include "tests/capture/frames.h"

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

  std::string Text(std::uint32_t index) const {
    const AddressRecord* record = nullptr;
    if (addresses->GetRecord(index, &record) != S_OK) return "?";
    std::u16string text;
    AppendAddress(*record, &text);
    return Ascii(text);
  }

  std::uint32_t Index(const std::string& text) const {
    std::uint32_t count = 0;
    addresses->GetCount(&count);
    for (std::uint32_t i = 0; i < count; ++i) {
      if (Text(i) == text) return i;
    }
    return kNoAddress;
  }

  ComPtr<ISummarySnapshot> Summary(std::uint32_t index = 0) const {
    ComPtr<ISummarySnapshot> snapshot;
    EXPECT_EQ(Get(kSummaryCategory)->GetSnapshot(index, snapshot.Out()), S_OK);
    return snapshot;
  }

  /// A value of the summary by its display name.
  SummaryValue Value(const std::string& name, std::uint32_t snapshot_index = 0) const {
    ComPtr<ISummarySnapshot> snapshot = Summary(snapshot_index);
    std::uint32_t count = 0;
    snapshot->GetCount(&count);
    SummaryValue value;
    value.kind = 99;
    for (std::uint32_t i = 0; i < count; ++i) {
      Guid identifier;
      std::u16string found;
      EXPECT_EQ(snapshot->GetIdentifier(i, &identifier), S_OK);
      EXPECT_EQ(snapshot->GetName(identifier, &found), S_OK);
      if (Ascii(found) != name) continue;
      EXPECT_EQ(snapshot->GetValue(identifier, &value), S_OK);
    }
    return value;
  }

  ComPtr<IStatsContext> context;
  ComPtr<IAddressTable> addresses;
};

}  // namespace orvo::test
