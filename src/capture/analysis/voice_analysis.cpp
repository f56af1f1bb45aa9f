#include "capture/analysis/voice_analysis.h"

#include <algorithm>
#include <string_view>

namespace orvo {
namespace {

constexpr std::uint8_t kTcp = 6;
constexpr std::uint8_t kUdp = 17;

/// How far a step from one packet of a candidate to the next may go.
constexpr std::uint16_t kMostSkipped = 16;
constexpr std::uint32_t kMostTicks = 900'000;  // ten seconds of the fastest clock in use
constexpr std::uint64_t kMostSilence = 5'000'000'000;

/// Candidates stand in sets, a set for each hash.
constexpr std::size_t kSets = 1024;
constexpr std::size_t kPlaces = 4;

/// Messages of SIP that one segment of TCP may hold.
constexpr int kMostMessages = 64;

/// Payload types that a stream without signalling may have: those of RFC 3551, and the dynamic ones.
bool IsLikelyType(std::uint8_t payload_type) {
  return payload_type >= 96 || FindStaticPayload(payload_type) != nullptr;
}

/// The time that a report block gives for the way from here to its sender and back (RFC 3550 section 6.4.1).
std::int64_t RoundTrip(const RtcpReportBlock& block, std::uint64_t report_time, std::uint64_t now) {
  std::uint64_t held = (std::uint64_t{block.delay} * 1'000'000'000) >> 16;
  std::uint64_t away = now - report_time;
  return now < report_time || held > away ? -1 : static_cast<std::int64_t>(away - held);
}

}  // namespace

VoiceAnalysis::VoiceAnalysis(const VoiceLimits& limits) : limits_(limits), calls_(limits.calls) {}

void VoiceAnalysis::Inspect(const Packet& packet, const PacketFacts& facts) {
  if (!Concerns(facts) || facts.is_icmp_error) return;
  bool udp = facts.ip_protocol == kUdp;
  Bytes payload = facts.payload;
  if (MayBeSip(payload)) {
    if (udp || facts.ip_protocol == kTcp) TakeSip(payload, packet.time);
    return;
  }
  RtpArrival arrival;
  if (!udp || !ReadEnds(facts, &arrival.ends)) return;
  if (MayBeRtcp(payload)) {
    RtcpReport report;
    if (ReadRtcp(payload, facts.cut_off, &report)) TakeRtcp(report, arrival.ends, packet.time);
  } else if (ReadRtp(payload, facts.cut_off, &arrival.rtp)) {
    arrival.time = packet.time;
    arrival.original_length = packet.original_length;
    auto missing = packet.original_length - static_cast<std::uint32_t>(packet.bytes.size());
    arrival.payload_length = arrival.rtp.payload_length + missing;
    TakeRtp(arrival, facts.flow.serial);
  }
}

void VoiceAnalysis::TakeSip(Bytes payload, std::uint64_t time) {
  std::string_view text(reinterpret_cast<const char*>(payload.data()), payload.size());
  SipMessage message;
  for (int i = 0; i < kMostMessages && !text.empty(); ++i) {
    std::size_t length = 0;
    bool complete = ReadSip(text, &message, &length);
    if (length == 0) return;
    text.remove_prefix(length);
    ++(complete && !message.is_request ? counts_.sip_responses : counts_.sip_requests);
    if (!complete) continue;
    if (!calls_.Take(message, time)) ++counts_.unlisted_sip_messages;
  }
}

void VoiceAnalysis::TakeRtp(const RtpArrival& arrival, std::uint64_t flow) {
  std::uint32_t row = RowOf(arrival.key());
  if (row == kNoRow) {
    if (!IsAnnounced(arrival)) return Prove(arrival, flow);
    MediaStream stream(arrival);
    stream.flow = flow;
    if (!Append(stream)) {
      ++counts_.unlisted_rtp_packets;
      return;
    }
    row = static_cast<std::uint32_t>(streams_.size() - 1);
  }
  ++counts_.rtp_packets;
  MediaStream& stream = streams_.Edit(row);
  if (stream.announcements != calls_.announcements()) Describe(&stream);
  stream.Take(arrival);
}

/// Whether signalling has named one end of the packet, with a payload type like this. Its own end counts, too, as
/// an address translator on the way may have changed the other.
bool VoiceAnalysis::IsAnnounced(const RtpArrival& arrival) const {
  for (const IpEndpoint* end : {&arrival.ends.destination, &arrival.ends.source}) {
    const CallTable::Announced* announced = calls_.Find(*end);
    if (announced && announced->description->Find(arrival.rtp.payload_type)) return true;
  }
  return false;
}

/// Gives a stream what signalling says of it by now. What the receiver has asked for goes before what the sender
/// wants to get itself.
bool VoiceAnalysis::Describe(MediaStream* stream) const {
  stream->announcements = calls_.announcements();
  for (const IpEndpoint* end : {&stream->key.destination, &stream->key.source}) {
    if (const CallTable::Announced* announced = calls_.Find(*end)) {
      stream->call = announced->call;
      stream->description = announced->description;
      return true;
    }
  }
  return false;
}

void VoiceAnalysis::Prove(const RtpArrival& arrival, std::uint64_t flow) {
  const RtpHeader& rtp = arrival.rtp;
  if (!IsLikelyType(rtp.payload_type)) return;
  Candidate& candidate = PlaceFor(arrival.key());
  MediaStream& stream = candidate.stream;
  bool known = candidate.proof != 0 && stream.key == arrival.key();
  if (known) {
    auto skipped = static_cast<std::uint16_t>(rtp.sequence - candidate.last_sequence);
    bool late = static_cast<std::uint16_t>(-skipped) <= kMostSkipped;
    std::uint32_t ticks = rtp.timestamp - candidate.last_timestamp;
    bool silent = arrival.time > stream.last_time + kMostSilence;
    bool follows = skipped <= kMostSkipped && ticks <= kMostTicks && rtp.payload_type == stream.payload_type;
    if (silent || (!late && !follows)) {
      known = false;
    } else if (!late) {
      ++candidate.proof;
    }
    if (late && known) {
      stream.Take(arrival);
      return;
    }
  }
  if (!known) {
    candidate = {MediaStream(arrival), 0, 0, 1};
    stream.flow = flow;
  }
  candidate.last_sequence = rtp.sequence;
  candidate.last_timestamp = rtp.timestamp;
  stream.Take(arrival);
  if (candidate.proof < kProof || rtp.timestamp == stream.first_timestamp) return;
  if (streams_.size() < limits_.streams && Append(stream)) {
    counts_.rtp_packets += stream.packets;
    Describe(&streams_.Edit(streams_.size() - 1));
    candidate.proof = 0;
  } else {
    counts_.unlisted_rtp_packets += candidate.proof == kProof ? stream.packets : 1;
    candidate.proof = kProof + 1;
  }
}

/// Where the candidate stands, or may.
VoiceAnalysis::Candidate& VoiceAnalysis::PlaceFor(const StreamKey& key) {
  if (candidates_.empty()) candidates_.resize(kSets * kPlaces);
  Candidate* set = &candidates_[HashOf(hash_, key) % kSets * kPlaces];
  Candidate* best = set;
  for (Candidate* place = set; place != set + kPlaces; ++place) {
    if (place->proof != 0 && place->stream.key == key) return *place;
    if (best->proof != 0 && (place->proof == 0 || place->stream.last_time < best->stream.last_time)) best = place;
  }
  return *best;
}

bool VoiceAnalysis::Append(const MediaStream& stream) {
  if (streams_.size() >= limits_.streams) return false;
  stream_index_.Reserve();
  streams_.Append(stream);
  stream_index_.Add(HashOf(hash_, stream.key), static_cast<std::uint32_t>(streams_.size() - 1));
  return true;
}

std::uint32_t VoiceAnalysis::RowOf(const StreamKey& key) const {
  return stream_index_.Find(HashOf(hash_, key), [&](std::uint32_t row) { return streams_[row].key == key; });
}

void VoiceAnalysis::TakeRtcp(const RtcpReport& report, const IpEnds& ends, std::uint64_t time) {
  MediaStream* own = Reported(ends, report.sender);
  if (own) {
    ++own->reports;
    if (report.is_sender) {
      own->report_time = time;
      own->report_mark = report.ntp_middle;
    }
  }
  bool known = own != nullptr;
  for (std::size_t i = 0; i < report.block_count; ++i) {
    if (!Reported({ends.destination, ends.source}, report.blocks[i].ssrc)) continue;
    known = true;
    TakeBlock(report.blocks[i], report, ends, time);
  }
  if (known) ++counts_.rtcp_packets;
}

/// A receiver's word on a stream, which goes the other way than the report.
void VoiceAnalysis::TakeBlock(const RtcpReportBlock& block, const RtcpReport& report, const IpEnds& ends,
                              std::uint64_t time) {
  MediaStream* stream = Reported({ends.destination, ends.source}, block.ssrc);
  ++stream->reports;
  stream->was_reported = true;
  stream->reported_lost = block.lost;
  stream->reported_jitter = block.jitter;
  if (block.last_report == 0 || block.last_report != stream->report_mark) return;
  std::int64_t round_trip = RoundTrip(block, stream->report_time, time);
  if (round_trip < 0) return;
  stream->receiver_round_trip = round_trip;
  if (MediaStream* own = Reported(ends, report.sender)) own->sender_round_trip = round_trip;
}

/// The stream of a source between the ends of an RTCP packet, for writing: by the same ports (RFC 5761), else by those
/// below (RFC 3550 section 11). Null when there is none.
MediaStream* VoiceAnalysis::Reported(IpEnds ends, std::uint32_t ssrc) {
  for (std::uint16_t below : {std::uint16_t{0}, std::uint16_t{1}}) {
    ends.source.port = static_cast<std::uint16_t>(ends.source.port - below);
    ends.destination.port = static_cast<std::uint16_t>(ends.destination.port - below);
    std::uint32_t row = RowOf({ends.source, ends.destination, ssrc});
    if (row != kNoRow) return &streams_.Edit(row);
  }
  return nullptr;
}

FrozenVoice VoiceAnalysis::Freeze() {
  return {streams_.Freeze(), calls_.Freeze(), counts()};
}

VoiceCounts VoiceAnalysis::counts() const {
  VoiceCounts counts = counts_;
  counts.calls = calls_.size();
  counts.streams = streams_.size();
  return counts;
}

void VoiceAnalysis::Reset() {
  VoiceLimits limits = limits_;
  *this = VoiceAnalysis(limits);
}

}  // namespace orvo
