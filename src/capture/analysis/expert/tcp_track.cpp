#include "capture/analysis/expert/tcp_track.h"

namespace orvo {
namespace {

/// So many duplicate acknowledgements make a sender repeat a segment at once (RFC 5681 section 3.2).
constexpr std::uint8_t kFastRetransmit = 3;

constexpr std::uint8_t kControl = TcpSegment::kSyn | TcpSegment::kFin | TcpSegment::kRst;

/// Positive when a comes behind b. Sequence numbers wrap around (RFC 9293 section 3.4).
std::int32_t Behind(std::uint32_t a, std::uint32_t b) {
  return static_cast<std::int32_t>(a - b);
}

}  // namespace

TcpFindings TcpDirection::Note(const TcpSegment& segment, Tick now, std::uint32_t reorder_time, TcpDirection* other) {
  TcpFindings findings;
  bool in_place = known_ && segment.sequence == next_;
  NoteSequence(segment, now, reorder_time, other, &findings);
  NoteAcknowledgement(segment, in_place, now, other, &findings);
  NoteWindow(segment, &findings);
  return findings;
}

void TcpDirection::NoteSequence(const TcpSegment& segment, Tick now, std::uint32_t reorder_time, TcpDirection* other,
                                TcpFindings* findings) {
  // A reset may carry any number, and begins nothing. Another first number begins another attempt to connect.
  if (segment.Has(TcpSegment::kRst)) return;
  if (segment.Has(TcpSegment::kSyn) && segment.sequence + 1 != next_) known_ = false;
  if (!known_) {
    known_ = true;
    gap_begin_ = gap_end_ = segment.sequence;
    Advance(segment, now, findings);
    return;
  }
  std::int32_t ahead = Behind(segment.sequence, next_);
  bool occupies = segment.end() != segment.sequence;
  if (ahead == -1 && segment.length <= 1 && !segment.Has(kControl)) {
    findings->keep_alive = true;
  } else if (ahead > 0) {
    findings->missing = true;
    if (gap_begin_ == gap_end_) gap_begin_ = next_;
    gap_end_ = segment.sequence;
    gap_at_ = now;
    other->timing_ = false;  // what is missing may have acknowledged
    Advance(segment, now, findings);
  } else if (ahead == 0) {
    if (occupies) Advance(segment, now, findings);
  } else if (occupies) {
    bool asked_for = other->acks_in_a_row_ >= kFastRetransmit;
    bool late = TicksBetween(gap_at_, now) >= reorder_time;
    findings->out_of_order = FillsGap(segment) && !late && !asked_for;
    findings->retransmission = !findings->out_of_order;
    timing_ = false;  // which of the two is acknowledged, nobody knows (RFC 6298 section 3)
    if (Behind(segment.end(), next_) > 0) {
      next_ = segment.end();
      findings->new_data = segment.length != 0;
    }
  }
}

void TcpDirection::Advance(const TcpSegment& segment, Tick now, TcpFindings* findings) {
  next_ = segment.end();
  if (segment.length == 0) return;
  findings->new_data = true;
  if (timing_) return;
  timing_ = true;
  timed_end_ = next_;
  timed_at_ = now;
}

/// Whether the segment begins in the gap, which it makes smaller.
bool TcpDirection::FillsGap(const TcpSegment& segment) {
  if (Behind(segment.sequence, gap_begin_) < 0 || Behind(segment.sequence, gap_end_) >= 0) return false;
  if (segment.sequence == gap_begin_) {
    gap_begin_ = Behind(segment.end(), gap_end_) < 0 ? segment.end() : gap_end_;
  } else {
    gap_end_ = segment.sequence;  // of what is left on both sides, the front
  }
  return true;
}

void TcpDirection::NoteAcknowledgement(const TcpSegment& segment, bool in_place, Tick now, TcpDirection* other,
                                       TcpFindings* findings) {
  if (!segment.Has(TcpSegment::kAck) || segment.Has(TcpSegment::kRst)) return;
  std::uint32_t acknowledgement = segment.acknowledgement;
  std::int32_t ahead = acknowledges_ ? Behind(acknowledgement, acknowledged_) : 1;
  bool outstanding = other->known_ && Behind(other->next_, acknowledgement) > 0;
  if (ahead > 0) {
    acknowledged_ = acknowledgement;
    acknowledges_ = true;
    acks_in_a_row_ = 0;
  } else if (ahead == 0 && outstanding && in_place && segment.length == 0 && !segment.Has(kControl) &&
             segment.window == window_ && window_ != 0) {
    findings->duplicate_ack = true;
    if (acks_in_a_row_ != UINT8_MAX) ++acks_in_a_row_;
    findings->acks_in_a_row = acks_in_a_row_;
  }
  if (other->timing_ && Behind(acknowledgement, other->timed_end_) >= 0) {
    other->timing_ = false;
    findings->has_ack_delay = true;
    findings->ack_delay = TicksBetween(other->timed_at_, now);
  }
}

void TcpDirection::NoteWindow(const TcpSegment& segment, TcpFindings* findings) {
  if (segment.Has(TcpSegment::kRst)) return;
  findings->zero_window = segment.window == 0 && !segment.Has(kControl);
  findings->window_closes = findings->zero_window && !closed_window_;
  closed_window_ = findings->zero_window;
  window_ = segment.window;
}

}  // namespace orvo
