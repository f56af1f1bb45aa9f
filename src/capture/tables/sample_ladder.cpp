#include "capture/tables/sample_ladder.h"

#include <algorithm>

namespace orvo {

SampleLadder::Place SampleLadder::LocateAnew(std::uint64_t time) {
  if (!started_) {
    started_ = true;
    start_ = time;
  }
  const std::uint64_t since = time > start_ ? time - start_ : 0;
  const std::uint32_t before = piece_length();
  while (step_ + 1 < kSampleLengths.size() && since / length() >= (*limits_)[step_]) ++step_;
  current_ = static_cast<std::size_t>(std::min<std::uint64_t>(since / length(), (*limits_)[step_] - 1));
  current_begin_ = start_ + current_ * length();
  return {current_, piece_length() / before};
}

}  // namespace orvo
