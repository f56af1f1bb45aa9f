#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <vector>

#include "capture/classify/recency_list.h"
#include "capture/decode/packet_facts.h"
#include "capture/tables/keyed_hash.h"

namespace orvo {

/// The two ends of a flow and its IP protocol, the same for both directions: the end whose address and port come first
/// in the order of their bytes stands first. Without padding, so that keys compare and hash as bytes.
struct FlowKey {
  std::array<std::array<std::uint8_t, 16>, 2> addresses{};  ///< an IPv4 address takes the first four bytes
  std::array<std::uint16_t, 2> ports{};
  std::uint16_t ip_protocol = 0;
  std::uint16_t ip_version = 0;

  /// Compares in words: every look-up ends with one such comparison.
  bool operator==(const FlowKey& other) const {
    std::array<std::uint64_t, 5> a;  // NOLINT(cppcoreguidelines-pro-type-member-init)
    std::array<std::uint64_t, 5> b;  // NOLINT(cppcoreguidelines-pro-type-member-init)
    static_assert(sizeof a == 40);
    std::memcpy(a.data(), this, sizeof a);
    std::memcpy(b.data(), &other, sizeof b);
    return ((a[0] ^ b[0]) | (a[1] ^ b[1]) | (a[2] ^ b[2]) | (a[3] ^ b[3]) | (a[4] ^ b[4])) == 0;
  }
};

/// What the flow table has to know of a packet.
struct FlowPacket {
  FlowKey key;
  std::uint64_t time = 0;      ///< nanoseconds since 1601-01-01 UTC
  std::uint8_t tcp_flags = 0;  ///< 0 unless TCP
  bool from_first = false;     ///< sent by the key's first end
  bool has_payload = false;
  // What FlowTable::Expect and Prepare have found out; the rest is theirs to fill in.
  std::uint32_t tag = 0;
  std::uint32_t expected = kNoItem;

  /// False for a packet that is of no flow: neither TCP nor UDP with ports right behind an IP header. In tunnels the
  /// innermost datagram counts.
  bool Read(const PacketFacts& facts, std::uint64_t packet_time);
  /// Whether Read has said so.
  bool is_of_flow() const { return key.ip_version != 0; }
};

/// One conversation between two ports, in both directions. Lies in no more than two lines of the cache.
struct alignas(32) Flow {
  FlowKey key;
  std::uint64_t serial = 0;     ///< as in FlowMark
  std::uint64_t last_time = 0;  ///< of the last packet, by the table's clock
  std::uint32_t older = kNoItem;
  std::uint32_t newer = kNoItem;
  std::array<std::uint16_t, 2> applications{};  ///< protocol and what uses it, as in PacketFacts; 0 for none
  std::uint32_t state = kNoItem;                ///< of the detection that is under way
  bool decided = false;                         ///< nothing will change `applications` any more
  bool had_payload = false;
  bool ended = false;
  std::array<bool, 2> finished{};  ///< which ends have sent a FIN
};
static_assert(sizeof(Flow) == 96);

/// The flows under way, at most `limit` of them, about 100 bytes each.
///
/// The table's clock is the latest time of a packet so far, which packets out of order leave alone.
/// A flow begins with its first packet, and ends when it was idle for kIdleTime, or, if it
/// is TCP, kLingerTime after the last packet that followed a RST or a FIN of both ends; the time in between keeps
/// acknowledgements and repetitions with their flow. A SYN between the ports of a flow that has ended, or that has
/// carried payload, begins a new one. When the table is full, the ended flow that is idle for longest makes room, or
/// else the flow that is.
class FlowTable {
 public:
  static constexpr std::uint64_t kIdleTime = 300'000'000'000;
  static constexpr std::uint64_t kLingerTime = 15'000'000'000;

  /// `on_end` gets every flow before it goes, those included that are there when the table ends.
  FlowTable(std::size_t limit, std::function<void(Flow&)> on_end);
  FlowTable(const FlowTable&) = delete;
  FlowTable& operator=(const FlowTable&) = delete;
  ~FlowTable();

  /// The flow of a packet, which is noted in it. The number holds for as long as the flow does. Must not be called with
  /// a limit of 0.
  std::uint32_t Enter(const FlowPacket& packet);

  // Steps that may go before Enter, in this order, each for many packets before the next is taken: their look-ups then
  // wait for memory at the same time instead of one after the other. They change nothing but what lies in the cache.

  void Expect(FlowPacket* packet) const {
    packet->tag = Tag(packet->key);
    __builtin_prefetch(&slots_[packet->tag & (slots_.size() - 1)]);
  }
  void Prepare(FlowPacket* packet) const;
  /// What Prepare has found; null for nothing, and mostly the packet's flow otherwise. Nothing more than a hint.
  const Flow* Expected(const FlowPacket& packet) const {
    return packet.expected != kNoItem ? &flows_[packet.expected] : nullptr;
  }
  void PrepareNeighbours(const FlowPacket& packet) const {
    if (packet.expected == kNoItem) return;
    const Flow& flow = flows_[packet.expected];
    if (flow.older != kNoItem) __builtin_prefetch(&flows_[flow.older].newer, 1);
    if (flow.newer != kNoItem) __builtin_prefetch(&flows_[flow.newer].older, 1);
  }

  Flow& operator[](std::uint32_t number) { return flows_[number]; }

  std::size_t size() const { return flows_.size() - free_count_; }
  /// Flows that have begun.
  std::uint64_t begun() const { return begun_; }
  /// Flows that had to make room before they had ended.
  std::uint64_t given_up() const { return given_up_; }

 private:
  struct Slot {
    std::uint32_t tag = 0;
    std::uint32_t flow = kNoItem;
  };

  void Expire();
  std::uint32_t Add(const FlowKey& key, std::uint32_t tag);
  void Renew(Flow& flow);
  void NoteTcp(std::uint32_t number, const FlowPacket& packet);
  void Remove(std::uint32_t number);
  void MakeRoom();
  std::uint32_t Tag(const FlowKey& key) const;
  std::size_t FindSlot(const FlowKey& key, std::uint32_t tag) const;
  void EraseSlot(std::size_t at);
  void GrowSlots();
  RecencyList& ListOf(const Flow& flow) { return flow.ended ? ended_ : live_; }

  std::size_t limit_;
  std::function<void(Flow&)> on_end_;
  KeyedHash hash_;
  std::vector<Flow> flows_;
  std::vector<Slot> slots_;  // open addressing with linear probing, a power of two, at most half full
  RecencyList live_;
  RecencyList ended_;
  std::uint32_t first_free_ = kNoItem;  // those not in use are linked by `newer`
  std::size_t free_count_ = 0;
  std::uint64_t now_ = 0;
  std::uint64_t begun_ = 0;
  std::uint64_t given_up_ = 0;
};

}  // namespace orvo
