#include <gtest/gtest.h>

#include "capture/classify/protocol_tree.h"
#include "capture/decode/protocol_registry.h"
#include "capture/tables/address_table.h"
#include "engine/protocols.h"
#include "platform/class_factory.h"
#include "tests/capture/engine_fixture.h"

namespace orvo::test {
namespace {

AddressRecord Record(std::uint8_t type, const Buffer& bytes) {
  AddressRecord record;
  record.valid = 1;
  record.type = type;
  record.length = static_cast<std::uint8_t>(bytes.size());
  std::copy_n(bytes.begin(), std::min(bytes.size(), record.bytes.size()), record.bytes.begin());
  return record;
}

/// The record of the place that an empty frame of Ethernet counts under.
AddressRecord EthernetEntry() {
  PacketFacts facts = Decoded(MakePacket({}));
  return ProtocolRecord(ProtocolTree::Get().Classify(facts));
}

TEST(AddressText, FollowsTheNotationOfEachType) {
  auto groups = [](std::initializer_list<unsigned> values) {
    Buffer bytes;
    for (unsigned value : values) bytes = bytes + Be16(value);
    return bytes;
  };
  const std::pair<AddressRecord, const char*> cases[] = {
      {Record(kAddressIp, {192, 168, 0, 1}), "192.168.0.1"},
      {Record(kAddressPhysical, {0, 0x1B, 0x21, 0xAB, 0xCD, 0x0F}), "00:1b:21:ab:cd:0f"},
      {Record(kAddressTokenRing, {0, 0x1B, 0x21, 0xAB, 0xCD, 0x0F}), "00:1b:21:ab:cd:0f"},
      {Record(kAddressIpv6, groups({0, 0, 0, 0, 0, 0, 0, 0})), "::"},
      {Record(kAddressIpv6, groups({0, 0, 0, 0, 0, 0, 0, 1})), "::1"},
      {Record(kAddressIpv6, groups({0xFE80, 0, 0, 0, 0, 0, 0, 0})), "fe80::"},
      {Record(kAddressIpv6, groups({0x2001, 0xDB8, 0, 1, 1, 1, 1, 1})), "2001:db8:0:1:1:1:1:1"},  // one zero stays
      {Record(kAddressIpv6, groups({0x2001, 0, 0, 1, 0, 0, 0, 1})), "2001:0:0:1::1"},             // the longer run
      {Record(kAddressIpv6, groups({0x2001, 0xDB8, 0, 0, 1, 0, 0, 1})), "2001:db8::1:0:0:1"},     // the first of two
      {Record(kAddressIpv6, groups({0, 0, 1, 2, 3, 4, 5, 6})), "::1:2:3:4:5:6"},
      {Record(kAddressIpv6, groups({0, 0, 0, 0, 0, 0xFFFF, 0xC000, 0x0201})), "::ffff:192.0.2.1"},
      {Record(kAddressIpx, {0, 0, 0x12, 0xAB, 0, 1, 2, 3, 4, 5}), "000012ab.000102030405"},
      {Record(kAddressAppleTalk, {0xFF, 0, 200}), "65280.200"},
      {Record(kAddressDecnet, {0x06, 0x01}), "1.513"},
      {Record(kAddressWan, {1, 0}), "256"},
      {EthernetEntry(), "Ethernet"},
      {Record(kAddressProtocol, {0, 0}), ""},
      {Record(kAddressIp, {1, 2, 3}), "010203"},  // a length that does not fit
      {Record(99, {1, 2}), "0102"},
      {Record(kAddressIpv6, Buffer(40, 0xAA)), "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa"},
      {AddressRecord{}, ""},
  };
  for (const auto& [record, expected] : cases) {
    std::u16string text = u"<";
    AppendAddress(record, &text);
    EXPECT_EQ(Ascii(text), std::string("<") + expected);
  }
}

TEST(NameServices, AreCreatedByClassIdentifierWhileTheyAreRegistered) {
  CaptureEngine engine;
  ComPtr<IAddressNameService> addresses;
  ComPtr<IProtocolNameService> protocols;
  ComPtr<IStatsContext> snapshot;
  ASSERT_EQ(engine.RegisterClasses(), S_OK);
  EXPECT_EQ(CreateInstance(kAddressNameServiceClass, &addresses), S_OK);
  EXPECT_EQ(CreateInstance(kProtocolNameServiceClass, &protocols), S_OK);
  EXPECT_EQ(CreateInstance(kStatsSnapshotClass, &snapshot), S_OK);
  EXPECT_EQ(CreateInstance(kProtocolNameServiceClass, &addresses), E_NOINTERFACE);
  engine.RevokeClasses();
  EXPECT_EQ(CreateInstance(kProtocolNameServiceClass, &protocols), REGDB_E_CLASSNOTREG);
}

TEST(NameServices, SayNamesWhereOnesAreKnown) {
  const AddressRecord host = Record(kAddressIp, {10, 0, 0, 1});
  for (bool plain : {false, true}) {
    EngineOptions options;
    options.plain_addresses = plain;
    CaptureEngine engine(options);
    ASSERT_EQ(engine.RegisterClasses(), S_OK);
    ComPtr<IAddressNameService> service;
    ASSERT_EQ(CreateInstance(kAddressNameServiceClass, &service), S_OK);
    EXPECT_EQ(engine.LearnName(host, u"old"), !plain);
    EXPECT_EQ(engine.LearnName(host, u"ho\nst\u0085"), !plain);
    EXPECT_FALSE(engine.LearnName(host, u""));
    std::u16string text;
    EXPECT_EQ(service->AppendAddressText(host, &text), S_OK);
    EXPECT_EQ(Ascii(text), plain ? "10.0.0.1" : "ho?st?");
    text.clear();
    EXPECT_EQ(service->AppendAddressText(Record(kAddressIp, {10, 0, 0, 2}), &text), S_OK);
    EXPECT_EQ(Ascii(text), "10.0.0.2");
    EXPECT_EQ(service->AppendAddressText(host, nullptr), E_POINTER);
    text.clear();
    for (std::uint8_t type : {kAddressIp, kAddressIpv6, kAddressPhysical, kAddressProtocol, kAddressIpx, kAddressDecnet,
                              kAddressAppleTalk, static_cast<AddressType>(200)}) {
      EXPECT_EQ(service->AppendTypeLabel(type, &text), S_OK);
      text += u'|';
    }
    EXPECT_EQ(text, u"||||IPX |DECnet |AppleTalk ||");
  }
}

TEST(NameServices, WalkTheProtocolTree) {
  CaptureEngine engine;
  ASSERT_EQ(engine.RegisterClasses(), S_OK);
  ComPtr<IProtocolNameService> service;
  ASSERT_EQ(CreateInstance(kProtocolNameServiceClass, &service), S_OK);
  FeedSmallCapture(&engine);
  View view(engine);
  const AddressRecord* record = nullptr;
  ASSERT_EQ(view.addresses->GetRecord(view.Index("DNS"), &record), S_OK);
  std::uint16_t chain[kProtocolChainLimit] = {};
  std::uint32_t count = 0;
  ASSERT_EQ(service->GetChain(ProtocolNumber(*record), chain, kProtocolChainLimit, &count), S_OK);
  std::u16string path;
  for (std::uint32_t i = 0; i < count; ++i) {
    EXPECT_EQ(service->IsTopLevel(chain[i]), i + 1 == count ? S_OK : S_FALSE);
    EXPECT_EQ(service->AppendName(chain[i], &path), S_OK);
    path += u'/';
  }
  EXPECT_EQ(path, u"DNS/UDP/IPv4/Ethernet/");
  EXPECT_EQ(chain[0], ProtocolNumber(*record));
  ASSERT_EQ(service->GetChain(ProtocolNumber(*record), chain, 2, &count), S_OK);
  EXPECT_EQ(count, 2U);
  for (std::uint16_t unknown : {std::uint16_t{0}, std::uint16_t{0xFFFF}}) {
    EXPECT_EQ(service->IsTopLevel(unknown), S_FALSE);
    EXPECT_EQ(service->AppendName(unknown, &path), S_FALSE);
    EXPECT_EQ(service->GetChain(unknown, chain, kProtocolChainLimit, &count), S_OK);
    EXPECT_EQ(count, 0U);
  }
}

}  // namespace
}  // namespace orvo::test
