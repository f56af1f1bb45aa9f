#pragma once

#include <cstdint>

namespace orvo {

/// Interarrival jitter of one RTP source by RFC 3550 section 6.4.1, in milliseconds.
class JitterEstimate {
 public:
  /// Takes a packet in the order of arrival: its time in nanoseconds, and its timestamp, of a clock of that many ticks
  /// a second. A clock other than the last packet's begins a new comparison, and so does Restart.
  void Take(std::uint64_t time, std::uint32_t timestamp, std::uint32_t clock_rate);
  /// The next packet is compared with none before it.
  void Restart() { clock_rate_ = 0; }

  /// Whether two packets could be compared yet.
  bool known() const { return differences_ != 0; }
  double now() const { return jitter_; }
  /// Of the estimates behind each packet that could be compared with one before it.
  double mean() const { return known() ? sum_ / static_cast<double>(differences_) : 0; }
  double largest() const { return largest_; }

 private:
  double jitter_ = 0;
  double sum_ = 0;
  double largest_ = 0;
  std::uint64_t differences_ = 0;
  std::uint64_t last_time_ = 0;
  std::uint32_t last_timestamp_ = 0;
  std::uint32_t clock_rate_ = 0;  // 0: there is no packet to compare with
};

}  // namespace orvo
