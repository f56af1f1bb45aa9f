#include "capture/tables/graph_samples.h"

#include <netinet/in.h>

#include <algorithm>

namespace orvo {

constexpr SampleLimits GraphSamples::kLimits = [] {
  SampleLimits limits{};
  limits.fill(kMostSamples);
  return limits;
}();

void GraphSamples::Fold(std::uint32_t count) {
  FoldPieces(&measures_, count, [](MeasureSample* to, const MeasureSample& from) {
    for (std::size_t i = 0; i < to->size(); ++i) (*to)[i] += from[i];
  });
  for (auto& samples : protocols_) {
    FoldPieces(&samples, count, [](std::uint64_t* to, std::uint64_t from) { *to += from; });
  }
}

void GraphSamples::Add(const PacketNote& packet, std::uint32_t protocol_row) {
  const std::uint64_t bytes = packet.bytes;
  const SampleLadder::Place place = ladder_.Locate(packet.time);
  if (place.fold != 1) Fold(place.fold);
  MeasureSample& sample = PieceAt(&measures_, place.piece);
  sample[kMeasureBytes] += bytes;
  ++sample[kMeasurePackets];
  if (packet.ip_protocol == IPPROTO_TCP) sample[kMeasureTcpBytes] += bytes;
  if (packet.ip_protocol == IPPROTO_UDP) sample[kMeasureUdpBytes] += bytes;
  sample[kMeasureBroadcasts] += packet.delivery() == Delivery::kBroadcast;
  sample[kMeasureMulticasts] += packet.delivery() == Delivery::kMulticast;
  sample[kMeasureMalformed] += packet.malformed;
  sample[kMeasureIcmpErrors] += packet.is_icmp_error;
  sample[kMeasureRetransmissions] += packet.is_retransmission;
  if (protocol_row >= kMostProtocols) return;
  if (protocol_row >= protocols_.size()) protocols_.resize(protocol_row + 1);
  PieceAt(&protocols_[protocol_row], place.piece) += bytes;
}

FrozenGraphs GraphSamples::Freeze() {
  FrozenGraphs frozen{measures_.Freeze(), {}, ladder_.piece_length(), ladder_.start()};
  frozen.protocols.reserve(protocols_.size());
  for (auto& samples : protocols_) frozen.protocols.push_back(samples.Freeze());
  return frozen;
}

}  // namespace orvo
