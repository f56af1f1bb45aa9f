#include <gmock/gmock.h>

#include <algorithm>

#include "tests/text/text_report_fixture.h"

namespace orvo::test {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

constexpr const char* kFile = "Wireless Statistics.csv";
const std::string kSaved = "11/22/2026 14:05:09,";
constexpr std::size_t kColumns = 45;  // of a node itself, without its data rates

class WirelessNodeFileTest : public TextReportTest {
 protected:
  WirelessNodeFileTest() {
    OnlySection(kSwitchOutputWLANStats);
    Switch(kSwitchOutputDataRates, 0);
    engine.live.medium_subtype = kSubtype80211b;
    engine.live.wireless.emplace();
  }

  ScriptedWireless& wireless() { return *engine.live.wireless; }

  /// A node with an address of its own; its index.
  std::uint32_t Add(WirelessNodeEntry node) {
    const auto index = static_cast<std::uint32_t>(wireless().nodes.size());
    node.address = engine.live.AddIp(10, 0, 0, static_cast<std::uint8_t>(index + 1));
    wireless().nodes.push_back(node);
    return index;
  }

  /// A node that has sent, with a different number in every field.
  static WirelessNodeEntry Busy() {
    WirelessNodeEntry node;
    node.type = kWirelessAccessPoint;
    node.first_time_sent = Moment(-60);
    node.last_time_sent = Moment(-50);
    node.first_time_received = Moment(-61);
    node.last_time_received = Moment(-30) + 250'000;
    node.packets_sent = 3;
    node.packets_received = 4;
    node.bytes_sent = 1000;
    node.bytes_received = 18446744073709551615U;
    node.broadcast_packets = 7;
    node.broadcast_bytes = 8;
    node.multicast_packets = 9;
    node.multicast_bytes = 10;
    node.retry_packets = 11;
    node.beacon_packets = 12;
    node.wep_packets = 13;
    node.icv_errors = 14;
    node.min_size_sent = 15;
    node.max_size_sent = 65535;
    node.min_size_received = 17;
    node.max_size_received = 18;
    node.name_length = 3;
    node.name = {'n', 'e', 't', 'x'};
    node.beacon_channel = 6;
    node.current_channel = 11;
    node.wep_key = 255;
    node.signal = {20, 21, 255, -128, -2, 127};
    node.noise = {23, 24, 25, -90, -91, -92};
    node.encryption = 3;
    node.authentication = 4;
    node.privacy = 1;
    node.broadcast_name = 2;
    node.trust = 2;
    return node;
  }

  void SwitchColumnsOff() {
    for (std::uint32_t column = kSwitchWLANName; column <= kSwitchWLANTrust; ++column) {
      Switch(column, 0);
    }
  }

  /// Writes one report into a new file and gives its rows, none without a file.
  std::vector<std::string> Rows() {
    std::vector<std::string> lines = Written(kFile);
    if (!lines.empty()) lines.erase(lines.begin());
    return lines;
  }

  /// The rows with one switched column alone; both counts of bytes are cut off.
  std::vector<std::string> ColumnOf(std::uint32_t id) {
    SwitchColumnsOff();
    Switch(id, 1);
    std::vector<std::string> fields;
    for (const std::string& row : Rows()) {
      std::vector<std::string> cells = Split(row);
      cells.erase(cells.begin(), cells.begin() + 2);
      const bool before_bytes = id < kSwitchWLANBroadcastPackets;
      fields.push_back(before_bytes ? cells.front() : cells.back());
    }
    return fields;
  }

  static std::vector<std::string> Split(std::string row) {
    EXPECT_THAT(row, EndsWith(","));
    std::vector<std::string> cells;
    for (std::size_t at = 0; (at = row.find(',')) != std::string::npos; row.erase(0, at + 1)) {
      cells.push_back(row.substr(0, at));
    }
    return cells;
  }
};

TEST_F(WirelessNodeFileTest, WritesEveryColumnInOrder) {
  Add(Busy());
  EXPECT_THAT(Rows(),
              ElementsAre(kSaved + "10.0.0.1,AP,11/22/2026 14:04:09,11/22/2026 14:04:19,11/22/2026 14:04:08,"
                                   "11/22/2026 14:04:39,3,4,1000,18446744073709551615,7,8,9,10,15,65535,333,17,"
                                   "18,4611686018427387903,11,12,13,14,net,6,255,20,21,255,-128,-2,127,23,24,25,"
                                   "-90,-91,-92,31.000250,TKIP,EAPTLS,True,On,,Trusted,"));
}

TEST_F(WirelessNodeFileTest, ANodeThatNeverSentShowsWhatItReceivedAndZeros) {
  WirelessNodeEntry node = Busy();
  node.first_time_sent = 0;
  node.broadcast_bytes = 0;
  Add(node);
  node.broadcast_bytes = 8;  // broadcast bytes let the packets through, not themselves
  Add(node);
  const std::string before =
      "AP,,11/22/2026 14:04:19,11/22/2026 14:04:08,11/22/2026 14:04:39,3,4,1000,"
      "18446744073709551615,";
  const std::string behind =
      ",0,0,0,0,0,333,0,0,4611686018427387903,0,0,0,0,net,6,0,0,0,0,0,0,0,0,0,0,0,0,0,,TKIP,"
      "EAPTLS,True,On,,Trusted,";
  EXPECT_THAT(Rows(),
              ElementsAre(kSaved + "10.0.0.1," + before + "0" + behind, kSaved + "10.0.0.2," + before + "7" + behind));
}

TEST_F(WirelessNodeFileTest, WhatWasNotMeasuredIsZeroAndWhatDoesNotApplyIsEmpty) {
  WirelessNodeEntry node;
  node.first_time_sent = Moment();
  Add(node);
  EXPECT_THAT(Rows(), ElementsAre(kSaved + "10.0.0.1,,11/22/2026 14:05:09,,,,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,,0,0,"
                                           "0,0,0,0,0,0,0,0,0,0,0,0,,,,False,Off,,Unknown,"));
}

TEST_F(WirelessNodeFileTest, EverySwitchTurnsOneColumnOnAndOnlyThatOne) {
  // The switches in the order of the columns: smallest and largest size received stand the other way round.
  std::vector<std::uint32_t> switches;
  for (std::uint32_t id = kSwitchWLANType; id <= kSwitchWLANTrust; ++id) switches.push_back(id);
  std::iter_swap(std::ranges::find(switches, kSwitchWLANMinSizeReceived),
                 std::ranges::find(switches, kSwitchWLANMaxSizeReceived));
  const std::vector<std::string> titles = Split(Written(kFile).at(0));
  std::size_t column = 2;  // behind the time and the address
  for (std::uint32_t id : switches) {
    if (column == 9) column += 2;  // the bytes sent and received, which are always there
    SwitchColumnsOff();
    Switch(id, 2);
    const std::string title = titles.at(column) + ",";
    EXPECT_EQ(Written(kFile).at(0), "Report Saved,Address," + (column < 9 ? title : "") + "Bytes Sent,Bytes Received," +
                                        (column < 9 ? "" : title));
    ++column;
  }
  EXPECT_EQ(column, titles.size());
}

TEST_F(WirelessNodeFileTest, CodesBecomeWords) {
  const struct {
    std::uint32_t id;
    void (*set)(WirelessNodeEntry* node, std::uint8_t code);
    std::vector<std::string> words;  // for the codes from 0
  } cases[] = {
      {kSwitchWLANType,
       [](WirelessNodeEntry* node, std::uint8_t code) { node->type = code; },
       {"", "Admin", "AP", "ESSID", "STA", "ADHOC", ""}},
      {kSwitchWLANEncryption,
       [](WirelessNodeEntry* node, std::uint8_t code) { node->encryption = code; },
       {"", "WEP", "CKIP", "TKIP", ""}},
      {kSwitchWLANAuth,
       [](WirelessNodeEntry* node, std::uint8_t code) { node->authentication = code; },
       {"", "EAP", "LEAP", "PEAP", "EAPTLS", ""}},
      {kSwitchWLANTrust,
       [](WirelessNodeEntry* node, std::uint8_t code) { node->trust = code; },
       {"Unknown", "Known", "Trusted", "Unknown"}},
      {kSwitchWLANPrivacy,
       [](WirelessNodeEntry* node, std::uint8_t code) { node->privacy = code; },
       {"False", "True", "True"}},
      {kSwitchWLANBeaconESSID,
       [](WirelessNodeEntry* node, std::uint8_t code) { node->broadcast_name = code; },
       {"Off", "On", "On"}},
      {kSwitchWLANChannel,
       [](WirelessNodeEntry* node, std::uint8_t code) {
         node->type = code;
         node->beacon_channel = 1;
         node->current_channel = 2;
       },
       {"2", "2", "1", "2", "2", "1", "2"}},
  };
  for (const auto& c : cases) {
    wireless().nodes.clear();
    for (std::size_t code = 0; code < c.words.size(); ++code) {
      WirelessNodeEntry node;
      c.set(&node, static_cast<std::uint8_t>(code));
      Add(node);
    }
    EXPECT_EQ(ColumnOf(c.id), c.words) << c.id;
  }
}

TEST_F(WirelessNodeFileTest, NamesThatAreNotPrintableBecomeDigits) {
  const std::vector<std::uint8_t> names[] = {{}, {'a', ' ', '~'}, {'a', 0}, {0x1F}, {0x80}, {0xE9}};
  for (const std::vector<std::uint8_t>& bytes : names) {
    WirelessNodeEntry node;
    std::ranges::copy(bytes, node.name.begin());
    node.name_length = static_cast<std::uint8_t>(bytes.size());
    Add(node);
  }
  WirelessNodeEntry node;
  node.name.fill(0x01);
  node.name_length = 200;  // more than there is room for
  Add(node);
  std::string longest = "0x";
  for (int i = 0; i < 32; ++i) longest += "01";
  EXPECT_THAT(ColumnOf(kSwitchWLANESSID), ElementsAre("", "a ~", "0x6100", "0x1F", "0x80", "0xE9", longest));
}

TEST_F(WirelessNodeFileTest, TheDurationSpansBothDirections) {
  constexpr std::uint64_t kDay = 86'400'000'000'000;
  const struct {
    std::uint64_t first_sent, last_sent, first_received, last_received;
    const char* text;
  } cases[] = {
      {Moment(10), Moment(20), Moment(5), Moment(15), "15.000000"},
      {Moment(5), Moment(15), Moment(10), Moment(20) + 7'999, "15.000007"},
      {Moment(5), Moment(5), Moment(5), Moment(5), "0.000000"},
      {Moment(0), Moment(0), Moment(0), Moment(3600), "01:00:00.000000"},
      {Moment(0), Moment(0) + 2 * kDay, Moment(1), Moment(1), "2d 00:00:00.000000"},
      {Moment(10), Moment(20), 0, 0, ""},  // one direction alone has no earlier start
      {0, 0, Moment(10), Moment(20), ""},
      {Moment(10), 0, Moment(10), 0, ""},
      {Moment(10), Moment(9), Moment(11), Moment(8), ""},
  };
  std::vector<std::string> expected;
  for (const auto& c : cases) {
    WirelessNodeEntry node;
    node.first_time_sent = c.first_sent;
    node.last_time_sent = c.last_sent;
    node.first_time_received = c.first_received;
    node.last_time_received = c.last_received;
    Add(node);
    expected.emplace_back(c.text);
  }
  EXPECT_EQ(ColumnOf(kSwitchWLANDuration), expected);
}

TEST_F(WirelessNodeFileTest, AStationShowsItsFirstAssociation) {
  wireless().excluded = {100, 101};
  WirelessNodeEntry station;
  station.type = kWirelessStation;
  station.association_keys = {1, 2};
  for (int i = 0; i < 4; ++i) Add(station);  // strong, weak, none, first weak and then strong
  station.association_keys = {100, 101};     // neither a network nor a name
  Add(station);
  station.association_keys = {101, 100};  // one of each is not both
  Add(station);
  station.association_keys = {100, 2};
  Add(station);
  WirelessNodeEntry access_point = station;
  access_point.type = kWirelessAccessPoint;
  Add(access_point);
  wireless().associations = {{0, 2}, {1, 3}, {3, 0}, {3, 2}, {4, 2}, {5, 2}, {6, 2}, {7, 2}};
  EXPECT_THAT(ColumnOf(kSwitchWLANAssociations), ElementsAre("Strong", "Weak", "", "Weak", "", "Strong", "Strong", ""));
}

TEST_F(WirelessNodeFileTest, LeavesOutExcludedNodesAndThoseWithoutAnAddress) {
  for (int i = 0; i < 5; ++i) Add({});
  wireless().excluded = {3, 0};
  wireless().nodes[1].address = kNoAddress;
  wireless().nodes[2].address = 4711;  // in no table
  engine.live.addresses[4].valid = 0;  // a record without an address has an empty text, and a row
  SwitchColumnsOff();
  EXPECT_THAT(Rows(), ElementsAre(kSaved + ",0,0,"));
}

TEST_F(WirelessNodeFileTest, ReadsTheSnapshotAndAsksTheLiveTableForWhatThatLacks) {
  Add({});
  Add({});
  engine.at_snapshot = engine.live;
  engine.at_snapshot->addresses.resize(1);
  engine.at_snapshot->addresses[0].bytes = {10, 9, 9, 9};  // the snapshot's own comes first
  engine.live.wireless.reset();
  SwitchColumnsOff();
  EXPECT_THAT(Rows(), ElementsAre(kSaved + "10.9.9.9,0,0,", kSaved + "10.0.0.2,0,0,"));
  engine.Fail("IStatsContext::GetAddressTable", 2, E_NOINTERFACE);  // the first asks the live context
  EXPECT_THAT(Rows(), ElementsAre(kSaved + "10.0.0.1,0,0,", kSaved + "10.0.0.2,0,0,"));
}

TEST_F(WirelessNodeFileTest, DataRatesStandBehindEverythingElse) {
  Add({});
  Add({});
  wireless().node_rates[0] = {{11, 5, 500}, {22, 6, 600}, {108, 7, 700}};
  wireless().node_rates[1] = {{2, 18446744073709551615U, 1}};
  SwitchColumnsOff();
  const struct {
    int packets;
    int bytes;
    std::vector<std::string> lines;
  } cases[] = {
      {1,
       1,
       {"1 Mbits/s Packets,1 Mbits/s Bytes,2 Mbits/s Packets,2 Mbits/s Bytes,5.5 Mbits/s Packets,5.5 Mbits/s Bytes,"
        "11 Mbits/s Packets,11 Mbits/s Bytes,",
        "0,0,0,0,5,500,6,600,", "18446744073709551615,1,0,0,0,0,0,0,"}},
      {1,
       0,
       {"1 Mbits/s Packets,2 Mbits/s Packets,5.5 Mbits/s Packets,11 Mbits/s Packets,", "0,0,5,6,",
        "18446744073709551615,0,0,0,"}},
      {0, 1, {"1 Mbits/s Bytes,2 Mbits/s Bytes,5.5 Mbits/s Bytes,11 Mbits/s Bytes,", "0,0,500,600,", "1,0,0,0,"}},
      {0, 0, {"", "", ""}},
  };
  for (const auto& c : cases) {
    Switch(kSwitchOutputDataRates, 1);
    Switch(kSwitchDataRatesPackets, c.packets);
    Switch(kSwitchDataRatesBytes, c.bytes);
    EXPECT_THAT(Written(kFile),
                ElementsAre("Report Saved,Address,Bytes Sent,Bytes Received," + c.lines[0],
                            kSaved + "10.0.0.1,0,0," + c.lines[1], kSaved + "10.0.0.2,0,0," + c.lines[2]));
  }
}

TEST_F(WirelessNodeFileTest, TheMediumOfTheSnapshotChoosesTheRates) {
  Add({});
  Switch(kSwitchOutputDataRates, 1);
  const std::tuple<std::uint32_t, std::uint32_t, std::size_t> cases[] = {
      {0, kSubtype80211b, 4}, {0, kSubtype80211a, 11}, {0, kSubtype80211bg, 17}, {1, kSubtype80211bg, 0}};
  for (const auto& [type, subtype, rates] : cases) {
    engine.at_snapshot = engine.live;
    engine.at_snapshot->medium_type = type;
    engine.at_snapshot->medium_subtype = subtype;
    EXPECT_THAT(Split(Rows().at(0)), SizeIs(2 + kColumns + 2 * rates)) << type << ' ' << subtype;
  }
}

TEST_F(WirelessNodeFileTest, RatesThatCannotBeHadCountAsNone) {
  Add({});
  Add({});
  wireless().node_rates[0] = wireless().node_rates[1] = {{2, 5, 500}};
  SwitchColumnsOff();
  Switch(kSwitchOutputDataRates, 1);
  Switch(kSwitchDataRatesBytes, 0);
  engine.Fail("IWirelessNodeStats::GetRates", 1, E_FAIL);
  EXPECT_THAT(Rows(), ElementsAre(kSaved + "10.0.0.1,0,0,0,0,0,0,", kSaved + "10.0.0.2,0,0,5,0,0,0,"));
  EXPECT_EQ(FileStatus(kFile), S_OK);
}

TEST_F(WirelessNodeFileTest, EveryOtherFailureEndsTheFileWhereItIs) {
  WirelessNodeEntry station;
  station.type = kWirelessStation;
  for (int i = 0; i < 3; ++i) Add(i == 0 ? WirelessNodeEntry() : station);
  wireless().associations = {{1, 1}, {2, 1}};
  const std::tuple<const char*, int, std::size_t> cases[] = {
      {"IWirelessNodeStats::GetCount", 1, 0},           {"IWirelessNodeStats::GetExcluded", 1, 0},
      {"IWirelessNodeStats::GetEntry", 3, 2},           {"IWirelessNodeStats::GetAssociationCount", 1, 1},
      {"IWirelessNodeStats::GetAssociation", 2, 1},     {"IAddressTable::GetRecord", 2, 1},
      {"IAddressNameService::AppendAddressText", 2, 1},
  };
  for (const auto& [operation, nth, rows] : cases) {
    engine.Fail(operation, nth, DISP_E_OVERFLOW);
    EXPECT_THAT(Rows(), SizeIs(rows)) << operation;
    EXPECT_EQ(FileStatus(kFile), DISP_E_OVERFLOW) << operation;
  }
}

TEST_F(WirelessNodeFileTest, WithoutNodesOfTheKindOrItsSwitchThereIsNoFile) {
  Add({});
  Switch(kSwitchOutputWLANStats, 0);
  EXPECT_THAT(Written(kFile), IsEmpty());
  Switch(kSwitchOutputWLANStats, 1);
  engine.live.wireless.reset();
  EXPECT_THAT(Written(kFile), IsEmpty());

  engine.live.wireless.emplace();
  EXPECT_THAT(Written(kFile), ElementsAre(StartsWith("Report Saved,Address,Type,")));
  Switch(kSwitchOutputDataRates, 1);
  engine.Fail("IStatsContext::GetMediumType", 1, E_FAIL);
  EXPECT_THAT(Written(kFile), IsEmpty()) << "the columns have to be known before the file is made";
}

}  // namespace
}  // namespace orvo::test
