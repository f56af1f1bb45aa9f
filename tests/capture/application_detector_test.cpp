#include "capture/classify/application_detector.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>

#include "capture/classify/protocol_tree.h"
#include "capture/decode/protocol_registry.h"
#include "capture/source/capture_file.h"
#include "tests/capture/engine_fixture.h"

namespace orvo::test {
namespace {

Buffer Text(std::string_view text) {
  return {text.begin(), text.end()};
}

Buffer HttpRequest(const std::string& host) {
  return Text("GET /index.html HTTP/1.1\r\nHost: " + host + "\r\nUser-Agent: test\r\nAccept: */*\r\n\r\n");
}

/// A query for the address of a.example.
Buffer DnsQuery() {
  return Be16(0x1234) + Be16(0x0100) + Be16(1) + Zeros(6) + Text("\1a\7example") + Zeros(1) + Be16(1) + Be16(1);
}

/// A ClientHello (RFC 8446 section 4.1.2) that names a server.
Buffer ClientHello(const std::string& server) {
  Buffer name = Be16(static_cast<unsigned>(server.size() + 3)) + Buffer{0} +
                Be16(static_cast<unsigned>(server.size())) + Text(server);
  Buffer extensions = Be16(0) + Be16(static_cast<unsigned>(name.size())) + name;
  Buffer hello = Be16(0x0303) + Buffer(32, 7) + Buffer{0} + Be16(4) + Be16(0xC02F) + Be16(0xC030) + Buffer{1, 0} +
                 Be16(static_cast<unsigned>(extensions.size())) + extensions;
  Buffer handshake = Buffer{1, 0} + Be16(static_cast<unsigned>(hello.size())) + hello;
  return Buffer{22, 3, 1} + Be16(static_cast<unsigned>(handshake.size())) + handshake;
}

Buffer TcpPacket(unsigned from, unsigned to, const Buffer& payload, std::uint8_t flags = 0x18) {
  return Ethernet(Mac(2), Mac(1), 0x0800, Ipv4(Ip4(1), Ip4(2), 6, Tcp(from, to, flags, payload)));
}
/// From the other end.
Buffer TcpAnswer(unsigned from, unsigned to, const Buffer& payload, std::uint8_t flags) {
  return Ethernet(Mac(1), Mac(2), 0x0800, Ipv4(Ip4(2), Ip4(1), 6, Tcp(from, to, flags, payload)));
}
Buffer UdpPacket(unsigned from, unsigned to, const Buffer& payload) {
  return Ethernet(Mac(2), Mac(1), 0x0800, Ipv4(Ip4(1), Ip4(2), 17, Udp(from, to, payload)));
}

/// Bytes that are no protocol's.
Buffer Noise(std::uint8_t seed) {
  Buffer noise;
  for (unsigned i = 0; i < 40; ++i) noise.push_back(static_cast<std::uint8_t>(0xA1 + i * 37 + seed * 101 + i * i * 11));
  return noise;
}

class ApplicationDetectorTest : public testing::Test {
 protected:
  /// The path that a packet is counted under, without the link.
  std::string Path(const Buffer& frame, std::uint64_t time = kNewYear) {
    const Packet packet = MakePacket(frame, time);
    DecodePacket(packet, &facts_);
    detector_->Inspect({&packet, 1}, {&facts_, 1});
    ProtocolTree& tree = ProtocolTree::Get();
    std::string path;
    for (std::uint16_t place = tree.Classify(facts_); tree.parent(place) != 0; place = tree.parent(place)) {
      path = std::string(tree.name(place)) + (path.empty() ? "" : "/") + path;
    }
    return path;
  }

  void Restart(const DetectionLimits& limits) { detector_ = std::make_unique<ApplicationDetector>(limits); }

  PacketFacts facts_;
  std::unique_ptr<ApplicationDetector> detector_ = std::make_unique<ApplicationDetector>(DetectionLimits{});
};

TEST_F(ApplicationDetectorTest, RecognisesContentOnWhateverPort) {
  const std::pair<Buffer, std::string> cases[] = {
      {TcpPacket(40000, 80, HttpRequest("a.example")), "IPv4/TCP/HTTP"},
      {TcpPacket(40001, 9999, HttpRequest("a.example")), "IPv4/TCP/HTTP"},
      {TcpPacket(40002, 9998, ClientHello("a.example")), "IPv4/TCP/TLS"},
      {TcpPacket(40003, 443, ClientHello("www.netflix.com")), "IPv4/TCP/TLS/Netflix"},
      {TcpPacket(40004, 636, ClientHello("a.example")), "IPv4/TCP/LDAPS"},
      {TcpPacket(40005, 9997, ClientHello("www.netflix.com")), "IPv4/TCP/TLS/Netflix"},
      {TcpPacket(40006, 443, Text("SSH-2.0-OpenSSH_9.2\r\n")), "IPv4/TCP/SSH"},
      {UdpPacket(40007, 9996, DnsQuery()), "IPv4/UDP/DNS"},
      {UdpPacket(40008, 53, DnsQuery()), "IPv4/UDP/DNS"},
      {UdpPacket(40009, 9995, Noise(1)), "IPv4/UDP/NetFlow"},
      {UdpPacket(40010, 9994, Noise(2)), "IPv4/UDP"},
      {Ethernet(Mac(2), Mac(1), 0x0800,
                Ipv4(Ip4(1), Ip4(2), 4, Ipv4(Ip4(3), Ip4(4), 6, Tcp(40011, 9993, 0x18, HttpRequest("a.example"))))),
       "IPv4/IPv4/TCP/HTTP"},
      // Behind an authentication header the port tells, not the header.
      {Ethernet(Mac(2), Mac(1), 0x0800,
                Ipv4(Ip4(1), Ip4(2), 51, Buffer{6, 1} + Zeros(10) + Tcp(40012, 80, 0x18, HttpRequest("a.example")))),
       "IPv4/AH/TCP/HTTP"},
      {Ethernet(Mac(2), Mac(1), 0x86DD,
                Ipv6(Ip6(1), Ip6(2), 51, Buffer{6, 1} + Zeros(10) + Tcp(40013, 9992, 0x18, HttpRequest("a.example")))),
       "IPv6/AH/TCP"},
  };
  for (const auto& [frame, path] : cases) EXPECT_EQ(Path(frame), path);
}

TEST_F(ApplicationDetectorTest, TellsPacketsOfAFlowByWhatItWasFoundToCarry) {
  EXPECT_EQ(Path(TcpPacket(40000, 9999, {}, 2)), "IPv4/TCP");
  EXPECT_EQ(detector_->undecided(), 0U);  // nothing is looked into before there is something to see
  EXPECT_EQ(Path(TcpAnswer(9999, 40000, {}, 0x12)), "IPv4/TCP");
  EXPECT_EQ(Path(TcpPacket(40000, 9999, HttpRequest("a.example"))), "IPv4/TCP/HTTP");
  EXPECT_EQ(Path(TcpAnswer(9999, 40000, {}, 0x10)), "IPv4/TCP/HTTP");
  EXPECT_EQ(Path(TcpAnswer(9999, 40000, {}, 0x04)), "IPv4/TCP/HTTP");
  EXPECT_EQ(Path(TcpPacket(40000, 9999, {}, 2)), "IPv4/TCP");  // another connection
  EXPECT_EQ(detector_->counts().begun, 2U);
  EXPECT_EQ(detector_->counts().recognised, 1U);
}

TEST_F(ApplicationDetectorTest, KeepsNoPlaceForTheNameServiceOnItsPort) {
  DetectionLimits limits;
  limits.undecided = 1;
  Restart(limits);
  Path(UdpPacket(40000, 9999, Noise(1)));
  EXPECT_EQ(Path(UdpPacket(40001, 53, DnsQuery())), "IPv4/UDP/DNS");
  EXPECT_EQ(detector_->counts().recognised, 1U);
  EXPECT_EQ(detector_->undecided(), 1U);
  EXPECT_EQ(detector_->counts().not_inspected, 0U) << "the other is still looked into";
}

TEST_F(ApplicationDetectorTest, FreesAtOnceWhatLookingIntoAFlowTook) {
  // Whatever nDPI makes once and keeps is made by a first flow.
  EXPECT_EQ(Path(TcpPacket(39999, 9999, ClientHello("a.example"))), "IPv4/TCP/TLS");
  std::size_t base = detector_->undecided_bytes();
  for (unsigned i = 0; i < 100; ++i) {
    EXPECT_EQ(Path(TcpPacket(30000 + i, 9999, ClientHello("b.example"))), "IPv4/TCP/TLS");
    EXPECT_EQ(Path(UdpPacket(30000 + i, 9999, DnsQuery())), "IPv4/UDP/DNS");
  }
  EXPECT_EQ(detector_->undecided_bytes(), base);
  for (std::uint8_t i = 0; i < 3; ++i) Path(UdpPacket(20000, 9999, Noise(i)));
  EXPECT_EQ(detector_->undecided(), 1U);
  EXPECT_GT(detector_->undecided_bytes(), base + 500);
  Path(UdpPacket(20000, 9999, Noise(3)));  // enough seen
  EXPECT_EQ(detector_->undecided(), 0U);
  EXPECT_EQ(detector_->undecided_bytes(), base);
  // A flow that ends or is forgotten before it was recognised leaves nothing behind either.
  Path(TcpPacket(20001, 9999, Noise(1)));
  Path(UdpPacket(20002, 9999, Noise(1)));
  EXPECT_EQ(detector_->undecided(), 2U);
  Path(TcpPacket(20001, 9999, {}, 4));
  EXPECT_EQ(detector_->undecided(), 1U);
  for (int i = 0; i < 100; ++i) Path(TcpPacket(20003, 9999, {}), kNewYear + FlowTable::kIdleTime);
  EXPECT_EQ(detector_->undecided(), 0U);
  EXPECT_EQ(detector_->undecided_bytes(), base);
}

TEST_F(ApplicationDetectorTest, LooksIntoNoMoreFlowsAtOnceThanItMay) {
  DetectionLimits limits;
  limits.undecided = 10;
  Restart(limits);
  for (unsigned i = 0; i < 100; ++i) {
    Path(UdpPacket(30000 + i, 9999, Noise(1)));
    EXPECT_LE(detector_->undecided(), 10U);
  }
  EXPECT_EQ(detector_->counts().not_inspected, 90U);
  EXPECT_EQ(Path(UdpPacket(30200, 9999, DnsQuery())), "IPv4/UDP/DNS");
  EXPECT_EQ(Path(UdpPacket(30000, 9999, DnsQuery())), "IPv4/UDP");  // judged already

  limits.undecided = 1000;
  limits.bytes = 20'000;
  Restart(limits);
  for (unsigned i = 0; i < 100; ++i) Path(UdpPacket(30000 + i, 9999, Noise(1)));
  EXPECT_LE(detector_->undecided_bytes(), 25'000U);
  EXPECT_GT(detector_->counts().not_inspected, 50U);
}

TEST_F(ApplicationDetectorTest, CanBeTurnedOff) {
  DetectionLimits limits;
  limits.flows = 0;
  Restart(limits);
  EXPECT_EQ(Path(TcpPacket(40000, 9999, HttpRequest("a.example"))), "IPv4/TCP");
  EXPECT_EQ(Path(TcpPacket(40000, 443, HttpRequest("a.example"))), "IPv4/TCP/TLS");
  EXPECT_EQ(detector_->counts().begun, 0U);
}

// Every packet of the capture at every length, with its bytes changed.
TEST_F(ApplicationDetectorTest, TakesWhateverIsCaptured) {
  SourceError error;
  auto source = OpenCaptureFile(ORVO_SOURCE_DIR "/samples/office.pcapng", &error);
  ASSERT_TRUE(source) << error.message;
  Packet packet;
  for (unsigned i = 0; source->Next(&packet); ++i) {
    Buffer bytes(packet.bytes.begin(), packet.bytes.end());
    std::size_t length = bytes.size() * (i % 7 + 1) / 7;
    for (std::size_t at = 34 + i % 5; at < bytes.size(); at += 11) bytes[at] = static_cast<std::uint8_t>(bytes[at] + i);
    packet.bytes = Bytes(bytes).first(length);
    DecodePacket(packet, &facts_);
    detector_->Inspect({&packet, 1}, {&facts_, 1});
  }
  EXPECT_GT(detector_->counts().begun, 10U);
}

/// What the flows of the sample were found to carry when all but some ports are moved far away.
TEST_F(ApplicationDetectorTest, KnowsTheSampleByItsContent) {
  SourceError error;
  auto source = OpenCaptureFile(ORVO_SOURCE_DIR "/samples/office.pcapng", &error);
  ASSERT_TRUE(source) << error.message;
  std::map<std::string, unsigned> paths;
  Packet packet;
  while (source->Next(&packet)) {
    Buffer bytes(packet.bytes.begin(), packet.bytes.end());
    for (std::size_t at : {34U, 36U}) {
      bool ipv4_ports = bytes.size() > 38 && bytes[12] == 8 && bytes[13] == 0 && bytes[14] == 0x45 &&
                        (bytes[23] == 6 || bytes[23] == 17);
      if (ipv4_ports && bytes[at] < 4) bytes[at] = static_cast<std::uint8_t>(bytes[at] + 200);
    }
    ++paths[Path(bytes, packet.time)];
  }
  for (const char* path : {"IPv4/TCP/TLS", "IPv4/UDP/DNS", "IPv4/TCP/HTTP"}) EXPECT_GT(paths[path], 3U) << path;
}

// Names go into rows of separated text, and each stands for one protocol.
TEST(ProtocolNames, AreFitForRows) {
  const ProtocolRegistry& registry = ProtocolRegistry::Get();
  EXPECT_NE(registry.FindName("Netflix"), 0);
  EXPECT_EQ(registry.FindName("No Such Protocol"), 0);
  const auto count = static_cast<std::uint16_t>(registry.count());
  for (std::uint16_t i = 1; i < count; ++i) {
    std::string_view name = registry.protocol(i).name;
    EXPECT_FALSE(name.empty());
    EXPECT_EQ(name.find_first_of(",_\"\t"), std::string_view::npos) << name;
    EXPECT_EQ(registry.FindName(name), i);
  }
}

TEST(Engine, CountsFlowsSinceTheLastReset) {
  CaptureEngine engine;
  FeedSmallCapture(&engine);
  View view(engine);
  EXPECT_EQ(view.Value("TCP and UDP Flows").first, 2U);
  EXPECT_EQ(view.context->ResetStatistics(), S_OK);
  FeedSmallCapture(&engine);
  engine.Feed(MakePacket(UdpPacket(7000, 53, DnsQuery())));
  View later(engine);
  EXPECT_EQ(later.Value("TCP and UDP Flows").first, 1U);
}

}  // namespace
}  // namespace orvo::test
