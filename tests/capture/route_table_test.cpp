// Packets that take a route are counted like packets that take none.

#include "capture/tables/route_table.h"

#include <gtest/gtest.h>

#include <random>
#include <sstream>

#include "capture/tables/statistics_tables.h"
#include "tests/capture/frames.h"

namespace orvo::test {
namespace {

template <class Table, class Print>
void Describe(const char* name, const Table& table, Print print, std::ostream& out) {
  for (std::size_t i = 0; i < table.size(); ++i) {
    out << name << ' ' << i << ':';
    print(table[i]);
    out << '\n';
  }
}

/// Every row of every table that addresses and protocols have a part in.
std::string Describe(StatisticsTables& tables) {
  const FrozenTables frozen = tables.Freeze();
  std::ostringstream out;
  Describe(
      "address", frozen.addresses.records,
      [&](const AddressRecord& r) { out << int{r.type} << ' ' << int{r.bytes[3]} << ' ' << int{r.bytes[5]}; }, out);
  Describe(
      "node", frozen.nodes,
      [&](const NodeEntry& n) {
        out << n.address << ' ' << n.packets_sent << ' ' << n.bytes_sent << ' ' << n.packets_received << ' '
            << n.bytes_received << ' ' << n.first_time_sent << ' ' << n.last_time_received << ' ' << n.broadcast_packets
            << ' ' << n.min_size_sent << ' ' << n.max_size_received;
      },
      out);
  Describe(
      "hierarchy", frozen.hierarchy,
      [&](const HierarchyEntry& h) {
        out << h.address << ' ' << h.parent << ' ' << h.packets_sent << ' ' << h.bytes_received;
      },
      out);
  Describe(
      "protocol", frozen.protocols, [&](const ProtocolEntry& p) { out << p.key << ' ' << p.packets; }, out);
  Describe(
      "conversation", frozen.conversations.entries,
      [&](const ConversationEntry& c) { out << c.packets << ' ' << c.bytes; }, out);
  Describe(
      "ends", frozen.conversations.endpoints,
      [&](const ConversationEndpoints& e) { out << e.source << ' ' << e.destination << ' ' << e.protocol; }, out);
  const Counters& c = frozen.counters;
  out << c.total.packets << ' ' << c.unlisted_addresses << ' ' << c.unlisted_conversations << ' '
      << c.unlisted_hierarchy << ' ' << c.physical_nodes << ' ' << c.ipv4_nodes << '\n';
  return out.str();
}

/// Few flows between few addresses, so that everything happens often: flows that end and leave their place to others,
/// changing physical addresses, protocols that are recognised late, broadcasts, raw IP, tunnels.
class Traffic {
 public:
  PacketNote Next() {
    FlowOf& flow = flows_[Below(8)];
    if (flow.serial == 0 || Below(20) == 0) flow = {++serial_, Address(Below(6)), Address(Below(6)), 0};
    const bool forth = Below(2) == 0;
    PacketNote note;
    note.time = kNewYear + ++packets_ * kSecond;
    note.bytes = 60 + Below(1500);
    if (Below(10) == 0) flow.protocol = static_cast<std::uint16_t>(1 + Below(4));
    note.protocol = flow.protocol;
    note.flow = {flow.serial, static_cast<std::uint32_t>(&flow - flows_.data()), forth};
    note.flow_names_network = Below(15) != 0;
    const unsigned shape = Below(12);
    if (shape != 0) {
      AddressPair& pair = note.pairs[note.pair_count++];
      SetAddress<6>(&pair.source, kAddressPhysical, Mac(static_cast<std::uint8_t>(Below(2) + forth * 2U)).data());
      if (shape != 1)
        SetAddress<6>(&pair.destination, kAddressPhysical, Mac(static_cast<std::uint8_t>(Below(3))).data());
      pair.delivery = shape == 2 ? Delivery::kBroadcast : Delivery::kUnicast;
    }
    AddressPair& network = note.pairs[note.pair_count++];
    network.source = forth ? flow.first : flow.second;
    network.destination = forth ? flow.second : flow.first;
    // Inside of a tunnel the flow's addresses are others than those that count.
    if (!note.flow_names_network) network.source = Address(7);
    return note;
  }

  unsigned Below(unsigned bound) { return static_cast<unsigned>(random_() % bound); }

 private:
  struct FlowOf {
    std::uint64_t serial = 0;
    AddressRecord first;
    AddressRecord second;
    std::uint16_t protocol = 0;
  };

  static AddressRecord Address(unsigned last) {
    AddressRecord record;
    SetAddress<4>(&record, kAddressIp, Ip4(static_cast<std::uint8_t>(last)).data());
    return record;
  }

  std::mt19937 random_{11};
  std::array<FlowOf, 8> flows_{};
  std::uint64_t serial_ = 0;
  std::uint64_t packets_ = 0;
};

TEST(RouteTable, ChangesNothingInTheTables) {
  const TableLimits cases[] = {{}, {5, 100, 100}, {100, 6, 100}, {100, 100, 7}, {8, 9, 10}, {0, 0, 0}};
  for (const TableLimits& limits : cases) {
    StatisticsTables routed(limits);
    StatisticsTables plain(limits);
    Traffic traffic;
    for (int round = 0; round < 200; ++round) {
      std::vector<PacketNote> notes(traffic.Below(70));
      for (PacketNote& note : notes) note = traffic.Next();
      routed.Count(notes);
      for (PacketNote& note : notes) {
        note.flow_names_network = false;
        plain.Count({&note, 1});
      }
      if (traffic.Below(30) == 0) {
        routed.Reset();
        plain.Reset();
      }
      if (round % 10 == 0) {
        ASSERT_EQ(Describe(routed), Describe(plain)) << limits.addresses << ", round " << round;
      }
    }
  }
}

TEST(Route, IsForPacketsWhoseNodesFollowFromTheirFlow) {
  PacketNote note;
  note.flow = {1, 0, true};
  note.flow_names_network = true;
  EXPECT_FALSE(Route::MayLead(note)) << "without addresses";
  note.pair_count = 1;
  SetAddress<10>(&note.pairs[0].source, kAddressIpx, Zeros(10).data());
  EXPECT_FALSE(Route::MayLead(note)) << "IP inside of another network protocol";
  SetAddress<4>(&note.pairs[0].source, kAddressIp, Ip4(1).data());
  EXPECT_TRUE(Route::MayLead(note));
  note.flow_names_network = false;
  EXPECT_FALSE(Route::MayLead(note)) << "a tunnel";
}

}  // namespace
}  // namespace orvo::test
