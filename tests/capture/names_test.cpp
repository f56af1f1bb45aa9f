// Where names of addresses come from: the wire, files, the registries of vendors.

#include <gtest/gtest.h>

#include "capture/names/dns_names.h"
#include "capture/names/hosts_file.h"
#include "capture/names/vendor_table.h"
#include "platform/class_factory.h"
#include "tests/capture/engine_fixture.h"
#include "tests/support/temporary_folder.h"

namespace orvo::test {
namespace {

constexpr unsigned kA = 1, kCname = 5, kPtr = 12, kAaaa = 28;

Buffer Bytes(std::string_view text) {
  return {text.begin(), text.end()};
}
/// A name as labels; dots separate.
Buffer Labels(std::string_view name) {
  Buffer labels;
  while (!name.empty()) {
    std::string_view label = name.substr(0, name.find('.'));
    name.remove_prefix(std::min(label.size() + 1, name.size()));
    labels = labels + Buffer{static_cast<std::uint8_t>(label.size())} + Bytes(label);
  }
  return labels + Buffer{0};
}
Buffer Record(const Buffer& owner, unsigned type, const Buffer& data, unsigned record_class = 1, unsigned ttl = 60) {
  return owner + Be16(type) + Be16(record_class) + Be16(0) + Be16(ttl) + Be16(static_cast<unsigned>(data.size())) +
         data;
}
/// A message without questions.
Buffer Message(const std::vector<Buffer>& answers, const std::vector<Buffer>& additional = {},
               unsigned flags = 0x8180) {
  Buffer message = Be16(7) + Be16(flags) + Be16(0) + Be16(static_cast<unsigned>(answers.size())) + Be16(0) +
                   Be16(static_cast<unsigned>(additional.size()));
  for (const Buffer& record : answers) message = message + record;
  for (const Buffer& record : additional) message = message + record;
  return message;
}

std::string Text(const AddressRecord& address) {
  std::u16string text;
  AppendAddress(address, &text);
  return Ascii(text);
}

/// What a message tells, as "address name" lines.
std::string Heard(const Buffer& message) {
  std::vector<KnownName> names;
  ReadDnsMessage(message, &names);
  std::string lines;
  for (const KnownName& known : names) lines += Text(known.address) + " " + Ascii(known.name) + "\n";
  return lines;
}

TEST(DnsNames, AreThoseThatWereAskedFor) {
  const Buffer www = Labels("WWW.Example.com");
  const Buffer pointer = {0xC0, 12};  // to the first record's name
  const struct {
    const char* what;
    Buffer message;
    const char* heard;
  } cases[] = {
      {"A", Message({Record(www, kA, Ip4(1)), Record(pointer, kA, Ip4(2))}),
       "10.0.0.1 www.example.com\n10.0.0.2 www.example.com\n"},
      {"AAAA", Message({Record(www, kAaaa, Ip6(1))}), "2001:db8::1 www.example.com\n"},
      {"aliases, in whatever order",
       Message({Record(Labels("b.cdn"), kCname, Labels("c.cdn")), Record(Labels("c.cdn"), kA, Ip4(3)),
                Record(www, kCname, Labels("B.cdn"))}),
       "10.0.0.3 www.example.com\n"},
      {"aliases in a circle",
       Message({Record(Labels("a"), kCname, Labels("b")), Record(Labels("b"), kCname, Labels("a")),
                Record(Labels("a"), kA, Ip4(1))}),
       "10.0.0.1 a\n"},
      {"PTR", Message({Record(Labels("9.0.0.10.in-addr.arpa"), kPtr, Labels("printer.lan"))}),
       "10.0.0.9 printer.lan\n"},
      {"PTR of IPv6",
       Message({Record(Labels("5.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.0.8.b.d.0.1.0.0.2.IP6.ARPA"), kPtr,
                       Labels("six.lan"))}),
       "2001:db8::5 six.lan\n"},
      {"PTR of a service", Message({Record(Labels("_ipp._tcp.local"), kPtr, Labels("x._ipp._tcp.local"))}), ""},
      {"PTR of nearly an address",
       Message({Record(Labels("256.0.0.10.in-addr.arpa"), kPtr, Labels("a.lan")),
                Record(Labels("0.0.10.in-addr.arpa"), kPtr, Labels("a.lan")),
                Record(Labels("1.1.0.0.10.in-addr.arpa"), kPtr, Labels("a.lan")),
                Record(Labels("in-addr.arpa"), kPtr, Labels("a.lan"))}),
       ""},
      {"multicast DNS, which marks the class, and announces in the additional section",
       Message({}, {Record(Labels("laptop.local"), kA, Ip4(4), 0x8001)}, 0x8400), "10.0.0.4 laptop.local\n"},
      {"a name not to be kept", Message({Record(www, kA, Ip4(1), 1, 0)}), "10.0.0.1 www.example.com\n"},
      {"another class", Message({Record(www, kA, Ip4(1), 3)}), ""},
      {"a question", Message({Record(www, kA, Ip4(1))}, {}, 0x0100), ""},
      {"an error", Message({Record(www, kA, Ip4(1))}, {}, 0x8183), ""},
      {"an update", Message({Record(www, kA, Ip4(1))}, {}, 0xA800), ""},
      {"an address of a wrong length", Message({Record(www, kA, {1, 2, 3}), Record(www, kAaaa, Ip4(1))}), ""},
      {"addresses of no host",
       Message({Record(www, kA, {0, 0, 0, 0}), Record(www, kA, {127, 0, 0, 1}), Record(www, kA, {224, 0, 0, 1}),
                Record(www, kA, {255, 255, 255, 255}), Record(www, kAaaa, Zeros(16)),
                Record(www, kAaaa, Zeros(15) + Buffer{1}), Record(www, kAaaa, Buffer{0xFF} + Zeros(15))}),
       ""},
      {"names that read like addresses", Message({Record(Labels("10.0.0.7"), kA, Ip4(1)), Record({0}, kA, Ip4(1))}),
       ""},
  };
  for (const auto& c : cases) EXPECT_EQ(Heard(c.message), c.heard) << c.what;
}

TEST(DnsNames, HoldNoCharacterThatActs) {
  const std::pair<Buffer, std::u16string> cases[] = {
      {Bytes("=1+\"x,"), u"?1??x?"},
      {{'a', 0, '\n', 0x1B, 0x7F}, u"a????"},
      {Bytes("a.b\\c/d"), u"a.b?c?d"},  // a dot within a label
      {Bytes("J\xC3\xBCrgen"), u"j\u00FCrgen"},
      // Turns the text behind it. NOLINTNEXTLINE(misc-misleading-bidirectional)
      {Bytes("\xE2\x80\xAE"
             "cod"),
       u"?cod"},
      {{'x', 0xC3, 0xFF}, u"x??"},
      {Bytes("under_score-1"), u"under_score-1"},
      {Bytes("-1-x"), u"?1-x"},  // begins like a formula
      {Bytes("\xEF\xBC\x9D"
             "1\xEF\xBC\x8C"
             "2"),
       u"?1?2"},  // the wide forms of "=" and ","
      {Bytes("a\xC2\xA0"
             "b\xE2\x80\x83"
             "c\xE1\xA0\x8E"
             "d\xEF\xB8\x8F"
             "e"),
       u"a?b?c?d?e"},  // blanks, and what leaves no mark
  };
  for (const auto& [label, expected] : cases) {
    std::vector<KnownName> names;
    Buffer owner = Buffer{static_cast<std::uint8_t>(label.size())} + label + Buffer{0};
    ReadDnsMessage(Message({Record(owner, kA, Ip4(1))}), &names);
    ASSERT_EQ(names.size(), 1U) << Ascii(expected);
    EXPECT_EQ(names[0].name, expected);
  }
}

TEST(DnsNames, SurviveEveryDamage) {
  const Buffer good = Message({Record(Labels("www.example.com"), kCname, {0xC0, 16}), Record({0xC0, 16}, kA, Ip4(1)),
                               Record(Labels("1.0.0.10.in-addr.arpa"), kPtr, {0xC0, 12})});
  for (std::size_t cut = 0; cut < good.size(); ++cut) {
    EXPECT_EQ(Heard(Buffer(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(cut))), "") << cut;
  }
  std::size_t told = 0;
  for (std::size_t at = 0; at < good.size(); ++at) {
    for (unsigned value : {0x00U, 0x3FU, 0xC0U, 0xFFU, good[at] ^ 1U}) {
      Buffer bad = good;
      bad[at] = static_cast<std::uint8_t>(value);
      told += !Heard(bad).empty();
    }
  }
  EXPECT_GT(told, 0U);
  const Buffer loop = Message({Record({0xC0, 12}, kA, Ip4(1))});  // a name that points to itself
  EXPECT_EQ(Heard(loop), "");
}

/// What the address name service says, once packets were fed.
class NamedEngine {
 public:
  explicit NamedEngine(const EngineOptions& options = {}) : engine(options) {
    EXPECT_EQ(engine.RegisterClasses(), S_OK);
    EXPECT_EQ(CreateInstance(kAddressNameServiceClass, &service_), S_OK);
  }

  void Feed(const Buffer& transport, std::uint8_t protocol = 17) {
    const Buffer frame = Frame(transport, protocol);
    engine.Feed(MakePacket(frame));
  }
  /// Packets of UDP at once, as a source gives them.
  void FeedAll(const std::vector<Buffer>& transports) {
    std::vector<Buffer> frames;
    std::vector<Packet> packets;
    for (const Buffer& transport : transports) frames.push_back(Frame(transport, 17));
    for (const Buffer& frame : frames) packets.push_back(MakePacket(frame));
    engine.Feed(packets);
  }
  std::string Name(AddressType type, const Buffer& bytes) {
    AddressRecord record;
    record.valid = 1;
    record.type = type;
    record.length = static_cast<std::uint8_t>(bytes.size());
    std::copy(bytes.begin(), bytes.end(), record.bytes.begin());
    std::u16string text;
    EXPECT_EQ(service_->AppendAddressText(record, &text), S_OK);
    return Ascii(text);
  }

  CaptureEngine engine;

 private:
  static Buffer Frame(const Buffer& transport, std::uint8_t protocol) {
    return Ethernet(Mac(2), Mac(1), 0x0800, Ipv4(Ip4(1), Ip4(2), protocol, transport));
  }

  ComPtr<IAddressNameService> service_;
};

TEST(Names, AreHeardFromNameServersOnly) {
  const Buffer answer = Message({Record(Labels("heard"), kA, Ip4(9))});
  const Buffer whole = Be16(static_cast<unsigned>(answer.size())) + answer;
  const Buffer half(whole.begin(), whole.end() - 1);
  const struct {
    const char* what;
    Buffer transport;
    std::uint8_t protocol;
    bool heard;
  } cases[] = {
      {"DNS", Udp(53, 4000, answer), 17, true},
      {"multicast DNS", Udp(5353, 5353, answer), 17, true},
      {"LLMNR", Udp(5355, 4000, answer), 17, true},
      {"towards the server", Udp(4000, 53, answer), 17, false},
      {"another port", Udp(54, 4000, answer), 17, false},
      {"TCP", Tcp(53, 4000, 0x18, whole), 6, true},
      {"TCP, the second of two messages", Tcp(53, 4000, 0x18, Buffer{0, 1, 0} + whole), 6, true},
      {"TCP, in part", Tcp(53, 4000, 0x18, half), 6, false},
      {"TCP, a length without a message", Tcp(53, 4000, 0x18, {0, 0, 0, 0, 0}), 6, false},
      {"UDP with a length", Udp(53, 4000, whole), 17, false},
  };
  for (const auto& c : cases) {
    NamedEngine named;
    named.Feed(c.transport, c.protocol);
    EXPECT_EQ(named.Name(kAddressIp, Ip4(9)), c.heard ? "heard" : "10.0.0.9") << c.what;
  }
}

// Also where one packet tells more than may wait.
TEST(Names, OfManyPacketsTheLastOneCounts) {
  NamedEngine named;
  std::vector<Buffer> transports;
  for (unsigned i = 0; i < 100; ++i) {
    const std::vector<Buffer> answers(i == 70 ? 256 : 1, Record(Labels("name" + std::to_string(i)), kA, Ip4(9)));
    transports.push_back(Udp(53, 4000, Message(answers)));
  }
  for (std::size_t count : {71U, 72U, 100U}) {
    named.FeedAll({transports.begin(), transports.begin() + static_cast<std::ptrdiff_t>(count)});
    EXPECT_EQ(View(named.engine).Value("Names Not Listed").first, 0U);  // by now everything is counted
    EXPECT_EQ(named.Name(kAddressIp, Ip4(9)), "name" + std::to_string(count - 1));
  }
}

TEST(Names, HostsFilesAreReadAsTheResolverReadsThem) {
  TemporaryFolder files;
  const std::string path = files.Write("hosts",
                                       "# 10.0.0.1 remark\r\n"
                                       "\t10.0.0.1   Server.lan alias # more\r\n"
                                       "10.0.0.1 later\n"
                                       "10.0.0.2\n"
                                       "10.0.0 short\n"
                                       "0.0.0.0 blocked\n"
                                       "2001:DB8::1%eth0 six\n"
                                       "\n" +
                                           std::string(70'000, 'x') + "\n10.0.0.3 last");
  std::vector<KnownName> names;
  ASSERT_EQ(ReadHostsFile(path, &names), S_OK);
  std::string found;
  for (const KnownName& known : names) found += Text(known.address) + " " + Ascii(known.name) + "\n";
  EXPECT_EQ(found, "10.0.0.1 Server.lan\n2001:db8::1 six\n10.0.0.3 last\n");
  EXPECT_TRUE(Failed(ReadHostsFile(files.Path() + "/missing", &names)));
  EXPECT_TRUE(Failed(ReadHostsFile(files.Path(), &names)));
}

TEST(Names, WhatIsGivenComesBeforeWhatIsHeard) {
  TemporaryFolder files;
  NamedEngine named;
  auto answer = [](const char* name, std::uint8_t last) {
    return Udp(53, 4000, Message({Record(Labels(name), kA, Ip4(last))}));
  };
  named.Feed(answer("first", 1));
  named.Feed(answer("first", 2));
  EXPECT_EQ(named.engine.LearnHosts(files.Write("a", "10.0.0.1 given\n10.0.0.3 older\n")), S_OK);
  EXPECT_EQ(named.engine.LearnHosts(files.Write("b", "10.0.0.3 newer\n")), S_OK);
  named.Feed(answer("second", 1));
  named.Feed(answer("second", 2));
  named.Feed(answer("second", 3));
  EXPECT_EQ(named.Name(kAddressIp, Ip4(1)), "given");
  EXPECT_EQ(named.Name(kAddressIp, Ip4(2)), "second") << "of two answers the later one counts";
  EXPECT_EQ(named.Name(kAddressIp, Ip4(3)), "newer");
  EXPECT_TRUE(Failed(named.engine.LearnHosts(files.Path() + "/missing")));
}

TEST(Names, ArePlainAddressesOnRequest) {
  TemporaryFolder files;
  files.Write("oui.csv", "MA-L,0A1B2C,Acme Inc,\n");
  EngineOptions options;
  options.plain_addresses = true;
  options.vendor_folder = files.Path();
  NamedEngine named(options);
  named.Feed(Udp(53, 4000, Message({Record(Labels("heard"), kA, Ip4(9))})));
  EXPECT_EQ(named.engine.LearnHosts(files.Write("hosts", "10.0.0.9 given\n")), S_FALSE);
  EXPECT_EQ(named.Name(kAddressIp, Ip4(9)), "10.0.0.9");
  EXPECT_EQ(named.Name(kAddressPhysical, {0x08, 0, 0, 0, 0, 1}), "08:00:00:00:00:01");
}

TEST(Names, TheSummaryCountsThoseWithoutRoom) {
  EngineOptions options;
  options.max_names = 1;
  NamedEngine named(options);
  named.Feed(Udp(53, 4000,
                 Message({Record(Labels("a"), kA, Ip4(1)), Record(Labels("b"), kA, Ip4(2)),
                          Record(Labels("c"), kA, Ip4(1)), Record(Labels("d"), kA, Ip4(3))})));
  EXPECT_EQ(named.Name(kAddressIp, Ip4(1)), "c");
  EXPECT_EQ(named.Name(kAddressIp, Ip4(2)), "10.0.0.2");
  EXPECT_EQ(View(named.engine).Value("Names Not Listed").first, 2U);
}

TEST(Vendors, ComeFromTheLongestAssignment) {
  TemporaryFolder files;
  files.Write("oui.csv",
              "Registry,Assignment,Organization Name,Organization Address\r\n"
              "MA-L,001122,\"Acme, \"\"Net\"\" Systems, Inc.\",\"1 Street, X\"\r\n"
              "MA-L,001133,IEEE Registration Authority,X\r\n"
              "MA-L,00114,Too Short,X\r\n"
              "MA-L,0011ZZ,No Number,X\r\n"
              "MA-L,001155\r\n"
              "MA-L,001166,Private,X\r\n"
              "MA-L,001166,\"First, Inc.\",X\r\n"
              "MA-L,001166,Second,X\r\n"
              "MA-L,021122,Local,X\r\n");
  files.Write("mam.csv", "MA-M,0011331,Medium GmbH,X\n");
  files.Write("oui36.csv", "MA-S,001133123,Small Co.,X\n");
  EngineOptions options;
  options.vendor_folder = files.Path();
  NamedEngine named(options);
  const std::pair<Buffer, const char*> cases[] = {
      {{0x00, 0x11, 0x22, 0xAB, 0x0C, 0x00}, "AcmeNetSystems_ab:0c:00"},
      {{0x00, 0x11, 0x33, 0x1F, 0, 1}, "Medium_1f:00:01"},
      {{0x00, 0x11, 0x33, 0x12, 0x34, 1}, "Small_12:34:01"},
      {{0x00, 0x11, 0x33, 0x20, 0, 1}, "00:11:33:20:00:01"},
      {{0x00, 0x11, 0x44, 0, 0, 1}, "00:11:44:00:00:01"},
      {{0x00, 0x11, 0x55, 0, 0, 1}, "00:11:55:00:00:01"},
      {{0x00, 0x11, 0x66, 0, 0, 1}, "First_00:00:01"},
      {{0x02, 0x11, 0x22, 0, 0, 1}, "02:11:22:00:00:01"},  // locally administered
      {{0x01, 0x11, 0x22, 0, 0, 1}, "01:11:22:00:00:01"},  // of a group
      {BroadcastMac(), "ff:ff:ff:ff:ff:ff"},
  };
  for (const auto& [address, text] : cases) EXPECT_EQ(named.Name(kAddressPhysical, address), text);
  AddressRecord known;
  SetAddress<6>(&known, kAddressPhysical, cases[0].first.data());
  EXPECT_TRUE(named.engine.LearnName(known, u"desk"));
  EXPECT_EQ(named.Name(kAddressPhysical, cases[0].first), "desk");
}

TEST(Vendors, AreWordsOfOneLine) {
  const std::pair<const char*, const char*> cases[] = {
      {"Intel Corporate", "IntelCorporate"},
      {"HON HAI PRECISION IND. CO.,LTD.", "HONHAIPRECISIONIND"},
      {"Limited Editions LLC", "LimitedEditions"},
      {"super-long-organization-name gmbh", "Super-long-organizat"},
      {"J\xC3\xBCrgen & S\xC3\xB6hne", "JRgenSHne"},
      {"Private", ""},
      {"...", ""},
      {"", ""},
  };
  for (const auto& [organization, word] : cases) EXPECT_EQ(VendorWord(organization), word);
}

}  // namespace
}  // namespace orvo::test
