#pragma once

#include <string>

#include "tests/capture/engine_fixture.h"
#include "tests/capture/wireless_frames.h"

namespace orvo::test {

inline std::string Describe(const WirelessStrength& strength) {
  auto dbm = [](std::int8_t level) { return level == kNoDbm ? "-" : std::to_string(level); };
  return std::to_string(strength.min_percent) + "-" + std::to_string(strength.max_percent) + "," +
         std::to_string(strength.current_percent) + "% " + dbm(strength.min_dbm) + ".." + dbm(strength.max_dbm) + "," +
         dbm(strength.current_dbm);
}

inline std::string DescribeRates(const WirelessRate* rates, std::uint32_t count) {
  std::string text;
  for (std::uint32_t i = 0; i < count; ++i) {
    text += (text.empty() ? "" : " ") + std::to_string(rates[i].rate) + ":" + std::to_string(rates[i].packets) + "/" +
            std::to_string(rates[i].bytes);
  }
  return text;
}

inline std::string AssociationOf(const ComPtr<IWirelessNodeStats>& nodes, std::uint32_t station) {
  for (std::uint32_t i = 0, count = Ask(nodes)(&IWirelessNodeStats::GetAssociationCount); i < count; ++i) {
    const WirelessAssociation* association = Ask(nodes)(&IWirelessNodeStats::GetAssociation, i);
    if (association->station == station) return association->strength == 2 ? "strong" : "weak";
  }
  return "none";
}

/// What a node is, without what it has sent and received: one line each.
inline std::string DescribeNode(const View& view, const ComPtr<IWirelessNodeStats>& nodes, std::uint32_t index) {
  static constexpr const char* kTypes[] = {"?", "admin", "AP", "name", "STA", "ad hoc"};
  const WirelessNodeEntry* entry = Ask(nodes)(&IWirelessNodeStats::GetEntry, index);
  const WirelessNodeEntry* network = Ask(nodes)(&IWirelessNodeStats::GetEntry, entry->association_keys[0]);
  std::string text = (entry->address == kNoAddress ? "-" : view.Text(entry->address)) + " " + kTypes[entry->type] +
                     " '" + std::string(entry->name.begin(), entry->name.begin() + entry->name_length) + "'";
  if (entry->type == kWirelessStation) {
    text += " of " + (network->address == kNoAddress ? "-" : view.Text(network->address)) + " " +
            AssociationOf(nodes, index);
  }
  text += " ch=" + std::to_string(entry->beacon_channel) + "/" + std::to_string(entry->current_channel);
  text += " enc=" + std::to_string(entry->encryption) + " auth=" + std::to_string(entry->authentication);
  if (entry->privacy != 0) text += " private";
  if (entry->broadcast_name != 0) text += " shown";
  if (entry->trust != 0) text += " trust=" + std::to_string(entry->trust);
  return text;
}

/// What a node has sent and received.
inline std::string DescribeTraffic(const View& view, const ComPtr<IWirelessNodeStats>& nodes, std::uint32_t index) {
  const WirelessNodeEntry* entry = Ask(nodes)(&IWirelessNodeStats::GetEntry, index);
  const WirelessRate* rates = nullptr;
  std::uint32_t count = 0;
  EXPECT_EQ(nodes->GetRates(index, &rates, &count), S_OK);
  auto number = [](std::uint64_t value) { return std::to_string(value); };
  return (entry->address == kNoAddress ? "-" : view.Text(entry->address)) + " sent=" + number(entry->packets_sent) +
         "/" + number(entry->bytes_sent) + " received=" + number(entry->packets_received) + "/" +
         number(entry->bytes_received) + " to-all=" + number(entry->broadcast_packets) +
         " to-many=" + number(entry->multicast_packets) + " retry=" + number(entry->retry_packets) +
         " beacon=" + number(entry->beacon_packets) + " wep=" + number(entry->wep_packets) + "," +
         number(entry->wep_key) + " icv=" + number(entry->icv_errors) + " signal=" + Describe(entry->signal) +
         " noise=" + Describe(entry->noise) + " rates=" + DescribeRates(rates, count);
}

using DescribeOne = std::string (*)(const View& view, const ComPtr<IWirelessNodeStats>& nodes, std::uint32_t index);

inline std::string DescribeNodes(const View& view, DescribeOne describe = DescribeNode) {
  const ComPtr<IWirelessNodeStats> nodes = view.Get(kWirelessNodeCategory);
  std::uint32_t excluded[2] = {9, 9};
  EXPECT_EQ(nodes->GetExcluded(&excluded[0], &excluded[1]), S_OK);
  std::string text;
  for (std::uint32_t i = 0, count = Ask(nodes)(&IWirelessNodeStats::GetCount); i < count; ++i) {
    if (i != excluded[0] && i != excluded[1]) text += describe(view, nodes, i) + "\n";
  }
  const WirelessCounts counts = Ask(nodes)(&IWirelessNodeStats::GetCounts);
  return text + "networks=" + std::to_string(counts.networks) +
         " access-points=" + std::to_string(counts.access_points) +
         " ad-hoc=" + std::to_string(counts.ad_hoc_networks) + " clients=" + std::to_string(counts.clients) + "\n";
}

inline std::string DescribeChannels(const View& view) {
  const ComPtr<IWirelessChannelStats> channels = view.Get(kWirelessChannelCategory);
  std::string text;
  auto add = [&](const char* title, const FrameCount& one) {
    if (one.packets != 0)
      text += std::string(" ") + title + "=" + std::to_string(one.packets) + "/" + std::to_string(one.bytes);
  };
  for (const WirelessChannelEntry* entry : view.Entries(kWirelessChannelCategory)) {
    text += std::to_string(entry->channel) + "/" + std::to_string(entry->frequency) +
            " band=" + std::to_string(entry->band);
    add("total", entry->total);
    add("data", entry->data);
    add("management", entry->management);
    add("control", entry->control);
    add("local", entry->local);
    add("from", entry->from_ds);
    add("to", entry->to_ds);
    add("between", entry->ds_to_ds);
    add("retry", entry->retry);
    add("protected", entry->protected_frames);
    add("order", entry->order);
    const WirelessRate* rates = nullptr;
    std::uint32_t rate_count = 0;
    EXPECT_EQ(channels->GetRates(entry->channel, entry->frequency, entry->band, &rates, &rate_count), S_OK);
    text += " crc=" + std::to_string(entry->crc_packets) + " icv=" + std::to_string(entry->icv_errors) +
            " signal=" + Describe(entry->signal) + "," + std::to_string(entry->signal_sum) +
            " noise=" + Describe(entry->noise) + "," + std::to_string(entry->noise_sum) +
            " rates=" + DescribeRates(rates, rate_count) + "\n";
  }
  return text;
}

}  // namespace orvo::test
