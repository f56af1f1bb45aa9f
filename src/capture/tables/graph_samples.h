#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "capture/tables/packet_note.h"
#include "capture/tables/sample_ladder.h"

namespace orvo {

/// What the graphs are made from.
enum Measure : std::uint8_t {
  kMeasureBytes,
  kMeasurePackets,
  kMeasureTcpBytes,
  kMeasureUdpBytes,
  kMeasureBroadcasts,
  kMeasureMulticasts,
  kMeasureMalformed,
  kMeasureIcmpErrors,
  kMeasureRetransmissions,
};
using MeasureSample = std::array<std::uint64_t, 9>;

/// The samples of one moment.
struct FrozenGraphs {
  FrozenTable<MeasureSample> measures;
  /// Bytes of each protocol, by its row in the protocol table. A list that is shorter than `measures` has zeros behind.
  std::vector<FrozenTable<std::uint64_t>> protocols;
  std::uint32_t interval = kSampleLengths.front();  ///< seconds
  std::uint64_t start = 0;                          ///< nanoseconds since 1601-01-01 UTC, 0 without samples
};

/// Counts over time, finer and longer than the traffic history. At most 10,000 samples are kept, which takes 720 KB,
/// and 80 KB more for each protocol met; protocols beyond the first 256 are not told apart over time.
class GraphSamples {
 public:
  static constexpr std::size_t kMostSamples = 10'000;
  static constexpr std::size_t kMostProtocols = 256;

  /// Counts a packet, whose protocol has that row in the protocol table.
  void Add(const PacketNote& packet, std::uint32_t protocol_row);

  FrozenGraphs Freeze();

 private:
  void Fold(std::uint32_t count);

  static const SampleLimits kLimits;
  SampleLadder ladder_{kLimits};
  PagedVector<MeasureSample> measures_;
  std::vector<PagedVector<std::uint64_t>> protocols_;
};

}  // namespace orvo
