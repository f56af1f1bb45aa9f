// Capturing for real, from the loopback interface and for moments only. Skipped where the process may not capture.

#include "capture/source/interface_source.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <string_view>
#include <thread>

#include "capture/source/packet_filter.h"
#include "platform/clock.h"
#include "tests/support/echo.h"

namespace orvo::test {
namespace {

using testing::HasSubstr;

class InterfaceSourceTest : public testing::Test {
 protected:
  /// Opens the loopback interface, or skips the test.
  std::unique_ptr<InterfaceSource> Open(const InterfaceOptions& options) {
    SourceError error;
    auto source = OpenInterface("lo", options, &error);
    if (!source) denied_ = error.message;
    return source;
  }

  std::string denied_;
};

TEST_F(InterfaceSourceTest, GivesWhatIsSent) {
  for (const InterfaceOptions& options :
       {InterfaceOptions{.promiscuous = false, .immediate = true},
        InterfaceOptions{.promiscuous = false, .snap_length = 50, .immediate = false, .timeout_milliseconds = 10}}) {
    auto source = Open(options);
    if (!source) GTEST_SKIP() << denied_;
    const Echo echo;
    SourceError error;
    auto filter = PacketFilter::Make(echo.Filter(), &error);
    ASSERT_TRUE(filter) << error.message;
    FilteredSource own(source.get(), filter.get());
    const std::uint64_t before = ProcessClock().Now();
    constexpr std::string_view kText = "orvo reports, heard on the loopback interface";
    echo.Send(kText);
    Packet packet;
    ASSERT_TRUE(own.Next(&packet)) << source->warning().message;
    constexpr std::size_t kHeaders = 14 + 20 + 8;
    EXPECT_EQ(packet.link_type, kLinkEthernet);
    EXPECT_EQ(packet.original_length, kHeaders + kText.size());
    ASSERT_EQ(packet.bytes.size(), std::min<std::size_t>(options.snap_length, kHeaders + kText.size()));
    EXPECT_TRUE(std::equal(packet.bytes.begin() + kHeaders, packet.bytes.end(), kText.begin()));
    // The packet's clock and ours are one, but not read at the same moment or with the same precision.
    constexpr std::uint64_t kMinute = 60'000'000'000;
    EXPECT_GT(packet.time, before - kMinute);
    EXPECT_LT(packet.time, ProcessClock().Now() + kMinute);
    EXPECT_GE(source->progress().bytes_read, packet.bytes.size());
    EXPECT_EQ(source->progress().bytes_total, 0U);
    EXPECT_EQ(source->dropped(), 0U);
    EXPECT_EQ(source->warning().message, "");
  }
}

TEST_F(InterfaceSourceTest, GivesManyAtOnceAndOnlyWhatTheFilterLetsThrough) {
  const Echo echo;
  const Echo other;
  auto source = Open({.promiscuous = false, .timeout_milliseconds = 10, .filter = echo.Filter()});
  if (!source) GTEST_SKIP() << denied_;
  constexpr std::size_t kMany = 200;
  for (std::size_t i = 0; i < kMany; ++i) {
    other.Send("not for us");
    echo.Send(std::to_string(1000 + i));
  }
  std::vector<Packet> room(1000);
  std::size_t seen = 0;
  std::size_t batches = 0;
  while (seen < kMany) {
    const std::size_t count = source->NextBatch(room);
    ASSERT_NE(count, 0U) << source->warning().message;
    for (std::size_t i = 0; i < count; ++i, ++seen) {
      const Bytes text = room[i].bytes.last(4);
      EXPECT_EQ(std::string(text.begin(), text.end()), std::to_string(1000 + seen));
    }
    ++batches;
  }
  EXPECT_LT(batches, kMany);
  for (const int descriptor : {3, 4, 5, 6, 7, 8, 9, 10, 11, 12}) {
    const int flags = fcntl(descriptor, F_GETFD);
    int type = 0;
    socklen_t size = sizeof type;
    if (flags < 0 || getsockopt(descriptor, SOL_SOCKET, SO_DOMAIN, &type, &size) != 0 || type != AF_PACKET) continue;
    EXPECT_TRUE(flags & FD_CLOEXEC) << "a program that is run could read along";
  }
  SourceError error;
  EXPECT_FALSE(OpenInterface("lo", {.filter = "wlan host 10.0.0.1"}, &error));
  EXPECT_THAT(error.message, HasSubstr("does not know the filter wlan host 10.0.0.1: "));
}

TEST_F(InterfaceSourceTest, StopEndsAWaitFromAnotherThread) {
  auto source = Open({.promiscuous = false, .immediate = true});
  if (!source) GTEST_SKIP() << denied_;
  const auto begin = std::chrono::steady_clock::now();
  std::thread stopper([&source] { source->Stop(); });
  Packet packet;
  while (source->Next(&packet)) {  // others may use the loopback too
  }
  stopper.join();
  EXPECT_FALSE(source->Next(&packet));
  EXPECT_EQ(source->warning().message, "") << "a wanted end is a sound one";
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(30));
}

TEST_F(InterfaceSourceTest, SaysWhyAnInterfaceCannotBeOpened) {
  for (const char* name : {"orvo-none", "new\nline", ""}) {
    SourceError error;
    EXPECT_FALSE(OpenInterface(name, {}, &error)) << name;
    EXPECT_TRUE(Failed(error.status)) << name;
    EXPECT_EQ(error.message.find('\n'), std::string::npos) << error.message;
    EXPECT_THAT(error.message, testing::AnyOf(HasSubstr("no such interface"), HasSubstr("CAP_NET_RAW"),
                                              HasSubstr("cannot be captured from")));
  }
  SourceError error;
  OpenInterface("orvo-none", {}, &error);
  if (error.message.find("CAP_NET_RAW") == std::string::npos) {
    EXPECT_THAT(error.message, HasSubstr("orvo-none: there is no such interface"));
    EXPECT_THAT(error.message, HasSubstr("lo"));
  }
}

}  // namespace
}  // namespace orvo::test
