#include "capture/analysis/expert/flow_expert.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "capture/analysis/expert/flow_judge.h"
#include "capture/classify/port_application.h"
#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

constexpr std::uint8_t kUdp = 17;
constexpr std::uint16_t kFirstUserPort = 1024;
/// A silence of a flow counts as active time no longer than this, in nanoseconds.
constexpr std::uint64_t kLongestSilence = 1'000'000'000;

bool IsWellKnown(Layer layer, std::uint16_t port) {
  return port < kFirstUserPort || ProtocolRegistry::Get().Find(layer, port) != 0;
}

/// Judged by the first packet of a flow.
bool SenderIsClient(const PacketFacts& facts) {
  if ((facts.tcp_flags & TcpSegment::kSyn) != 0) return (facts.tcp_flags & TcpSegment::kAck) == 0;
  Layer layer = PortLayer(facts);
  bool from_known = IsWellKnown(layer, facts.source_port);
  bool to_known = IsWellKnown(layer, facts.destination_port);
  if (from_known != to_known) return to_known;
  return !from_known || facts.source_port >= facts.destination_port;
}

void CountPacket(const Packet& packet, FlowSide sender, FlowRow* row) {
  ++row->packets[sender];
  row->bytes[sender] += packet.original_length;
  if (row->first_time == 0) {
    row->first_time = row->last_time = packet.time;
  } else if (packet.time > row->last_time) {
    row->active_time += std::min(packet.time - row->last_time, kLongestSilence);
    row->last_time = packet.time;
  } else {
    row->first_time = std::min(row->first_time, packet.time);
  }
}

}  // namespace

void FlowExpert::Prepare(std::span<const PacketFacts> facts) const {
  for (const PacketFacts& packet : facts) {
    if (packet.flow.number >= tracks_.size()) continue;
    const auto* track = reinterpret_cast<const char*>(&tracks_[packet.flow.number]);
    __builtin_prefetch(track, 1);
    __builtin_prefetch(track + sizeof(FlowTrack) - 1, 1);
  }
  for (const PacketFacts& packet : facts) {
    if (packet.flow.number >= tracks_.size()) continue;
    std::uint32_t row = tracks_[packet.flow.number].row;
    if (row != kNoRow) rows_.Prefetch(row);
  }
}

void FlowExpert::Inspect(const Packet& packet, PacketFacts* facts, EventLog* log) {
  if (facts->flow.serial == 0) return;
  FlowTrack& track = TrackOf(*facts, log);
  FlowRow& row = rows_.Edit(track.row);
  if (facts->applications[0] != 0 && facts->applications != row.applications) {
    row.applications = facts->applications;
    track.spoken = SpokenBy(row.applications[0]);
  }
  FlowSide sender = facts->flow.from_first == track.client_is_first ? kClient : kServer;
  CountPacket(packet, sender, &row);
  const std::uint32_t before = row.retransmissions[sender];
  FlowJudge(&track, &row, log, packet.time, apdex_target_).Judge(packet, *facts, sender);
  facts->is_retransmission = row.retransmissions[sender] != before;
}

FlowTrack& FlowExpert::TrackOf(const PacketFacts& facts, EventLog* log) {
  const FlowMark& mark = facts.flow;
  if (mark.number >= tracks_.size()) tracks_.resize(std::size_t{mark.number} + 1);
  FlowTrack& track = tracks_[mark.number];
  if (track.serial != mark.serial) {
    if (track.row != kNoRow) {
      FlowRow& row = rows_.Edit(track.row);
      FlowJudge(&track, &row, log, row.last_time, apdex_target_).Close();
      Keep(track.row);
    }
    track = {};
    track.serial = mark.serial;
    track.client_is_first = mark.from_first == SenderIsClient(facts);
    if (facts.ip_protocol == kUdp) track.transport.dns = {};
  }
  if (track.row == kNoRow) BeginRow(facts, &track);
  return track;
}

void FlowExpert::BeginRow(const PacketFacts& facts, FlowTrack* track) {
  FlowSide sender = facts.flow.from_first == track->client_is_first ? kClient : kServer;
  FlowSide receiver = sender == kClient ? kServer : kClient;
  FlowRow row;
  row.id = ++begun_;
  row.ip_version = facts.datagram[0] >> 4;
  row.ip_protocol = facts.ip_protocol;
  std::size_t length = row.ip_version == 4 ? 4 : 16;
  const std::uint8_t* source = facts.datagram.data() + (row.ip_version == 4 ? 12 : 8);
  std::memcpy(row.addresses[sender].data(), source, length);
  std::memcpy(row.addresses[receiver].data(), source + length, length);
  row.ports[sender] = facts.source_port;
  row.ports[receiver] = facts.destination_port;
  row.applications = facts.applications;
  if (row.applications[0] == 0) row.applications[0] = PortApplication(facts);
  track->spoken = SpokenBy(row.applications[0]);
  track->row = FreeRow();
  rows_.Edit(track->row) = row;
}

std::uint32_t FlowExpert::FreeRow() {
  if (!free_rows_.empty()) {
    std::uint32_t row = free_rows_.back();
    free_rows_.pop_back();
    return row;
  }
  rows_.Append({});
  return static_cast<std::uint32_t>(rows_.size() - 1);
}

/// Keeps the row of a flow that is over, in place of the one that is so for longest.
void FlowExpert::Keep(std::uint32_t row) {
  over_.push_back(row);
  if (over_.size() <= kept_) return;
  std::uint32_t oldest = over_.front();
  over_.pop_front();
  dropped_totals_.Add(rows_[oldest]);
  ++dropped_;
  rows_.Edit(oldest) = {};
  free_rows_.push_back(oldest);
}

FrozenFlows FlowExpert::Freeze() {
  return {rows_.Freeze(), std::make_shared<const ApplicationTotals>(dropped_totals_), dropped_};
}

void FlowExpert::Reset() {
  for (FlowTrack& track : tracks_) track.row = kNoRow;
  rows_ = {};
  free_rows_.clear();
  over_.clear();
  dropped_totals_ = {};
  dropped_ = 0;
}

}  // namespace orvo
