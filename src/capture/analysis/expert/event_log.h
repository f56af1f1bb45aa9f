#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

#include "capture/analysis/expert/expert_events.h"
#include "capture/tables/paged_vector.h"
#include "engine/address.h"

namespace orvo {

/// Something that happened.
struct EventRecord {
  std::uint64_t number = 0;       ///< counts events from 1
  std::uint64_t time = 0;         ///< of the packet that showed it, nanoseconds since 1601-01-01 UTC
  std::uint64_t flow = 0;         ///< the flow's id; 0 for none
  std::uint64_t value = 0;        ///< by the event's measure; delays in microseconds
  AddressRecord source;           ///< of that packet; for conflicts of addresses, the physical address that claims
  AddressRecord destination;      ///< of that packet; for conflicts of addresses, the address that is claimed
  std::uint16_t source_port = 0;  ///< 0 for none
  std::uint16_t destination_port = 0;
  std::array<std::uint16_t, 2> applications{};  ///< of the flow
  std::uint8_t ip_protocol = 0;
  ExpertEvent event{};
};

/// How often a kind of event happened.
struct EventCount {
  std::uint64_t count = 0;
  std::uint64_t first_time = 0;  ///< in the order of the packets; 0 for never
  std::uint64_t last_time = 0;
};
using EventCounts = std::array<EventCount, kExpertEventCount>;

/// The last events of a capture, at most as many as the log holds, and the counts of all.
struct FrozenEvents {
  EventCounts counts{};
  std::uint64_t total = 0;
  std::uint64_t capacity = 0;
  FrozenTable<EventRecord> records;  ///< event number n stands at (n - 1) modulo capacity

  std::uint64_t size() const { return std::min(total, capacity); }
  /// Those that the log has no room for any more.
  std::uint64_t fallen_out() const { return total - size(); }
  /// Of those that are left; 0 is the oldest.
  const EventRecord& operator[](std::uint64_t index) const { return records[(total - size() + index) % capacity]; }
};

/// A ring of events: a new one takes the place of the oldest. One thread writes, as with every table.
class EventLog {
 public:
  explicit EventLog(std::size_t capacity) : capacity_(capacity) {}

  /// Numbers the event, counts it, and keeps it.
  void Add(EventRecord record);
  /// Events so far, and those of them that have made room.
  std::uint64_t total() const { return total_; }
  std::uint64_t fallen_out() const { return total_ - std::min(total_, capacity_); }
  FrozenEvents Freeze() { return {counts_, total_, capacity_, records_.Freeze()}; }

 private:
  std::uint64_t capacity_;
  std::uint64_t total_ = 0;
  EventCounts counts_{};
  PagedVector<EventRecord> records_;
};

}  // namespace orvo
