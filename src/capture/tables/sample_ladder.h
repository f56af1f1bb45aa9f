#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "capture/tables/paged_vector.h"

namespace orvo {

/// Lengths that samples can have, in seconds.
inline constexpr std::array<std::uint32_t, 11> kSampleLengths{1, 5, 10, 30, 60, 120, 300, 600, 3600, 21600, 86400};
/// Lengths of the pieces in which they are kept. Each is a whole multiple of the one before, so that pieces add up
/// without a rest; two minutes do not make five, and are kept as single minutes.
inline constexpr std::array<std::uint32_t, 11> kPieceLengths{1, 5, 10, 30, 60, 60, 300, 600, 3600, 21600, 86400};
/// How many pieces of each length are kept at most.
using SampleLimits = std::array<std::size_t, kSampleLengths.size()>;

/// Divides the time from the first packet on into pieces of equal length, a second at first. A time that would need
/// more pieces than are kept lengthens them all to the next length that suffices; pieces of the last length end with
/// a last one, which takes whatever is later. So memory and work are bounded, whatever the packets' times.
///
/// Pieces begin at the first packet's time and whole multiples of their length after it. What is older than the first
/// packet is counted in the first piece: clocks that are set back lose no traffic.
class SampleLadder {
 public:
  struct Place {
    std::size_t piece = 0;
    std::uint32_t fold = 1;  ///< how many of the pieces kept so far become one, before `piece` is counted in
  };

  explicit SampleLadder(const SampleLimits& limits) : limits_(&limits) {}

  /// The piece of a time, nanoseconds since 1601-01-01 UTC.
  Place Locate(std::uint64_t time) {
    if (started_ && time - current_begin_ < length()) return {current_, 1};
    return LocateAnew(time);
  }

  /// Both in seconds.
  std::uint32_t sample_length() const { return kSampleLengths[step_]; }
  std::uint32_t piece_length() const { return kPieceLengths[step_]; }
  /// Begin of the first piece; 0 before there is one.
  std::uint64_t start() const { return start_; }

 private:
  Place LocateAnew(std::uint64_t time);
  std::uint64_t length() const { return piece_length() * std::uint64_t{1'000'000'000}; }

  const SampleLimits* limits_;
  std::size_t step_ = 0;
  std::uint64_t start_ = 0;
  bool started_ = false;
  // The piece of the time before, as the next one is mostly the same: spares the division.
  std::size_t current_ = 0;
  std::uint64_t current_begin_ = 0;
};

/// Adds up every `count` pieces to one; the last may be made of fewer. `add(&to, from)` adds one to another.
template <class T, class Add>
void FoldPieces(PagedVector<T>* pieces, std::uint32_t count, Add add) {
  PagedVector<T> folded;
  for (std::size_t i = 0; i < pieces->size(); ++i) {
    if (i % count == 0) {
      folded.Append((*pieces)[i]);
    } else {
      add(&folded.Edit(folded.size() - 1), (*pieces)[i]);
    }
  }
  *pieces = std::move(folded);
}

/// The piece of that number, made with all before it when there is none yet.
template <class T>
T& PieceAt(PagedVector<T>* pieces, std::size_t number) {
  while (pieces->size() <= number) pieces->Append(T{});
  return pieces->Edit(number);
}

}  // namespace orvo
