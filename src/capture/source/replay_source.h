#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

#include "capture/source/packet_source.h"
#include "platform/clock.h"

namespace orvo {

/// A capture given at the pace at which it was recorded, or a multiple of it. Packets keep their times. A packet whose
/// time lies more than a day before or behind that of its predecessor comes at once, and the pace goes on from there:
/// no capture keeps its reader waiting for years.
class ReplaySource final : public WaitingSource {
 public:
  /// The source stays the caller's and outlives this object; its warning is asked of it. `speed` is how many seconds of
  /// the capture pass in one, more than 0. Waits take place by `clock`.
  ReplaySource(PacketSource* source, double speed, Clock& clock);

  bool Next(Packet* packet) override { return NextBatch({packet, 1}) != 0; }
  /// Waits until the next packet is due, and gives it with those that are due as well.
  std::size_t NextBatch(std::span<Packet> room) override;
  SourceProgress progress() const override { return source_->progress(); }
  std::uint64_t dropped() const override { return source_->dropped(); }
  /// Always sound.
  const SourceError& warning() const override { return warning_; }
  void Stop() override;

 private:
  bool ReadAhead();
  /// Milliseconds until a packet is due, 0 when it is.
  std::uint64_t MillisecondsTo(const Packet& packet);
  bool WaitFor(const Packet& packet);

  PacketSource* source_;
  double speed_;
  Clock& clock_;
  std::unique_ptr<Event> stop_;
  std::atomic<bool> stopped_ = false;
  std::vector<Packet> ahead_;  // read and not yet given, from next_ on
  std::size_t next_ = 0;
  std::size_t end_ = 0;
  // The pace: a packet of begin_ was, or would have been, due at begun_.
  std::uint64_t begin_ = 0;
  std::uint64_t begun_ = 0;
  std::uint64_t latest_ = 0;  // time of the packet looked at last; 0 before the first
  SourceError warning_;
};

}  // namespace orvo
