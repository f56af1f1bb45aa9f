#pragma once

#include <vector>

#include "capture/source/packet_source.h"

namespace orvo {

/// Several sources as one capture: their packets in the order of their times. Packets of one source keep their order,
/// also where their times run backwards; of equal times the earlier source's comes first.
class MergedSource final : public PacketSource {
 public:
  /// The sources stay the caller's and outlive this object; their warnings are asked of them.
  explicit MergedSource(const std::vector<PacketSource*>& sources);

  bool Next(Packet* packet) override;
  /// As many as one source gives, once it is the only one left.
  std::size_t NextBatch(std::span<Packet> room) override;
  SourceProgress progress() const override;
  std::uint64_t dropped() const override;
  /// Always sound.
  const SourceError& warning() const override { return warning_; }

 private:
  struct Head {
    PacketSource* source;
    Packet packet;                      // the source's next one
    std::uint32_t first_interface = 0;  // its interfaces' numbers begin here
  };

  void Advance(std::size_t index);

  std::vector<Head> heads_;  // of the sources that have packets left
  std::vector<PacketSource*> sources_;
  std::size_t delivered_ = kNone;  // whose packet was given last, and must be asked for the next
  SourceError warning_;

  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);
};

}  // namespace orvo
