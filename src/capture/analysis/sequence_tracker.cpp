#include "capture/analysis/sequence_tracker.h"

#include <algorithm>

namespace orvo {
namespace {

// The names and values of RFC 3550 appendix A.1.
constexpr std::uint32_t kSequenceModulus = 1 << 16;
constexpr std::uint16_t kMaxDropout = 3000;
constexpr std::uint16_t kMaxMisorder = 100;
constexpr std::uint32_t kNoBad = kSequenceModulus + 1;

}  // namespace

void SequenceTracker::Begin(std::uint16_t sequence) {
  first_ = sequence;
  highest_ = base_ = kSequenceModulus + sequence;
  seen_.reset();
  seen_.set(0);
  bad_ = kNoBad;
}

SequenceTracker::Verdict SequenceTracker::Take(std::uint16_t sequence) {
  auto ahead = static_cast<std::uint16_t>(sequence - last());
  if (ahead == 0) return Verdict::kDuplicate;
  if (ahead < kMaxDropout) {
    Advance(ahead);
    return Verdict::kInOrder;
  }
  auto behind = static_cast<std::uint16_t>(last() - sequence);
  if (behind <= kMaxMisorder) {
    if (seen_[behind]) return Verdict::kDuplicate;
    seen_.set(behind);
    if (highest_ - behind < base_) {
      base_ = highest_ - behind;
      first_ = sequence;
    }
    return Verdict::kLate;
  }
  if (sequence != bad_) {
    bad_ = (sequence + 1U) % kSequenceModulus;
    return Verdict::kStray;
  }
  LossCounts so_far = losses();
  auto earliest = first_;
  Begin(static_cast<std::uint16_t>(sequence - 1));
  Advance(1);
  first_ = earliest;
  settled_ = so_far;
  open_gap_ = 0;
  return Verdict::kRestart;
}

void SequenceTracker::Advance(std::uint64_t steps) {
  for (std::uint64_t left = std::min<std::uint64_t>(steps, kWindow); left != 0; --left) {
    if (highest_ - base_ >= kWindow - 1) Settle(seen_[kWindow - 1]);
    seen_ <<= 1;
    ++highest_;
  }
  if (steps > kWindow) {
    // The window holds nothing but lost packets now, and as many as go in go out.
    std::uint64_t beyond = steps - kWindow;
    SettleLost(beyond);
    highest_ += beyond;
  }
  seen_.set(0);
}

/// Counts a number that leaves the window.
void SequenceTracker::Settle(bool seen) {
  if (seen) {
    CloseGap();
  } else {
    SettleLost(1);
  }
}

void SequenceTracker::SettleLost(std::uint64_t packets) {
  settled_.lost += packets;
  open_gap_ += packets;
}

void SequenceTracker::CloseGap() {
  if (open_gap_ == 0) return;
  ++settled_.gaps;
  settled_.longest_gap = std::max(settled_.longest_gap, open_gap_);
  open_gap_ = 0;
}

LossCounts SequenceTracker::losses() const {
  SequenceTracker all = *this;
  for (std::uint64_t i = std::min<std::uint64_t>(highest_ - base_ + 1, kWindow); i != 0; --i) all.Settle(seen_[i - 1]);
  all.settled_.expected += highest_ - base_ + 1;
  return all.settled_;
}

}  // namespace orvo
