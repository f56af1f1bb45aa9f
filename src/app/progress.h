#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

namespace orvo::app {

/// A line at the end of standard error that is written anew again and again: only when standard error is a terminal. It
/// never wraps.
class StatusLine {
 public:
  /// Nothing is shown when `wanted` is false.
  explicit StatusLine(bool wanted);
  ~StatusLine() { Clear(); }
  StatusLine(const StatusLine&) = delete;
  StatusLine& operator=(const StatusLine&) = delete;

  bool wanted() const { return wanted_; }
  void Show(std::string_view text);
  /// Takes the line away, so that a message can be written.
  void Clear();

 private:
  bool wanted_;
  bool shown_ = false;
};

/// A line on standard error that says how far long work has come: percent, rate, time left. It is written a few times a
/// second at most, only when standard error is a terminal, never wraps, and is removed when the work ends.
class Progress {
 public:
  /// Nothing is shown when `wanted` is false. `what` names the work in a few words ("reading capture.pcap").
  Progress(bool wanted, std::string_view what);

  /// `done` of `total` bytes (0 when the total is unknown), and what was counted meanwhile. Cheap to call often.
  void Update(std::uint64_t done, std::uint64_t total, std::uint64_t packets);
  /// Takes the line away, so that a message can be written.
  void Clear() { line_.Clear(); }

 private:
  using Time = std::chrono::steady_clock::time_point;

  void Show(Time now, std::uint64_t done, std::uint64_t total, std::uint64_t packets);

  StatusLine line_;
  std::string what_;
  Time begin_;
  Time next_;
};

/// "12 s", "3 min 20 s", "1 h 5 min".
std::string DurationText(std::uint64_t seconds);

}  // namespace orvo::app
