#include "capture/classify/flow_table.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "capture/classify/port_application.h"

namespace orvo {
namespace {

constexpr std::size_t kFirstSlots = 64;
/// How many flows that are over are looked for with each packet: more than one, so that they go faster than they come.
constexpr int kExpiredAtOnce = 4;

constexpr std::uint8_t kFin = 1;
constexpr std::uint8_t kSyn = 2;
constexpr std::uint8_t kRst = 4;
constexpr std::uint8_t kAck = 16;

bool BeginsConnection(std::uint8_t tcp_flags) {
  return (tcp_flags & (kSyn | kAck | kRst)) == kSyn;
}

}  // namespace

bool FlowPacket::Read(const PacketFacts& facts, std::uint64_t packet_time) {
  Layer layer = PortLayer(facts);
  Bytes datagram = facts.datagram;
  if ((layer != Layer::kTcpPort && layer != Layer::kUdpPort) || datagram.empty()) return false;
  std::uint16_t version = datagram[0] >> 4;
  std::size_t length = version == 4 ? 4 : 16;
  const std::uint8_t* source = datagram.data() + (version == 4 ? 12 : 8);
  const std::uint8_t* destination = source + length;
  int order = std::memcmp(source, destination, length);
  from_first = order != 0 ? order < 0 : facts.source_port <= facts.destination_port;
  key = {};
  std::memcpy(key.addresses[from_first ? 0 : 1].data(), source, length);
  std::memcpy(key.addresses[from_first ? 1 : 0].data(), destination, length);
  key.ports = {facts.source_port, facts.destination_port};
  if (!from_first) std::swap(key.ports[0], key.ports[1]);
  key.ip_protocol = facts.ip_protocol;
  key.ip_version = version;
  time = packet_time;
  tcp_flags = layer == Layer::kTcpPort ? facts.tcp_flags : std::uint8_t{0};
  has_payload = !facts.payload.empty();
  return true;
}

FlowTable::FlowTable(std::size_t limit, std::function<void(Flow&)> on_end)
    : limit_(std::min<std::size_t>(limit, kNoItem - 1)), on_end_(std::move(on_end)), slots_(kFirstSlots) {}

FlowTable::~FlowTable() {
  for (RecencyList* list : {&live_, &ended_}) {
    for (std::uint32_t flow = list->oldest(); flow != kNoItem; flow = flows_[flow].newer) on_end_(flows_[flow]);
  }
}

/// The first flow of that tag is the right one nearly always; to make sure would be to wait for it.
void FlowTable::Prepare(FlowPacket* packet) const {
  std::size_t mask = slots_.size() - 1;
  for (std::size_t at = packet->tag & mask; slots_[at].flow != kNoItem; at = (at + 1) & mask) {
    if (slots_[at].tag != packet->tag) continue;
    packet->expected = slots_[at].flow;
    const Flow& flow = flows_[packet->expected];
    __builtin_prefetch(&flow.key, 1);
    __builtin_prefetch(&flow.finished, 1);
    return;
  }
}

std::uint32_t FlowTable::Enter(const FlowPacket& packet) {
  now_ = std::max(now_, packet.time);
  Expire();
  std::uint32_t tag = packet.tag != 0 ? packet.tag : Tag(packet.key);
  std::uint32_t number = slots_[FindSlot(packet.key, tag)].flow;
  if (number == kNoItem) {
    number = Add(packet.key, tag);
  } else {
    Flow& flow = flows_[number];
    bool reused = BeginsConnection(packet.tcp_flags) && (flow.ended || flow.had_payload);
    if (reused || now_ - flow.last_time >= kIdleTime) Renew(flow);
    ListOf(flow).Touch(flows_, number);
  }
  Flow& flow = flows_[number];
  flow.last_time = now_;
  flow.had_payload = flow.had_payload || packet.has_payload;
  if (packet.tcp_flags != 0) NoteTcp(number, packet);
  return number;
}

void FlowTable::Expire() {
  for (auto [list, time] : {std::pair{&live_, kIdleTime}, std::pair{&ended_, kLingerTime}}) {
    for (int i = 0; i < kExpiredAtOnce; ++i) {
      std::uint32_t oldest = list->oldest();
      if (oldest == kNoItem || now_ - flows_[oldest].last_time < time) break;
      Remove(oldest);
    }
  }
}

std::uint32_t FlowTable::Add(const FlowKey& key, std::uint32_t tag) {
  if (size() >= limit_) MakeRoom();
  if ((size() + 1) * 2 > slots_.size()) GrowSlots();
  std::uint32_t number = first_free_;
  if (number == kNoItem) {
    number = static_cast<std::uint32_t>(flows_.size());
    flows_.emplace_back();
  } else {
    first_free_ = flows_[number].newer;
    --free_count_;
    flows_[number] = {};
  }
  flows_[number].key = key;
  flows_[number].serial = ++begun_;
  slots_[FindSlot(key, tag)] = {tag, number};
  live_.Append(flows_, number);
  return number;
}

/// The flow between these ports is over, and another one begins.
void FlowTable::Renew(Flow& flow) {
  on_end_(flow);
  auto number = static_cast<std::uint32_t>(&flow - flows_.data());
  ListOf(flow).Remove(flows_, number);
  FlowKey key = flow.key;
  flow = {};
  flow.key = key;
  flow.serial = ++begun_;
  live_.Append(flows_, number);
}

void FlowTable::NoteTcp(std::uint32_t number, const FlowPacket& packet) {
  Flow& flow = flows_[number];
  if ((packet.tcp_flags & kFin) != 0) flow.finished[packet.from_first ? 0 : 1] = true;
  bool ended = (packet.tcp_flags & kRst) != 0 || (flow.finished[0] && flow.finished[1]);
  if (!ended || flow.ended) return;
  live_.Remove(flows_, number);
  flow.ended = true;
  ended_.Append(flows_, number);
}

void FlowTable::MakeRoom() {
  bool any_ended = ended_.oldest() != kNoItem;
  if (!any_ended) ++given_up_;
  Remove(any_ended ? ended_.oldest() : live_.oldest());
}

void FlowTable::Remove(std::uint32_t number) {
  Flow& flow = flows_[number];
  on_end_(flow);
  ListOf(flow).Remove(flows_, number);
  EraseSlot(FindSlot(flow.key, Tag(flow.key)));
  flow.newer = first_free_;
  first_free_ = number;
  ++free_count_;
}

std::uint32_t FlowTable::Tag(const FlowKey& key) const {
  static_assert(sizeof(FlowKey) == 40);
  std::array<std::uint64_t, 5> words{};
  std::memcpy(words.data(), &key, sizeof key);
  return static_cast<std::uint32_t>(hash_(words));
}

/// The slot that holds the flow, or the empty one where it belongs.
std::size_t FlowTable::FindSlot(const FlowKey& key, std::uint32_t tag) const {
  std::size_t mask = slots_.size() - 1;
  for (std::size_t at = tag & mask;; at = (at + 1) & mask) {
    const Slot& slot = slots_[at];
    if (slot.flow == kNoItem || (slot.tag == tag && flows_[slot.flow].key == key)) return at;
  }
}

/// Moves back what stands behind the slot and may, so that searches never meet a gap.
void FlowTable::EraseSlot(std::size_t at) {
  std::size_t mask = slots_.size() - 1;
  for (std::size_t next = (at + 1) & mask; slots_[next].flow != kNoItem; next = (next + 1) & mask) {
    std::size_t home = slots_[next].tag & mask;
    if (((next - home) & mask) < ((next - at) & mask)) continue;
    slots_[at] = slots_[next];
    at = next;
  }
  slots_[at] = {};
}

void FlowTable::GrowSlots() {
  std::vector<Slot> old(slots_.size() * 2);
  old.swap(slots_);
  std::size_t mask = slots_.size() - 1;
  for (const Slot& slot : old) {
    if (slot.flow == kNoItem) continue;
    std::size_t at = slot.tag & mask;
    while (slots_[at].flow != kNoItem) at = (at + 1) & mask;
    slots_[at] = slot;
  }
}

}  // namespace orvo
