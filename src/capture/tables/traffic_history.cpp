#include "capture/tables/traffic_history.h"

namespace orvo {

// What the charts show: two minutes of seconds, ten minutes of five seconds, and so on; the six hours of two minutes
// are kept as single minutes.
constexpr SampleLimits TrafficHistory::kLimits{120, 120, 180, 120, 120, 360, 144, 144, 168, 124, 3650};

std::vector<std::uint64_t> FrozenHistory::Samples() const {
  std::vector<std::uint64_t> samples((pieces.size() + pieces_per_sample - 1) / pieces_per_sample);
  for (std::size_t i = 0; i < pieces.size(); ++i) samples[i / pieces_per_sample] += pieces[i];
  return samples;
}

void TrafficHistory::Add(std::uint64_t time, std::uint64_t bytes) {
  const SampleLadder::Place place = ladder_.Locate(time);
  if (place.fold != 1) FoldPieces(&pieces_, place.fold, [](std::uint64_t* to, std::uint64_t from) { *to += from; });
  PieceAt(&pieces_, place.piece) += bytes;
}

FrozenHistory TrafficHistory::Freeze() {
  return {pieces_.Freeze(), ladder_.sample_length() / ladder_.piece_length(), ladder_.sample_length(), ladder_.start()};
}

}  // namespace orvo
