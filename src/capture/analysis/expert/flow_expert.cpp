#include "capture/analysis/expert/flow_expert.h"

#include <algorithm>
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
bool SenderIsClient(const PacketNote& packet, const FlowNote& note) {
  if ((packet.tcp_flags & TcpSegment::kSyn) != 0) return (packet.tcp_flags & TcpSegment::kAck) == 0;
  Layer layer = PortLayer(packet.ip_protocol);
  bool from_known = IsWellKnown(layer, note.source_port);
  bool to_known = IsWellKnown(layer, note.destination_port);
  if (from_known != to_known) return to_known;
  return !from_known || note.source_port >= note.destination_port;
}

void CountPacket(const PacketNote& packet, FlowSide sender, FlowRow* row) {
  ++row->packets[sender];
  row->bytes[sender] += packet.bytes;
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

void FlowExpert::PrefetchTrack(const FlowMark& flow) const {
  if (flow.number >= tracks_.size()) return;
  const auto* track = reinterpret_cast<const char*>(&tracks_[flow.number]);
  __builtin_prefetch(track, 1);
  __builtin_prefetch(track + sizeof(FlowTrack) - 1, 1);
}

void FlowExpert::PrefetchRow(const FlowMark& flow) const {
  if (flow.number >= tracks_.size()) return;
  std::uint32_t row = tracks_[flow.number].row;
  if (row != kNoRow) rows_.Prefetch(row);
}

bool FlowExpert::Inspect(const PacketNote& packet, const FlowNote& note, EventLog* log) {
  if (packet.flow.serial == 0) return false;
  FlowTrack& track = TrackOf(packet, note, log);
  FlowRow& row = rows_.Edit(track.row);
  if (note.applications[0] != 0 && note.applications != row.applications) {
    row.applications = note.applications;
    track.spoken = SpokenBy(row.applications[0]);
  }
  FlowSide sender = packet.flow.from_first == track.client_is_first ? kClient : kServer;
  CountPacket(packet, sender, &row);
  const std::uint32_t before = row.retransmissions[sender];
  FlowJudge(&track, &row, log, packet.time, apdex_target_).Judge(packet, note, sender);
  return row.retransmissions[sender] != before;
}

FlowTrack& FlowExpert::TrackOf(const PacketNote& packet, const FlowNote& note, EventLog* log) {
  const FlowMark& mark = packet.flow;
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
    track.client_is_first = mark.from_first == SenderIsClient(packet, note);
    if (packet.ip_protocol == kUdp) track.transport.dns = {};
  }
  if (track.row == kNoRow) BeginRow(packet, note, &track);
  return track;
}

void FlowExpert::BeginRow(const PacketNote& packet, const FlowNote& note, FlowTrack* track) {
  FlowSide sender = packet.flow.from_first == track->client_is_first ? kClient : kServer;
  FlowSide receiver = sender == kClient ? kServer : kClient;
  FlowRow row;
  row.id = ++begun_;
  row.ip_version = note.ip_version;
  row.ip_protocol = packet.ip_protocol;
  row.addresses[sender] = note.addresses[0];
  row.addresses[receiver] = note.addresses[1];
  row.ports[sender] = note.source_port;
  row.ports[receiver] = note.destination_port;
  row.applications = note.applications;
  if (row.applications[0] == 0) {
    row.applications[0] = PortApplication(PortLayer(packet.ip_protocol), note.source_port, note.destination_port);
  }
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
