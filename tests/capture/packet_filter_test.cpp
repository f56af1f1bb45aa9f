#include "capture/source/packet_filter.h"

#include <gmock/gmock.h>

#include <array>
#include <thread>

#include "tests/capture/capture_bytes.h"

namespace orvo::test {
namespace {

using testing::HasSubstr;

constexpr std::uint32_t kLinkRaw = 12;

std::unique_ptr<PacketFilter> Make(const std::string& expression) {
  SourceError error;
  auto filter = PacketFilter::Make(expression, &error);
  EXPECT_TRUE(filter) << error.message;
  return filter;
}

TEST(PacketFilterTest, HoldsForEachLinkTypeInItsOwnWay) {
  const Buffer ip = Ipv4(Ip4(1), Ip4(2), 17, Udp(5000, 53));
  const Buffer ethernet = Ethernet(Mac(2), Mac(1), 0x0800, ip);
  Buffer cut = ethernet;
  cut.resize(28);
  auto packet = [](const Buffer& frame, std::uint32_t link_type, std::uint32_t original) {
    Packet made = MakePacket(frame);
    made.link_type = link_type;
    made.original_length = original;
    return made;
  };
  const Packet packets[] = {packet(ethernet, kLinkEthernet, 42), packet(ip, kLinkRaw, 28),
                            packet(cut, kLinkEthernet, 42), packet({}, kLinkEthernet, 0)};
  struct {
    const char* expression;
    bool holds[4];
    const char* warning;
  } const cases[] = {
      {"udp port 53", {true, true, false, false}, ""},  // of the third neither ports nor whole addresses were captured
      {"host 10.0.0.1", {true, true, false, false}, ""},
      {"greater 42", {true, false, true, false}, ""},  // the length on the wire
      {"tcp", {false, false, false, false}, ""},
      {"", {true, true, true, true}, ""},
      {"ether src 02:00:00:00:00:01", {true, false, true, false}, "link type 12 (RAW)"},
  };
  for (const auto& one : cases) {
    auto filter = Make(one.expression);
    ASSERT_TRUE(filter);
    for (int round = 0; round < 2; ++round) {
      for (std::size_t i = 0; i < std::size(packets); ++i) {
        EXPECT_EQ(filter->Matches(packets[i]), one.holds[i]) << one.expression << ", packet " << i;
      }
    }
    EXPECT_EQ(Failed(filter->warning().status), *one.warning != '\0') << filter->warning().message;
    EXPECT_THAT(filter->warning().message, HasSubstr(one.warning));
  }
}

TEST(PacketFilterTest, SaysWhatIsWrongWithAnExpression) {
  for (const char* expression : {"tcp prot 80", "host", "(", "port 70000", "wlan\nnonsense"}) {
    SourceError error;
    EXPECT_FALSE(PacketFilter::Make(expression, &error)) << expression;
    EXPECT_TRUE(Failed(error.status));
    EXPECT_GT(error.message.size(), std::string(expression).size() + 5) << error.message;
    EXPECT_EQ(error.message.find('\n'), std::string::npos) << error.message;
  }
  SourceError error;
  std::string long_one(79, 'a');
  for (int i = 0; i < 9999; ++i) long_one += "\u00E4";
  EXPECT_FALSE(PacketFilter::Make(long_one, &error));
  EXPECT_THAT(error.message, testing::StartsWith(long_one.substr(0, 79) + "...: ")) << "not even a part of a letter";
  EXPECT_LT(error.message.size(), 500U);
  EXPECT_TRUE(Make("wlan type mgt")) << "for captures of another link type than the most common one";
}

TEST(PacketFilterTest, LeavesNoTraceOfWhatIsFilteredOut) {
  const CaptureBytes file;
  const CaptureFolder folder;
  const Buffer arp = Ethernet(BroadcastMac(), Mac(1), 0x0806, Arp());
  const Buffer ip = Ethernet(Mac(2), Mac(1), 0x0800, Ipv4(Ip4(1), Ip4(2), 17, Udp(5000, 53)));
  const std::string path =
      folder.Write(file.Section() + file.Interface() + file.Enhanced(0, 1, arp) + file.Enhanced(0, 2, ip) +
                   file.Enhanced(0, 3, arp) + file.Statistics(0, file.Option(5, file.U64(9))));
  SourceError error;
  auto source = OpenCaptureFile(path, &error);
  ASSERT_TRUE(source) << error.message;
  auto filter = Make("ip");
  FilteredSource filtered(source.get(), filter.get());
  Packet packet;
  ASSERT_TRUE(filtered.Next(&packet));
  EXPECT_EQ(Buffer(packet.bytes.begin(), packet.bytes.end()), ip);
  EXPECT_FALSE(filtered.Next(&packet));
  EXPECT_EQ(filtered.dropped(), 9U);
  EXPECT_EQ(filtered.progress().bytes_read, filtered.progress().bytes_total);
}

TEST(PacketFilterTest, FiltersAreMadeInSeveralThreadsAtOnce) {
  const Buffer frame = Ethernet(Mac(2), Mac(1), 0x0800, Ipv4(Ip4(1), Ip4(2), 17, Udp(5000, 53)));
  std::array<std::thread, 4> threads;
  for (std::thread& thread : threads) {
    thread = std::thread([&frame] {
      for (int round = 0; round < 20; ++round) {
        SourceError error;
        EXPECT_TRUE(PacketFilter::Make("udp and host 10.0.0.2", &error)->Matches(MakePacket(frame)));
        EXPECT_FALSE(PacketFilter::Make("udp or or", &error));
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace orvo::test
