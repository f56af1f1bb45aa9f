#include <gtest/gtest.h>

#include "capture/analysis/expert/wireless_watch.h"
#include "capture/context/expert_tables.h"
#include "tests/capture/expert_fixture.h"
#include "tests/capture/wireless_frames.h"

namespace orvo::test {
namespace {

/// The watch alone, with one access point, Mac(1).
class WirelessWatchTest : public testing::Test {
 protected:
  void Feed(const Buffer& frame, std::uint32_t link = kLinkWireless) {
    Packet packet = WirelessPacket(frame, link, kNewYear + static_cast<std::uint64_t>(milliseconds_ * kMillisecond));
    PacketFacts facts = Decoded(packet);
    expert_.Inspect(packet, facts);
  }

  /// Data of a station, of which the first so many are repeats.
  void FeedData(std::uint8_t station, int frames, int retries, int dbm = -50, const Buffer& to = Mac(1)) {
    for (int i = 0; i < frames; ++i) {
      const auto flags = static_cast<std::uint8_t>(kToDsBit | (i < retries ? kRetryBit : 0));
      Feed(Radio(2412, 108, dbm, DataFrame(flags, to, Mac(station), Mac(9), IpPacket())), kLinkRadiotap);
    }
  }

  std::string Events() {
    std::string text;
    const FrozenEvents events = expert_.analysis.Freeze().events;
    for (std::uint64_t i = 0; i < events.size(); ++i) {
      const EventRecord& event = events[i];
      text += (text.empty() ? "" : ", ") + std::string(TypeOf(event.event).key) + " " + std::to_string(event.value) +
              " " + std::to_string(event.source.bytes[5]) + ">" + std::to_string(event.destination.bytes[5]);
    }
    return text;
  }

  /// What the log's table says of an event beside its kind.
  std::u16string Detail(std::uint32_t row) {
    constexpr std::uint32_t kDetail = 12;
    std::u16string text;
    EXPECT_EQ(MakeEventLogTable(expert_.analysis.Freeze())->GetCell(row, kDetail, &text), S_OK);
    return text;
  }

  double milliseconds_ = 0;
  ExpertParts expert_{ExpertOptions{}};
};

TEST_F(WirelessWatchTest, JudgesHowMuchASenderRepeats) {
  FeedData(2, 50, 10);
  FeedData(3, 49, 49);
  EXPECT_EQ(Events(), "") << "20 % are borne with, and 49 frames are too few";
  FeedData(2, 50, 11);
  EXPECT_EQ(Events(), "WIRELESS_RETRIES 22 2>1");
  FeedData(2, 50, 50);
  EXPECT_EQ(Events(), "WIRELESS_RETRIES 22 2>1") << "it goes on";
  FeedData(2, 50, 0);
  FeedData(2, 50, 50);
  EXPECT_EQ(Events(), "WIRELESS_RETRIES 22 2>1, WIRELESS_RETRIES 100 2>1");
  EXPECT_EQ(Detail(0), u"22 %");
}

TEST_F(WirelessWatchTest, JudgesHowWellASenderIsHeard) {
  FeedData(2, 50, 0, -75);
  EXPECT_EQ(Events(), "");
  FeedData(2, 25, 0, -60);
  FeedData(2, 25, 0, -92);
  EXPECT_EQ(Events(), "WIRELESS_WEAK_SIGNAL 76 2>1") << "the mean counts";
  FeedData(2, 50, 0, -90);
  EXPECT_EQ(Events(), "WIRELESS_WEAK_SIGNAL 76 2>1") << "it goes on";
  FeedData(2, 50, 0, -40);
  FeedData(2, 50, 0, -90);
  EXPECT_EQ(Events(), "WIRELESS_WEAK_SIGNAL 76 2>1, WIRELESS_WEAK_SIGNAL 90 2>1");
  EXPECT_EQ(Detail(1), u"-90 dBm");
}

TEST_F(WirelessWatchTest, JudgesNoOthers) {
  for (int i = 0; i < 200; ++i) {
    Feed(DataFrame(kToDsBit, Mac(1), Mac(2), Mac(9), IpPacket()));  // a level that nobody measured
    Feed(ControlFrame(11, Mac(1), Mac(3)));
    Feed(Radio(2412, 2, -90, ManagementFrame(kBeacon, BroadcastMac(), Mac(1), Mac(1), Announcement(1, {}))),
         kLinkRadiotap);
  }
  FeedData(4, 200, 200, -90, BroadcastMac());
  EXPECT_EQ(Events(), "");
}

TEST_F(WirelessWatchTest, NoticesFloodsOfFarewells) {
  auto feed = [&](int frames, std::uint8_t subtype, std::uint8_t network) {
    for (int i = 0; i < frames; ++i) {
      Feed(ManagementFrame(subtype, BroadcastMac(), Mac(network), Mac(network), Le16(7)));
    }
  };
  feed(10, kDeauthentication, 1);
  feed(10, kDisassociation, 2);
  feed(50, kAuthentication, 1);
  milliseconds_ += 1000;
  feed(5, kDeauthentication, 1);
  feed(5, kDisassociation, 1);
  EXPECT_EQ(Events(), "");
  feed(20, kDeauthentication, 1);
  EXPECT_EQ(Events(), "DEAUTHENTICATION_FLOOD 11 1>255") << "once for each second";
  milliseconds_ += 1000;
  feed(20, kDeauthentication, 1);
  EXPECT_EQ(Events(), "DEAUTHENTICATION_FLOOD 11 1>255, DEAUTHENTICATION_FLOOD 11 1>255");
}

TEST_F(WirelessWatchTest, TakesBeaconsForNoStorm) {
  for (int i = 0; i < 1500; ++i) Feed(ManagementFrame(kBeacon, BroadcastMac(), Mac(1), Mac(1), Announcement(1, {})));
  EXPECT_EQ(Events(), "");
  const Buffer to_all = DataFrame(kFromDsBit, BroadcastMac(), Mac(1), Mac(9), Snap(0x9999, Zeros(8)));
  for (int i = 0; i < 1500; ++i) Feed(to_all);
  EXPECT_EQ(Events(), "BROADCAST_STORM 1001 9>255");
}

TEST_F(WirelessWatchTest, ForgetsNodesForOthers) {
  // More senders than there are places; every one of them is judged by its own frames only.
  for (unsigned i = 0; i < 20'000; ++i) {
    Buffer station = Mac(2);
    station[3] = static_cast<std::uint8_t>(i >> 8);
    station[4] = static_cast<std::uint8_t>(i);
    Feed(DataFrame(kToDsBit | kRetryBit, Mac(1), station, Mac(9), IpPacket()));
  }
  EXPECT_EQ(Events(), "");
}

}  // namespace
}  // namespace orvo::test
