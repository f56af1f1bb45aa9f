#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "capture/analysis/codecs.h"
#include "capture/analysis/ip_endpoint.h"
#include "capture/analysis/jitter_estimate.h"
#include "capture/analysis/rtcp_packet.h"
#include "capture/analysis/rtp_packet.h"
#include "capture/analysis/sequence_tracker.h"
#include "capture/tables/row_index.h"

namespace orvo {

/// A payload type, and what it stands for.
struct PayloadFormat {
  std::uint8_t type = 0;
  std::string encoding;  ///< as SDP names it
  std::uint32_t clock_rate = 0;
};

/// What signalling says of a stream. Immutable once made.
struct MediaDescription {
  MediaKind kind = MediaKind::kUnknown;
  std::vector<PayloadFormat> formats;

  const PayloadFormat* Find(std::uint8_t payload_type) const;
};

/// One packet of a stream, with what its headers say.
struct RtpArrival {
  std::uint64_t time = 0;             ///< nanoseconds since 1601-01-01 UTC
  std::uint32_t original_length = 0;  ///< of the frame on the wire
  std::uint32_t payload_length = 0;   ///< of the media on the wire
  IpEnds ends;
  RtpHeader rtp;

  StreamKey key() const { return {ends.source, ends.destination, rtp.ssrc}; }
};

/// Everything known of one stream of media in one direction.
struct MediaStream {
  /// A stream that has not had a packet yet.
  MediaStream() = default;
  /// A stream that begins with that packet, which Take still has to be given.
  explicit MediaStream(const RtpArrival& first);

  void Take(const RtpArrival& arrival);

  /// The codec, by signalling or by the payload type; null when neither tells.
  const Codec* codec() const;
  /// As the codec's own name, or how signalling calls it; empty when nothing tells.
  std::string_view codec_name() const;
  MediaKind kind() const;
  std::uint32_t clock_rate() const { return ClockRateOf(payload_type); }
  /// Gaps, late packets, copies, restarts and changes of the payload type.
  std::uint64_t events() const;
  /// How far the stream's media reach, by timestamps, per packet in milliseconds; 0 when that cannot be told.
  double packet_interval() const;
  /// Half the sum of the round trips to both ends, in milliseconds; negative when RTCP gave none.
  double one_way_delay() const;

  StreamKey key;
  std::uint64_t flow = 0;           ///< number of the flow of both directions, 0 for none
  std::uint32_t call = kNoRow;      ///< row of the call, kNoRow without signalling
  std::uint32_t announcements = 0;  ///< how many there had been when the description was looked for
  std::shared_ptr<const MediaDescription> description;

  std::uint64_t first_time = 0;
  std::uint64_t last_time = 0;
  std::uint64_t packets = 0;
  std::uint64_t bytes = 0;          ///< of the frames on the wire
  std::uint64_t payload_bytes = 0;  ///< of the media
  std::uint64_t marked = 0;
  std::uint64_t late = 0;
  std::uint64_t duplicates = 0;
  std::uint64_t restarts = 0;
  std::uint64_t payload_changes = 0;
  std::uint64_t least_delta = 0;  ///< between two packets, nanoseconds
  std::uint64_t largest_delta = 0;
  SequenceTracker sequence;
  JitterEstimate jitter;
  std::uint32_t first_timestamp = 0;
  std::uint32_t last_timestamp = 0;
  std::uint8_t payload_type = 0;  ///< of the voice or video, not of what stands in for it
  std::uint8_t hops_left = 0;
  std::uint8_t traffic_class = 0;
  bool has_media = false;  ///< `payload_type` has been set by a packet of media

  // What RTCP says of it.
  std::uint64_t reports = 0;      ///< of either end
  std::uint64_t report_time = 0;  ///< when the last sender's report was captured
  std::uint32_t report_mark = 0;  ///< the middle bits of its NTP time
  std::int32_t reported_lost = 0;
  std::uint32_t reported_jitter = 0;
  bool was_reported = false;  ///< the receiver has reported
  /// From the place of the capture to an end and back, nanoseconds; negative for not known.
  std::int64_t receiver_round_trip = -1;
  std::int64_t sender_round_trip = -1;

 private:
  std::uint32_t ClockRateOf(std::uint8_t type) const;
  std::string_view EncodingOf(std::uint8_t type) const;
};

}  // namespace orvo
