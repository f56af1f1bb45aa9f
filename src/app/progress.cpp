#include "app/progress.h"

#include <fmt/core.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "app/messages.h"

namespace orvo::app {
namespace {

constexpr std::chrono::milliseconds kBetweenUpdates(200);
constexpr const char* kClearLine = "\r\x1b[K";
// A line that went on below could not be cleared: what does not fit into the terminal stays out of sight.
constexpr const char* kNoWrap = "\x1b[?7l";
constexpr const char* kWrap = "\x1b[?7h";

/// False for a terminal that says of itself that it knows no such sequences.
bool CanClearLines() {
  const char* kind = std::getenv("TERM");
  return !kind || std::string_view(kind) != "dumb";
}

}  // namespace

StatusLine::StatusLine(bool wanted) : wanted_(wanted && isatty(STDERR_FILENO) == 1 && CanClearLines()) {}

void StatusLine::Show(std::string_view text) {
  if (!wanted_) return;
  WriteError(fmt::format("{}{}{}{}", kClearLine, kNoWrap, Printable(text), kWrap));
  shown_ = true;
}

void StatusLine::Clear() {
  if (!shown_) return;
  WriteError(kClearLine);
  shown_ = false;
}

Progress::Progress(bool wanted, std::string_view what)
    : line_(wanted), what_(what), begin_(std::chrono::steady_clock::now()), next_(begin_ + kBetweenUpdates) {}

void Progress::Update(std::uint64_t done, std::uint64_t total, std::uint64_t packets) {
  if (!line_.wanted()) return;
  const Time now = std::chrono::steady_clock::now();
  if (now < next_) return;
  next_ = now + kBetweenUpdates;
  Show(now, done, total, packets);
}

void Progress::Show(Time now, std::uint64_t done, std::uint64_t total, std::uint64_t packets) {
  const double seconds = std::chrono::duration<double>(now - begin_).count();
  const double rate = static_cast<double>(packets) / seconds;
  std::string line;
  if (total != 0 && done != 0) {
    // A file that grows meanwhile has more than its total.
    const double part = std::min(1.0, static_cast<double>(done) / static_cast<double>(total));
    const double left = part < 1 ? seconds * (1 - part) / part : 0;
    line = fmt::format("{:3.0f}%, {} packets, {:.0f} a second, {} left: {}", 100 * part, packets, rate,
                       DurationText(static_cast<std::uint64_t>(std::llround(left))), what_);
  } else {
    line = fmt::format("{} packets, {:.0f} a second: {}", packets, rate, what_);
  }
  line_.Show(line);
}

std::string DurationText(std::uint64_t seconds) {
  if (seconds < 60) return fmt::format("{} s", seconds);
  if (seconds < 3600) return fmt::format("{} min {} s", seconds / 60, seconds % 60);
  return fmt::format("{} h {} min", seconds / 3600, seconds % 3600 / 60);
}

}  // namespace orvo::app
