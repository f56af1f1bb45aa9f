#include "capture/tables/wireless_nodes.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "capture/tables/level_range.h"

namespace orvo {
namespace {

constexpr std::uint32_t kStrong = 2;
constexpr std::uint32_t kWeak = 1;
constexpr std::size_t kFixedRows = 2;

std::uint16_t SizeField(std::uint64_t length) {
  return static_cast<std::uint16_t>(std::min<std::uint64_t>(length, kNoMinimumSize - 1));
}

void Widen(std::uint64_t* first, std::uint64_t* last, std::uint64_t time) {
  if (*first == 0 || time < *first) *first = time;
  *last = std::max(*last, time);
}

/// What a method of EAP (IANA EAP method types) counts as.
std::uint8_t AuthenticationOf(std::uint8_t method) {
  constexpr std::pair<std::uint8_t, std::uint8_t> kMethods[] = {
      {13, kAuthenticationEapTls}, {17, kAuthenticationLeap}, {25, kAuthenticationPeap}};
  for (const auto& [number, code] : kMethods) {
    if (number == method) return code;
  }
  return kAuthenticationEap;
}

/// A method, once seen, says more than that there is one.
void SetAuthentication(std::uint8_t code, WirelessNodeEntry* entry) {
  if (code > kAuthenticationEap || entry->authentication == kAuthenticationNone) entry->authentication = code;
}

bool SameName(const WirelessNodeEntry& entry, const NetworkFacts& network) {
  return entry.name_length == network.name_length && entry.name == network.name;
}

}  // namespace

WirelessNodeTable::WirelessNodeTable(std::size_t limit, std::size_t rates, std::shared_ptr<const TrustList> trust)
    : rates_(rates), trust_(std::move(trust)), limit_(limit) {}

// --- rows ---

void WirelessNodeTable::AddFixedRows() {
  constexpr WirelessNodeType kTypes[kFixedRows] = {kWirelessAdmin, kWirelessNetworkName};
  for (std::uint32_t i = 0; i < kFixedRows; ++i) {
    WirelessNodeRow added;
    added.entry.address = kNoAddress;
    added.entry.type = kTypes[i];
    added.entry.association_keys = {i, i};
    rows_.Append(added);
  }
}

std::uint32_t WirelessNodeTable::RowOf(const AddressRecord& address, AddressTable* addresses) {
  const std::uint32_t index = addresses->Intern(address);
  if (index == kNoAddress) return kNoRow;
  if (rows_by_address_.size() <= index) rows_by_address_.resize(index + 1, kNoRow);
  std::uint32_t& row = rows_by_address_[index];
  if (row != kNoRow || rows_.size() - kFixedRows >= limit_) return row;
  row = static_cast<std::uint32_t>(rows_.size());
  const bool is_group = DeliveryToPhysical(address) != Delivery::kUnicast;
  WirelessNodeRow added;
  added.entry.address = index;
  added.entry.type = is_group ? kWirelessAdmin : kWirelessStation;
  added.entry.association_keys = {kNoNetwork, kNoName};
  if (trust_) {
    auto found = trust_->find(address);
    if (found != trust_->end()) added.entry.trust = found->second;
  }
  rows_.Append(added);
  counts_.clients += !is_group;
  return row;
}

/// The entry of a network's name; kNoName for a hidden one, and when there is no room.
std::uint32_t WirelessNodeTable::RowOfName(const NetworkFacts& network) {
  if (!network.shows_name()) return kNoName;
  std::array<std::uint64_t, 5> words{};
  std::memcpy(words.data(), network.name.data(), network.name.size());
  words.back() = network.name_length;
  const std::uint64_t hash = name_hash_(words);
  std::uint32_t row = names_.Find(hash, [&](std::uint32_t at) { return SameName(rows_[at].entry, network); });
  if (row != kNoRow) return row;
  if (rows_.size() - kFixedRows >= limit_) return kNoName;
  row = static_cast<std::uint32_t>(rows_.size());
  WirelessNodeRow added;
  added.entry.address = kNoAddress;
  added.entry.type = kWirelessNetworkName;
  added.entry.association_keys = {kNoNetwork, row};
  added.entry.name_length = network.name_length;
  added.entry.name = network.name;
  names_.Reserve();
  rows_.Append(added);
  names_.Add(hash, row);
  return row;
}

// --- what nodes are ---

void WirelessNodeTable::Become(std::uint32_t row, WirelessNodeType type) {
  if (row == kNoRow) return;
  const std::uint32_t now = rows_[row].entry.type;
  if (now == type || now == kWirelessAdmin || now == kWirelessAccessPoint) return;
  WirelessNodeEntry& entry = Entry(row);
  counts_.clients -= now == kWirelessStation;
  entry.association_keys = {type == kWirelessAccessPoint ? row : kNoNetwork, kNoName};
  entry.name_length = 0;
  entry.type = type;
  if (type != kWirelessAccessPoint) return;
  ++counts_.access_points;
  ++nameless_access_points_;
}

/// Gives a node its network's name, or takes it away.
void WirelessNodeTable::Name(std::uint32_t row, std::uint32_t name) {
  const std::uint32_t old = rows_[row].entry.association_keys[1];
  if (old == name) return;
  WirelessNodeEntry& entry = Entry(row);
  entry.association_keys[1] = name;
  entry.name = rows_[name].entry.name;
  entry.name_length = rows_[name].entry.name_length;
  if (entry.type != kWirelessAccessPoint) return;
  if (old == kNoName) {
    --nameless_access_points_;
  } else {
    counts_.networks -= --rows_.Edit(old).access_points == 0;
  }
  if (name == kNoName) {
    ++nameless_access_points_;
  } else {
    counts_.networks += ++rows_.Edit(name).access_points == 1;
  }
}

void WirelessNodeTable::JoinAdHoc(std::uint32_t row, const AddressRecord& network) {
  Become(row, kWirelessAdHoc);
  if (row == kNoRow || rows_[row].entry.type != kWirelessAdHoc) return;
  auto found = ad_hoc_networks_.find(network);
  if (found == ad_hoc_networks_.end()) {
    if (ad_hoc_networks_.size() < limit_) ad_hoc_networks_.emplace(network, kNoName);
  } else if (found->second != kNoName) {
    Name(row, found->second);
  }
}

bool WirelessNodeTable::IsStrong(std::uint32_t station) const {
  const std::uint32_t record = rows_[station].association;
  return record != kNoRow && associations_[record].strength == kStrong;
}

void WirelessNodeTable::SetStrength(std::uint32_t station, bool strong) {
  const std::uint32_t strength = strong ? kStrong : kWeak;
  const std::uint32_t record = rows_[station].association;
  if (record == kNoRow) {
    rows_.Edit(station).association = static_cast<std::uint32_t>(associations_.size());
    associations_.Append({station, strength});
  } else if (associations_[record].strength != strength) {
    associations_.Edit(record).strength = strength;
  }
}

void WirelessNodeTable::Associate(std::uint32_t station, std::uint32_t access_point, bool strong) {
  if (station == kNoRow || rows_[station].entry.type != kWirelessStation || !IsAccessPoint(access_point)) return;
  const WirelessNodeRow& row = rows_[station];
  const WirelessNodeEntry& network = rows_[access_point].entry;
  const bool is_new = row.entry.association_keys[0] != access_point;
  if (is_new && !strong && IsStrong(station)) return;
  if (is_new) Entry(station).association_keys[0] = access_point;
  if (is_new || strong) SetStrength(station, strong);
  Name(station, network.association_keys[1]);
  if (network.beacon_channel != 0 && rows_[station].entry.beacon_channel != network.beacon_channel) {
    Entry(station).beacon_channel = network.beacon_channel;
  }
}

void WirelessNodeTable::TakeLeave(const Ends& ends) {
  const auto [station, access_point] = IsAccessPoint(ends.transmitter) ? std::pair{ends.station, ends.transmitter}
                                                                       : std::pair{ends.transmitter, ends.station};
  if (station == kNoRow || access_point == kNoRow || rows_[station].association == kNoRow) return;
  if (rows_[station].entry.association_keys[0] == access_point) SetStrength(station, false);
}

// --- what frames tell ---

void WirelessNodeTable::Learn(const WirelessNote& note, const Ends& ends) {
  switch (note.facts.type) {
    case FrameType::kManagement: LearnFromManagement(note.facts, ends); break;
    case FrameType::kControl: LearnFromNeighbours(note.facts, ends); break;
    case FrameType::kData:
      LearnFromData(note.facts, ends);
      if (note.eap_method != 0) LearnEap(note.eap_method, ends);
      break;
    default: break;
  }
}

void WirelessNodeTable::LearnFromManagement(const WirelessFacts& facts, const Ends& ends) {
  switch (facts.subtype) {
    case kBeacon:
    case kProbeResponse:
      Announce(facts, ends.transmitter);
      Associate(ends.station, ends.transmitter, false);
      break;
    case kAssociationRequest:
    case kReassociationRequest: Request(facts, ends); break;
    case kAssociationResponse:
    case kReassociationResponse:
      Become(ends.transmitter, kWirelessAccessPoint);
      Associate(ends.station, ends.transmitter, facts.announced.status == 0);
      break;
    case kProbeRequest:
      // Who belongs to a network and looks for others still belongs to it.
      if (rows_[ends.transmitter].entry.type == kWirelessStation && facts.announced.shows_name() &&
          rows_[ends.transmitter].entry.association_keys[0] == kNoNetwork) {
        Name(ends.transmitter, RowOfName(facts.announced));
        SetStrength(ends.transmitter, false);
      }
      LearnFromNeighbours(facts, ends);
      break;
    case kAuthentication:
    case kDisassociation:
    case kDeauthentication:
      if (facts.network == facts.transmitter) Become(ends.transmitter, kWirelessAccessPoint);
      if (facts.network == facts.receiver) Become(ends.station, kWirelessAccessPoint);
      LearnFromNeighbours(facts, ends);
      if (facts.subtype != kAuthentication) TakeLeave(ends);
      for (std::uint32_t row : {ends.transmitter, ends.station}) {
        if (row != kNoRow && facts.announced.authentication == kAuthenticationLeap) {
          SetAuthentication(kAuthenticationLeap, &Entry(row));
        }
      }
      break;
    default: LearnFromNeighbours(facts, ends);
  }
}

/// A beacon, or the answer to a probe.
void WirelessNodeTable::Announce(const WirelessFacts& facts, std::uint32_t row) {
  const NetworkFacts& announced = facts.announced;
  if (!announced.has_capabilities || announced.is_infrastructure == announced.is_ad_hoc) return;
  const std::uint32_t name = RowOfName(announced);
  if (announced.is_infrastructure) {
    Become(row, kWirelessAccessPoint);
  } else {
    JoinAdHoc(row, facts.network);
    auto network = ad_hoc_networks_.find(facts.network);
    if (network != ad_hoc_networks_.end() && name != kNoName) network->second = name;
  }
  if (rows_[row].entry.type == kWirelessAdmin) return;
  if (name != kNoName) Name(row, name);
  rows_.Edit(row).is_announced = true;
  WirelessNodeEntry& entry = Entry(row);
  if (facts.subtype == kBeacon) entry.broadcast_name = announced.shows_name();
  if (announced.channel != 0) entry.beacon_channel = announced.channel;
  entry.privacy = announced.privacy;
  entry.encryption = announced.encryption;
  if (announced.authentication != kAuthenticationNone) SetAuthentication(announced.authentication, &entry);
}

/// A station asks to be associated, and says how.
void WirelessNodeTable::Request(const WirelessFacts& facts, const Ends& ends) {
  const NetworkFacts& announced = facts.announced;
  Become(ends.station, kWirelessAccessPoint);
  if (IsAccessPoint(ends.station) && rows_[ends.station].entry.association_keys[1] == kNoName) {
    Name(ends.station, RowOfName(announced));
  }
  Associate(ends.transmitter, ends.station, false);
  if (!announced.has_capabilities || rows_[ends.transmitter].entry.type != kWirelessStation) return;
  rows_.Edit(ends.transmitter).is_announced = true;
  WirelessNodeEntry& entry = Entry(ends.transmitter);
  entry.privacy = announced.privacy;
  entry.encryption = announced.encryption;
  if (announced.authentication != kAuthenticationNone) SetAuthentication(announced.authentication, &entry);
}

void WirelessNodeTable::LearnFromData(const WirelessFacts& facts, const Ends& ends) {
  const bool carries = (facts.subtype & kDataWithoutPayload) == 0;
  if (facts.to_ds && facts.from_ds) {
    // Between access points, or to one from a station that bridges.
    if (!IsAccessPoint(ends.transmitter) && !IsAccessPoint(ends.station)) {
      Become(ends.transmitter, kWirelessAccessPoint);
      Become(ends.station, kWirelessAccessPoint);
    }
    Associate(ends.transmitter, ends.station, carries);
    Associate(ends.station, ends.transmitter, carries);
  } else if (facts.to_ds) {
    Become(ends.station, kWirelessAccessPoint);
    Associate(ends.transmitter, ends.station, carries);
  } else if (facts.from_ds) {
    Become(ends.transmitter, kWirelessAccessPoint);
    Associate(ends.station, ends.transmitter, carries);
  } else if (DeliveryToPhysical(facts.network) == Delivery::kUnicast) {
    // The wildcard stands for traffic outside of networks. Stations of one access point may speak to each other, too.
    const bool is_known = ad_hoc_networks_.contains(facts.network);
    for (std::uint32_t row : {ends.transmitter, ends.station}) {
      if (row != kNoRow && (is_known || !IsStrong(row))) JoinAdHoc(row, facts.network);
    }
  }
}

/// Frames that tell no more than that an access point and a station speak to each other.
void WirelessNodeTable::LearnFromNeighbours(const WirelessFacts& facts, const Ends& ends) {
  if (facts.type == FrameType::kControl && facts.subtype == kPsPoll) Become(ends.station, kWirelessAccessPoint);
  if (IsAccessPoint(ends.transmitter) == IsAccessPoint(ends.station)) return;
  Associate(ends.transmitter, ends.station, false);
  Associate(ends.station, ends.transmitter, false);
}

void WirelessNodeTable::LearnEap(std::uint8_t method, const Ends& ends) {
  constexpr std::uint8_t kNak = 3;  // names the method that is wanted, not the one in use
  for (std::uint32_t row : {ends.transmitter, ends.station}) {
    if (row != kNoRow && method != kNak) SetAuthentication(AuthenticationOf(method), &Entry(row));
  }
}

// --- counting ---

bool WirelessNodeTable::Count(const WirelessNote& note, AddressTable* addresses) {
  if (rows_.size() == 0) AddFixedRows();
  const WirelessFacts& wireless = note.facts;
  bool listed = true;
  Ends ends;
  if (wireless.transmitter.valid != 0) {
    ends.transmitter = RowOf(wireless.transmitter, addresses);
    listed = ends.transmitter != kNoRow;
  }
  if (wireless.receiver.valid != 0) {
    ends.receiver = RowOf(wireless.receiver, addresses);
    listed &= ends.receiver != kNoRow;
  }
  if (wireless.delivery == Delivery::kUnicast) ends.station = ends.receiver;
  if (ends.transmitter != kNoRow) Learn(note, ends);
  for (std::uint32_t row : {ends.transmitter, ends.receiver}) {
    if (row == kNoRow) continue;
    if (row == ends.transmitter) CountSent(note, row);
    if (row == ends.receiver) CountReceived(note, row);
    listed &= CountRadio(note, row, row == ends.transmitter);
    if (ends.receiver == ends.transmitter) break;
  }
  return listed;
}

bool WirelessNodeTable::CountRadio(const WirelessNote& note, std::uint32_t number, bool sent) {
  const RadioFacts& radio = note.facts.radio;
  WirelessNodeRow& row = rows_.Edit(number);
  std::uint16_t& channel = row.entry.current_channel;
  if (radio.channel != 0 && (sent || channel == 0)) channel = radio.channel;
  // Where one of the two is not told, the other is the best guess.
  if (channel == 0) channel = row.entry.beacon_channel;
  if (row.entry.beacon_channel == 0) row.entry.beacon_channel = channel;
  return radio.rate == 0 || rates_.Count(&row.first_rate, radio.rate, note.bytes);
}

void WirelessNodeTable::CountSent(const WirelessNote& note, std::uint32_t number) {
  const WirelessFacts& facts = note.facts;
  WirelessNodeRow& row = rows_.Edit(number);
  WirelessNodeEntry& entry = row.entry;
  const std::uint64_t bytes = note.bytes;
  Widen(&entry.first_time_sent, &entry.last_time_sent, note.time);
  ++entry.packets_sent;
  entry.bytes_sent += bytes;
  entry.min_size_sent = std::min(entry.min_size_sent, SizeField(bytes));
  entry.max_size_sent = std::max(entry.max_size_sent, SizeField(bytes));
  if (facts.delivery == Delivery::kBroadcast) {
    ++entry.broadcast_packets;
    entry.broadcast_bytes += bytes;
  } else if (facts.delivery == Delivery::kMulticast) {
    ++entry.multicast_packets;
    entry.multicast_bytes += bytes;
  }
  entry.retry_packets += facts.is_retry;
  entry.beacon_packets += facts.type == FrameType::kManagement && facts.subtype == kBeacon;
  entry.wep_packets += facts.is_protected;
  entry.icv_errors += facts.icv_error;
  if (facts.has_key) {
    entry.wep_key = facts.key;
    entry.privacy = 1;
    if (!row.is_announced && facts.delivery == Delivery::kUnicast) entry.encryption = facts.encryption;
  }
  AddLevel(facts.radio.signal, &row.has_signal, &entry.signal);
  AddLevel(facts.radio.noise, &row.has_noise, &entry.noise);
  if (entry.type == kWirelessAccessPoint && entry.association_keys[1] != kNoName) {
    WirelessNodeEntry& name = Entry(entry.association_keys[1]);
    Widen(&name.first_time_sent, &name.last_time_sent, note.time);
    ++name.packets_sent;
    name.bytes_sent += bytes;
  }
}

void WirelessNodeTable::CountReceived(const WirelessNote& note, std::uint32_t row) {
  WirelessNodeEntry& entry = Entry(row);
  const std::uint64_t bytes = note.bytes;
  Widen(&entry.first_time_received, &entry.last_time_received, note.time);
  ++entry.packets_received;
  entry.bytes_received += bytes;
  entry.min_size_received = std::min(entry.min_size_received, SizeField(bytes));
  entry.max_size_received = std::max(entry.max_size_received, SizeField(bytes));
  if (entry.type == kWirelessAccessPoint && entry.association_keys[1] != kNoName) {
    WirelessNodeEntry& name = Entry(entry.association_keys[1]);
    Widen(&name.first_time_received, &name.last_time_received, note.time);
    ++name.packets_received;
    name.bytes_received += bytes;
  }
}

WirelessCounts WirelessNodeTable::Counts() const {
  WirelessCounts counts = counts_;
  counts.networks += nameless_access_points_;
  counts.ad_hoc_networks = static_cast<std::uint32_t>(ad_hoc_networks_.size());
  return counts;
}

}  // namespace orvo
