#include <gmock/gmock.h>

#include <sstream>

#include "tests/text/text_report_fixture.h"

namespace orvo::test {
namespace {

using testing::_;
using testing::ElementsAre;
using testing::SizeIs;

constexpr const char* kFile = "Wireless Channel Statistics.csv";
const std::string kSaved = "11/22/2026 14:05:09,";

class WirelessChannelFileTest : public TextReportTest {
 protected:
  WirelessChannelFileTest() {
    OnlySection(kSwitchOutputWChannelsStats);
    Switch(kSwitchOutputDataRates, 0);
    engine.live.wireless.emplace();
  }

  std::vector<WirelessChannelEntry>& channels() { return engine.live.wireless->channels; }

  void SwitchColumnsOff() {
    for (std::uint32_t column = kSwitchWChannelFrequency; column <= kSwitchWChannelNoisedBmAvg; ++column) {
      Switch(column, 0);
    }
  }

  std::vector<std::string> NewLines() { return Written(kFile); }
};

TEST_F(WirelessChannelFileTest, WritesEveryColumnInOrder) {
  WirelessChannelEntry channel;
  channel.channel = 6;
  channel.frequency = 4294967295;
  channel.band = 4;
  channel.total = {4, 18446744073709551615U};
  channel.data = {3, 4};
  channel.management = {5, 6};
  channel.control = {7, 8};
  channel.local = {9, 10};
  channel.from_ds = {11, 12};
  channel.to_ds = {13, 14};
  channel.ds_to_ds = {15, 16};
  channel.retry = {17, 18};
  channel.protected_frames = {19, 20};
  channel.order = {21, 22};
  channel.crc_packets = 23;
  channel.icv_errors = 24;
  channel.signal = {25, 26, 255, -80, -81, 5};
  channel.signal_sum = 90;
  channel.signal_milliwatt_sum = 0.004;
  channel.noise = {28, 29, 30, -90, -91, -128};
  channel.noise_sum = 1;
  channel.noise_milliwatt_sum = 2;
  channels().push_back(channel);
  EXPECT_THAT(NewLines(),
              ElementsAre(_, kSaved + "6,4294967295,802.11bg,4,18446744073709551615,3,4,5,6,7,8,9,10,11,12,13,14,"
                                      "15,16,17,18,19,20,21,22,23,24,25,26,255,22.500,-80,-81,5,-30.000,"
                                      "28,29,30,0.250,-90,-91,-128,-3.010"));
}

TEST_F(WirelessChannelFileTest, AChannelWithoutPacketsHasNoPowerAndAveragesOfZero) {
  WirelessChannelEntry channel;
  channel.channel = -1;
  channel.band = 102;
  channels().push_back(channel);
  EXPECT_EQ(NewLines().at(1), kSaved +
                                  "-1,0,BPS 10MHz ChBw,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,"
                                  "0,0,0,0.000,,,,,0,0,0,0.000,,,,");
}

TEST_F(WirelessChannelFileTest, TheAverageInDbmNeedsAMeasurement) {
  const struct {
    std::int8_t min_dbm;
    double milliwatts;
    std::uint64_t packets;
    const char* text;
  } cases[] = {
      {-60, 1, 10, "-10.000"}, {-60, 10, 1, "10.000"}, {-127, 1, 10, ""}, {-60, 0, 10, ""},
      {-60, 1, 0, "0.000"},    {-127, 1, 0, ""},       {-60, 0, 0, ""},
  };
  SwitchColumnsOff();
  for (const auto& c : cases) {
    channels().assign(1, {});
    WirelessChannelEntry& channel = channels()[0];
    channel.total.packets = c.packets;
    channel.signal.min_dbm = channel.noise.min_dbm = c.min_dbm;
    for (std::uint32_t id : {kSwitchWChannelSignaldBmAvg, kSwitchWChannelNoisedBmAvg}) {
      channel.signal_milliwatt_sum = id == kSwitchWChannelSignaldBmAvg ? c.milliwatts : 77;
      channel.noise_milliwatt_sum = id == kSwitchWChannelNoisedBmAvg ? c.milliwatts : 77;
      Switch(id, 1);
      EXPECT_EQ(NewLines().at(1), kSaved + "0," + std::to_string(c.packets) + ",0," + c.text)
          << id << " of " << c.milliwatts << " in " << c.packets;
      Switch(id, 0);
    }
  }
}

TEST_F(WirelessChannelFileTest, EverySwitchTurnsOneColumnOnAndOnlyThatOne) {
  std::istringstream header(NewLines().at(0));
  std::vector<std::string> titles;
  for (std::string title; std::getline(header, title, ',');) titles.push_back(title);
  std::size_t column = 2;  // behind the time and the channel
  for (std::uint32_t id = kSwitchWChannelFrequency; id <= kSwitchWChannelNoisedBmAvg; ++id, ++column) {
    SwitchColumnsOff();
    Switch(id, -1);
    const bool before_totals = id <= kSwitchWChannelBand;
    if (id == kSwitchWChannelBand + 1) column += 2;  // the totals, which are always there
    const std::string title = "," + titles.at(column);
    EXPECT_EQ(NewLines().at(0), "Time Saved,Channel" + (before_totals ? title : "") + ",Total Packets,Total Bytes" +
                                    (before_totals ? "" : title));
  }
  EXPECT_EQ(column, titles.size());
}

TEST_F(WirelessChannelFileTest, DataRatesAreAskedForByChannelFrequencyAndBand) {
  engine.live.medium_subtype = kSubtype80211b;
  Switch(kSwitchOutputDataRates, 1);
  SwitchColumnsOff();
  channels().resize(2);
  channels()[0].channel = channels()[1].channel = 36;
  channels()[0].frequency = channels()[1].frequency = 5180;
  channels()[0].band = 3;
  channels()[1].band = 301;
  engine.live.wireless->channel_rates[{36, 5180, 301}] = {{4, 1, 2}, {22, 3, 4}, {6, 5, 6}};
  EXPECT_THAT(NewLines(), ElementsAre("Time Saved,Channel,Total Packets,Total Bytes,1 Mbits/s Packets,1 Mbits/s Bytes,"
                                      "2 Mbits/s Packets,2 Mbits/s Bytes,5.5 Mbits/s Packets,5.5 Mbits/s Bytes,"
                                      "11 Mbits/s Packets,11 Mbits/s Bytes",
                                      kSaved + "36,0,0,0,0,0,0,0,0,0,0", kSaved + "36,0,0,0,0,1,2,0,0,3,4"));
}

TEST_F(WirelessChannelFileTest, ReadsTheSnapshot) {
  channels().resize(1);
  engine.at_snapshot = engine.live;
  engine.at_snapshot->wireless->channels.resize(3);
  EXPECT_THAT(NewLines(), SizeIs(1 + 3));
}

TEST_F(WirelessChannelFileTest, EveryFailureEndsTheFileWhereItIs) {
  channels().resize(3);
  Switch(kSwitchOutputDataRates, 1);
  const std::tuple<const char*, int, std::size_t> cases[] = {
      {"IWirelessChannelStats::GetCount", 1, 0},
      {"IWirelessChannelStats::GetEntry", 3, 2},
      {"IWirelessChannelStats::GetRates", 2, 1},
  };
  for (const auto& [operation, nth, rows] : cases) {
    engine.Fail(operation, nth, DISP_E_OVERFLOW);
    EXPECT_THAT(NewLines(), SizeIs(1 + rows)) << operation;
    EXPECT_EQ(FileStatus(kFile), DISP_E_OVERFLOW) << operation;
  }
  std::filesystem::remove(folder.Path(kFile));
  engine.live.wireless.reset();
  EXPECT_FALSE(Reported().folder.Has(kFile));
}

}  // namespace
}  // namespace orvo::test
