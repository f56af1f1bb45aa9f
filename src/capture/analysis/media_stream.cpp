#include "capture/analysis/media_stream.h"

#include <algorithm>

namespace orvo {

const PayloadFormat* MediaDescription::Find(std::uint8_t payload_type) const {
  auto found = std::ranges::find(formats, payload_type, &PayloadFormat::type);
  return found == formats.end() ? nullptr : &*found;
}

MediaStream::MediaStream(const RtpArrival& first)
    : key(first.key()),
      first_time(first.time),
      last_time(first.time),
      sequence(first.rtp.sequence),
      first_timestamp(first.rtp.timestamp),
      payload_type(first.rtp.payload_type),
      hops_left(first.ends.hops_left),
      traffic_class(first.ends.traffic_class) {}

void MediaStream::Take(const RtpArrival& arrival) {
  using enum SequenceTracker::Verdict;
  const RtpHeader& rtp = arrival.rtp;
  auto verdict = packets == 0 ? kInOrder : sequence.Take(rtp.sequence);
  if (packets != 0) {
    std::uint64_t delta = arrival.time > last_time ? arrival.time - last_time : 0;
    least_delta = packets == 1 ? delta : std::min(least_delta, delta);
    largest_delta = std::max(largest_delta, delta);
  }
  ++packets;
  bytes += arrival.original_length;
  payload_bytes += arrival.payload_length;
  marked += rtp.marker ? 1 : 0;
  late += verdict == kLate ? 1 : 0;
  duplicates += verdict == kDuplicate ? 1 : 0;
  restarts += verdict == kRestart ? 1 : 0;
  first_time = std::min(first_time, arrival.time);
  last_time = std::max(last_time, arrival.time);
  if (verdict == kStray || verdict == kDuplicate) return;
  if (verdict == kRestart) jitter.Restart();

  std::string_view encoding = EncodingOf(rtp.payload_type);
  // The timestamp of a telephone event is that of its beginning, in all of its packets.
  if (IsTelephoneEvent(encoding)) return;
  if (!IsComfortNoise(encoding)) {
    payload_changes += has_media && rtp.payload_type != payload_type ? 1 : 0;
    payload_type = rtp.payload_type;
    has_media = true;
  }
  jitter.Take(arrival.time, rtp.timestamp, ClockRateOf(rtp.payload_type));
  if (verdict != kLate) last_timestamp = rtp.timestamp;
}

std::string_view MediaStream::EncodingOf(std::uint8_t type) const {
  if (const PayloadFormat* format = description ? description->Find(type) : nullptr) return format->encoding;
  const StaticPayload* payload = FindStaticPayload(type);
  return payload ? payload->encoding : std::string_view();
}

std::uint32_t MediaStream::ClockRateOf(std::uint8_t type) const {
  if (const PayloadFormat* format = description ? description->Find(type) : nullptr) return format->clock_rate;
  const StaticPayload* payload = FindStaticPayload(type);
  return payload ? payload->clock_rate : 0;
}

const Codec* MediaStream::codec() const {
  return FindCodec(EncodingOf(payload_type));
}

std::string_view MediaStream::codec_name() const {
  const Codec* known = codec();
  return known ? known->name : EncodingOf(payload_type);
}

MediaKind MediaStream::kind() const {
  if (description && description->kind != MediaKind::kUnknown) return description->kind;
  const Codec* known = codec();
  return known ? known->kind : MediaKind::kUnknown;
}

std::uint64_t MediaStream::events() const {
  return sequence.losses().gaps + late + duplicates + restarts + payload_changes;
}

double MediaStream::packet_interval() const {
  std::uint64_t expected = sequence.losses().expected;
  std::uint32_t clock = clock_rate();
  if (clock == 0 || expected < 2 || restarts != 0) return 0;
  return static_cast<std::uint32_t>(last_timestamp - first_timestamp) * 1e3 / clock / static_cast<double>(expected - 1);
}

double MediaStream::one_way_delay() const {
  if (receiver_round_trip < 0 && sender_round_trip < 0) return -1;
  std::int64_t both = std::max<std::int64_t>(receiver_round_trip, 0) + std::max<std::int64_t>(sender_round_trip, 0);
  return static_cast<double>(both) / 2e6;
}

}  // namespace orvo
