#include "capture/context/snapshot_wireless.h"

#include <bit>
#include <type_traits>

#include "engine/context.h"

namespace orvo {
namespace {

constexpr std::size_t kRateLength = 4 + 8 + 8;
constexpr std::size_t kAssociationLength = 4 + 4;
// Without the rates, but with their number.
constexpr std::size_t kNodeLength = 211;
constexpr std::size_t kChannelLength = 252;

// The fields of the records, in the order of the snapshot, for reading and writing alike.

template <class Strength, class Visit>
void VisitStrength(Strength& s, Visit visit) {
  visit(s.min_percent, s.max_percent, s.current_percent, s.min_dbm, s.max_dbm, s.current_dbm);
}

template <class Entry, class Visit>
void VisitNode(Entry& e, Visit visit) {
  visit(e.first_time_sent, e.last_time_sent, e.first_time_received, e.last_time_received);
  visit(e.packets_sent, e.packets_received, e.bytes_sent, e.bytes_received);
  visit(e.broadcast_packets, e.broadcast_bytes, e.multicast_packets, e.multicast_bytes);
  visit(e.retry_packets, e.beacon_packets, e.wep_packets, e.icv_errors);
  visit(e.address, e.type, e.association_keys[0], e.association_keys[1]);
  visit(e.min_size_sent, e.max_size_sent, e.min_size_received, e.max_size_received);
  visit(e.beacon_channel, e.current_channel, e.wep_key, e.encryption, e.authentication);
  visit(e.privacy, e.broadcast_name, e.trust, e.name_length);
  for (auto& byte : e.name) visit(byte);
  VisitStrength(e.signal, visit);
  VisitStrength(e.noise, visit);
}

template <class Entry, class Visit>
void VisitChannel(Entry& e, Visit visit) {
  visit(e.channel, e.frequency, e.band);
  for (auto* count : {&e.total, &e.data, &e.management, &e.control, &e.local, &e.from_ds, &e.to_ds, &e.ds_to_ds,
                      &e.retry, &e.protected_frames, &e.order}) {
    visit(count->packets, count->bytes);
  }
  visit(e.crc_packets, e.icv_errors);
  VisitStrength(e.signal, visit);
  VisitStrength(e.noise, visit);
  visit(e.signal_sum, e.noise_sum, e.signal_milliwatt_sum, e.noise_milliwatt_sum);
}

/// Each field as a number of its width: two's complement, and the bits of an IEEE double.
auto WriterOf(SnapshotWriter& out) {
  return [&out](const auto&... fields) {
    auto write = [&out](auto field) {
      if constexpr (std::is_same_v<decltype(field), double>) {
        out.Number(std::bit_cast<std::uint64_t>(field));
      } else {
        out.Number(static_cast<std::make_unsigned_t<decltype(field)>>(field));
      }
    };
    (write(fields), ...);
  };
}

auto ReaderOf(SnapshotReader& in) {
  return [&in](auto&... fields) {
    auto read = [&in](auto& field) {
      using Field = std::remove_reference_t<decltype(field)>;
      if constexpr (std::is_same_v<Field, double>) {
        field = std::bit_cast<double>(in.Number<std::uint64_t>());
      } else {
        field = static_cast<Field>(in.Number<std::make_unsigned_t<Field>>());
      }
    };
    (read(fields), ...);
  };
}

void WriteRates(const FrozenTable<RateRow>& rates, std::uint32_t first, SnapshotWriter& out) {
  std::uint32_t count = 0;
  for (std::uint32_t row = first; row != kNoRow; row = rates[row].next) ++count;
  out.Number(count);
  for (std::uint32_t row = first; row != kNoRow; row = rates[row].next) {
    const WirelessRate& rate = rates[row].rate;
    out.Number(rate.rate);
    out.Number(rate.packets);
    out.Number(rate.bytes);
  }
}

/// Appends a list, and gives the row of its first.
std::uint32_t ReadRates(SnapshotReader& in, PagedVector<RateRow>* rates) {
  const std::uint32_t count = in.Count(kRateLength);
  const auto first = static_cast<std::uint32_t>(rates->size());
  for (std::uint32_t i = 0; i < count; ++i) {
    RateRow row;
    row.rate = {in.Number<std::uint32_t>(), in.Number<std::uint64_t>(), in.Number<std::uint64_t>()};
    if (i + 1 < count) row.next = first + i + 1;
    rates->Append(row);
  }
  return count == 0 ? kNoRow : first;
}

void CheckNode(const WirelessNodeEntry& entry, std::uint32_t count) {
  if (entry.name_length > entry.name.size()) Raise(E_FAIL);
  for (std::uint32_t key : entry.association_keys) {
    if (key >= count) Raise(E_FAIL);
  }
}

FrozenWirelessNodes ReadNodes(SnapshotReader& in) {
  FrozenWirelessNodes nodes;
  for (auto* count :
       {&nodes.counts.networks, &nodes.counts.access_points, &nodes.counts.ad_hoc_networks, &nodes.counts.clients}) {
    *count = in.Number<std::uint32_t>();
  }
  PagedVector<WirelessNodeRow> rows;
  PagedVector<RateRow> rates;
  const std::uint32_t count = in.Count(kNodeLength);
  for (std::uint32_t i = 0; i < count; ++i) {
    WirelessNodeRow row;
    VisitNode(row.entry, ReaderOf(in));
    CheckNode(row.entry, count);
    row.first_rate = ReadRates(in, &rates);
    rows.Append(row);
  }
  PagedVector<WirelessAssociation> associations;
  const std::uint32_t ties = in.Count(kAssociationLength);
  for (std::uint32_t i = 0; i < ties; ++i) {
    const WirelessAssociation tie{in.Number<std::uint32_t>(), in.Number<std::uint32_t>()};
    if (tie.station >= count) Raise(E_FAIL);
    associations.Append(tie);
  }
  nodes.rows = rows.Freeze();
  nodes.associations = associations.Freeze();
  nodes.rates = rates.Freeze();
  return nodes;
}

FrozenWirelessChannels ReadChannels(SnapshotReader& in) {
  PagedVector<WirelessChannelRow> rows;
  PagedVector<RateRow> rates;
  const std::uint32_t count = in.Count(kChannelLength);
  for (std::uint32_t i = 0; i < count; ++i) {
    WirelessChannelRow row;
    VisitChannel(row.entry, ReaderOf(in));
    row.first_rate = ReadRates(in, &rates);
    rows.Append(row);
  }
  return {rows.Freeze(), rates.Freeze()};
}

}  // namespace

void WriteWireless(const FrozenWireless& wireless, SnapshotWriter& out) {
  const FrozenWirelessNodes& nodes = wireless.nodes;
  out.Number(wireless.subtype);
  for (std::uint32_t count :
       {nodes.counts.networks, nodes.counts.access_points, nodes.counts.ad_hoc_networks, nodes.counts.clients}) {
    out.Number(count);
  }
  out.Number(static_cast<std::uint32_t>(nodes.rows.size()));
  for (std::size_t i = 0; i < nodes.rows.size(); ++i) {
    VisitNode(nodes.rows[i].entry, WriterOf(out));
    WriteRates(nodes.rates, nodes.rows[i].first_rate, out);
  }
  out.Number(static_cast<std::uint32_t>(nodes.associations.size()));
  for (std::size_t i = 0; i < nodes.associations.size(); ++i) {
    out.Number(nodes.associations[i].station);
    out.Number(nodes.associations[i].strength);
  }
  const FrozenWirelessChannels& channels = wireless.channels;
  out.Number(static_cast<std::uint32_t>(channels.rows.size()));
  for (std::size_t i = 0; i < channels.rows.size(); ++i) {
    VisitChannel(channels.rows[i].entry, WriterOf(out));
    WriteRates(channels.rates, channels.rows[i].first_rate, out);
  }
}

std::shared_ptr<const FrozenWireless> ReadWireless(SnapshotReader in) {
  auto wireless = std::make_shared<FrozenWireless>();
  wireless->subtype = in.Number<std::uint32_t>();
  if (!IsWirelessSubtype(wireless->subtype)) Raise(E_FAIL);
  wireless->nodes = ReadNodes(in);
  wireless->channels = ReadChannels(in);
  if (!in.AtEnd()) Raise(E_FAIL);
  return wireless;
}

}  // namespace orvo
