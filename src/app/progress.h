#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

namespace orvo::app {

/// A line on standard error that says how far long work has come: percent, rate, time left. It is written a few times a
/// second at most, only when standard error is a terminal, never wraps, and is removed when the work ends.
class Progress {
 public:
  /// Nothing is shown when `wanted` is false. `what` names the work in a few words ("reading capture.pcap").
  Progress(bool wanted, std::string_view what);
  ~Progress() { Clear(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// `done` of `total` bytes (0 when the total is unknown), and what was counted meanwhile. Cheap to call often.
  void Update(std::uint64_t done, std::uint64_t total, std::uint64_t packets);
  /// Takes the line away, so that a message can be written.
  void Clear();

 private:
  using Time = std::chrono::steady_clock::time_point;

  void Show(Time now, std::uint64_t done, std::uint64_t total, std::uint64_t packets);

  bool shown_ = false;
  bool wanted_;
  std::string what_;
  Time begin_;
  Time next_;
};

/// "12 s", "3 min 20 s", "1 h 5 min".
std::string DurationText(std::uint64_t seconds);

}  // namespace orvo::app
