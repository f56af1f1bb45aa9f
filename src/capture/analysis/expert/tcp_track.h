#pragma once

#include <cstdint>

#include "capture/analysis/expert/tcp_segment.h"

namespace orvo {

/// Moments of one flow, in microseconds that wrap around: differences hold for half an hour.
using Tick = std::uint32_t;

inline Tick TickOf(std::uint64_t nanoseconds) {
  return static_cast<Tick>(nanoseconds / 1000);
}

/// 0 where the later moment is not later, since captures do not always go forward in time.
inline std::uint32_t TicksBetween(Tick earlier, Tick later) {
  auto ticks = static_cast<std::int32_t>(later - earlier);
  return ticks > 0 ? static_cast<std::uint32_t>(ticks) : 0;
}

/// What one segment tells about its connection.
struct TcpFindings {
  bool new_data = false;        ///< payload that was not there before
  bool retransmission = false;  ///< bytes that were there before, or that fill a gap late
  bool out_of_order = false;    ///< fills a gap soon after it came to be
  bool missing = false;         ///< leaves a gap: bytes before it have not been seen
  bool keep_alive = false;  ///< asks for an acknowledgement with a byte that is there already (RFC 9293 section 3.8.4)
  bool duplicate_ack = false;      ///< RFC 5681 section 2
  std::uint8_t acks_in_a_row = 0;  ///< duplicate acknowledgements, this one included
  bool zero_window = false;
  bool window_closes = false;   ///< zero window for the first time since there was room
  bool has_ack_delay = false;   ///< acknowledges a segment that was timed
  std::uint32_t ack_delay = 0;  ///< microseconds
};

/// Follows the sequence numbers of one direction of a connection.
///
/// Of the bytes that have not been seen, one gap is remembered; a second one before the first is filled joins it.
class TcpDirection {
 public:
  /// Notes a segment of this direction and its acknowledgement of the other. What fills a gap within `reorder_time`
  /// microseconds after it came to be was overtaken on its way; later, or when it has been asked for, it was sent
  /// again.
  TcpFindings Note(const TcpSegment& segment, Tick now, std::uint32_t reorder_time, TcpDirection* other);

 private:
  void NoteSequence(const TcpSegment& segment, Tick now, std::uint32_t reorder_time, TcpDirection* other,
                    TcpFindings* findings);
  void NoteAcknowledgement(const TcpSegment& segment, bool in_place, Tick now, TcpDirection* other,
                           TcpFindings* findings);
  void NoteWindow(const TcpSegment& segment, TcpFindings* findings);
  void Advance(const TcpSegment& segment, Tick now, TcpFindings* findings);
  bool FillsGap(const TcpSegment& segment);

  std::uint32_t next_ = 0;  // the first sequence number that has not been sent
  std::uint32_t gap_begin_ = 0;
  std::uint32_t gap_end_ = 0;  // equal to the beginning when there is none
  Tick gap_at_ = 0;            // when it came to be, or became longer
  std::uint32_t acknowledged_ = 0;
  std::uint32_t timed_end_ = 0;  // of the segment whose acknowledgement is waited for
  Tick timed_at_ = 0;
  std::uint16_t window_ = 0;
  std::uint8_t acks_in_a_row_ = 0;
  bool known_ : 1 = false;
  bool acknowledges_ : 1 = false;
  bool timing_ : 1 = false;
  bool closed_window_ : 1 = false;
};
static_assert(sizeof(TcpDirection) == 32);

}  // namespace orvo
