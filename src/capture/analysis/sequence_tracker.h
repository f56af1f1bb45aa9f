#pragma once

#include <bitset>
#include <cstdint>

namespace orvo {

/// Packets that did not arrive.
struct LossCounts {
  std::uint64_t expected = 0;
  std::uint64_t lost = 0;         ///< expected and never seen
  std::uint64_t gaps = 0;         ///< runs of lost packets
  std::uint64_t longest_gap = 0;  ///< in packets

  double ratio() const { return expected == 0 ? 0 : static_cast<double>(lost) / static_cast<double>(expected); }
  /// How much longer the gaps are than if losses hit at random: 1 for chance, more for bursts. The BurstR of ITU-T
  /// G.107 clause 7.5: the mean length of a gap over the length that chance would give, which is 1 / (1 - loss).
  double burst_ratio() const {
    if (gaps == 0 || lost >= expected) return 1;
    double mean = static_cast<double>(lost) / static_cast<double>(gaps);
    return mean * (1 - ratio()) < 1 ? 1 : mean * (1 - ratio());
  }
};

/// Follows the sequence numbers of an RTP source by RFC 3550 appendix A.1, and counts by A.3 what is missing.
///
/// The last kWindow numbers are remembered one by one, so that late packets fill the gaps that they had left, and
/// copies of a packet are told from it.
class SequenceTracker {
 public:
  enum class Verdict : std::uint8_t {
    kInOrder,
    kLate,       ///< fills a gap
    kDuplicate,  ///< was there already
    kStray,      ///< far from all others; a second one in its place would mean a restart
    kRestart,    ///< together with the stray before it begins a new sequence
  };

  /// Takes the first packet.
  explicit SequenceTracker(std::uint16_t sequence = 0) { Begin(sequence); }

  Verdict Take(std::uint16_t sequence);

  LossCounts losses() const;
  std::uint16_t first() const { return first_; }
  std::uint16_t last() const { return static_cast<std::uint16_t>(highest_); }

 private:
  /// A.1 excuses packets that are late by less than 100.
  static constexpr std::size_t kWindow = 128;

  void Begin(std::uint16_t sequence);
  void Advance(std::uint64_t steps);
  void Settle(bool seen);
  void SettleLost(std::uint64_t packets);
  void CloseGap();

  std::bitset<kWindow> seen_;   // bit i: number `highest_` - i has arrived
  std::uint64_t highest_ = 0;   // counts on through wraps; starts above 2^16 so that earlier packets fit below it
  std::uint64_t base_ = 0;      // the lowest number that is expected
  std::uint64_t open_gap_ = 0;  // packets of the gap at the old end of the window
  LossCounts settled_;          // of what has left the window; `expected` of sequences before a restart
  std::uint32_t bad_ = 0;       // the number behind a stray, beyond 16 bits for none
  std::uint16_t first_ = 0;
};

}  // namespace orvo
