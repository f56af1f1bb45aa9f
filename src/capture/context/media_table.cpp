#include "capture/context/media_table.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>

#include "capture/analysis/voice_quality.h"
#include "capture/context/address_text.h"
#include "capture/context/analysis_table.h"
#include "capture/context/cell_texts.h"

namespace orvo {
namespace {

/// The way through the network takes this long where RTCP does not tell: what a call within one country has.
constexpr double kUsualDelay = 50;

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
constexpr double kMillisecond = 1e6;

struct MediaRow {
  const MediaStream& stream;
  const Call* call = nullptr;  ///< null without signalling
  std::uint64_t number = 0;    ///< of the row, from 1
};

struct MediaRows {
  FrozenVoice voice;

  std::size_t size() const { return voice.streams.size(); }
  MediaRow operator[](std::size_t row) const {
    const MediaStream& stream = voice.streams[row];
    return {stream, stream.call < voice.calls.size() ? &voice.calls[stream.call] : nullptr, row + 1};
  }
};

using R = const MediaRow&;

/// How long the sender's way to the receiver takes, a packet's own length included, since nothing of it leaves the
/// sender before its end is spoken.
double DelayOf(const MediaStream& stream) {
  double network = stream.one_way_delay();
  return (network < 0 ? kUsualDelay : network) + stream.packet_interval();
}

/// Nothing for video, and for codecs whose impairment is not published.
std::optional<VoiceRatings> RatingsOf(const MediaStream& stream) {
  const Codec* codec = stream.codec();
  if (!codec || !codec->rated() || stream.kind() == MediaKind::kVideo) return {};
  LossCounts losses = stream.sequence.losses();
  return RateVoice({codec->impairment, codec->loss_robustness, losses.ratio(), losses.burst_ratio(), DelayOf(stream)});
}

template <double VoiceRatings::*rating>
std::u16string RatingCell(R row) {
  auto ratings = RatingsOf(row.stream);
  return ratings ? RealCell((*ratings).*rating, 1) : std::u16string();
}

template <double VoiceRatings::*rating>
std::u16string ScoreCell(R row) {
  auto ratings = RatingsOf(row.stream);
  return ratings ? RealCell(MeanOpinionScore((*ratings).*rating), 2) : std::u16string();
}

std::u16string RawScoreCell(R row) {
  auto ratings = RatingsOf(row.stream);
  return ratings ? RealCell(RawQualityScore(MeanOpinionScore(ratings->listening)), 2) : std::u16string();
}

template <auto MediaStream::*member>
std::u16string StreamCount(R row) {
  return CountCell(static_cast<std::uint64_t>(row.stream.*member));
}

template <std::uint64_t LossCounts::*member>
std::u16string LossCell(R row) {
  return CountCell(row.stream.sequence.losses().*member);
}

template <double (JitterEstimate::*get)() const>
std::u16string JitterCell(R row) {
  return row.stream.jitter.known() ? RealCell((row.stream.jitter.*get)(), 3) : std::u16string();
}

template <std::string CallTexts::*member>
std::u16string CallTextCell(R row) {
  return row.call ? WireTextCell((*row.call->texts).*member) : std::u16string();
}

template <std::uint64_t Call::*member>
std::u16string CallTimeCell(R row) {
  return row.call ? TimeCell(row.call->*member) : std::u16string();
}

template <IpEndpoint StreamKey::*end>
std::u16string AddressCell(R row) {
  std::u16string text;
  AppendAddress(RecordOf((row.stream.key.*end).address), &text);
  return text;
}

template <IpEndpoint StreamKey::*end>
std::u16string PortCell(R row) {
  return CountCell((row.stream.key.*end).port);
}

template <std::uint64_t MediaStream::*member>
std::u16string DeltaCell(R row) {
  return row.stream.packets < 2 ? std::u16string()
                                : RealCell(static_cast<double>(row.stream.*member) / kMillisecond, 3);
}

std::uint64_t LengthOf(const MediaStream& stream) {
  return stream.last_time - stream.first_time;
}

std::u16string MeanDeltaCell(R row) {
  if (row.stream.packets < 2) return {};
  const auto gaps = static_cast<double>(row.stream.packets - 1);
  return RealCell(static_cast<double>(LengthOf(row.stream)) / kMillisecond / gaps, 3);
}

/// A count as a rate over the stream's length, empty for a stream of one moment.
std::u16string PerSecond(const MediaStream& stream, double count, int digits) {
  double seconds = static_cast<double>(LengthOf(stream)) / 1e9;
  return RealCell(seconds == 0 ? kNone : count / seconds, digits);
}

/// Routers take one from the initial value that the sender has chosen: 64, 128 and 255 are in use.
std::u16string HopsCell(R row) {
  int seen = row.stream.hops_left;
  int initial = seen <= 64 ? 64 : seen <= 128 ? 128 : 255;
  return CountCell(static_cast<std::uint64_t>(initial - seen));
}

std::u16string LossPercentCell(R row) {
  return RealCell(100 * row.stream.sequence.losses().ratio(), 2);
}

std::u16string StateCell(R row) {
  static constexpr std::u16string_view kStates[] = {u"Calling",   u"Challenged", u"Ringing", u"In call",
                                                    u"Completed", u"Cancelled",  u"Busy",    u"Unanswered",
                                                    u"Rejected",  u"Redirected", u"Failed"};
  return row.call ? std::u16string(kStates[static_cast<std::size_t>(row.call->state)]) : std::u16string();
}

/// From the answer to the end, or, as long as there is none, to the last that was seen of the call.
std::u16string CallDurationCell(R row) {
  if (!row.call || row.call->answer_time == 0) return {};
  std::uint64_t end =
      row.call->end_time != 0 ? row.call->end_time : std::max(row.call->last_time, row.stream.last_time);
  return DurationCell(end > row.call->answer_time ? end - row.call->answer_time : 0);
}

std::u16string SetupTimeCell(R row) {
  if (!row.call || row.call->answer_time < row.call->invite_time) return {};
  return RealCell(static_cast<double>(row.call->answer_time - row.call->invite_time) / kMillisecond, 3);
}

std::u16string CallNumberCell(R row) {
  return row.call ? CountCell(std::uint64_t{row.stream.call} + 1) : std::u16string();
}

std::u16string StatusCell(R row) {
  return row.call && row.call->status != 0 ? CountCell(row.call->status) : std::u16string();
}

std::u16string KindCell(R row) {
  static constexpr std::u16string_view kKinds[] = {u"", u"Audio", u"Video"};
  return std::u16string(kKinds[static_cast<std::size_t>(row.stream.kind())]);
}

std::u16string ClockCell(R row) {
  return row.stream.clock_rate() == 0 ? std::u16string() : CountCell(row.stream.clock_rate());
}

std::u16string IntervalCell(R row) {
  double interval = row.stream.packet_interval();
  return RealCell(interval > 0 ? interval : kNone, 1);
}

std::u16string DelayCell(R row) {
  double delay = row.stream.one_way_delay();
  return RealCell(delay < 0 ? kNone : delay, 3);
}

template <std::int64_t MediaStream::*member>
std::u16string RoundTripCell(R row) {
  return RealCell(row.stream.*member < 0 ? kNone : static_cast<double>(row.stream.*member) / kMillisecond, 3);
}

std::u16string ReportedLostCell(R row) {
  return row.stream.was_reported ? RealCell(row.stream.reported_lost, 0) : std::u16string();
}

std::u16string ReportedJitterCell(R row) {
  bool known = row.stream.was_reported && row.stream.clock_rate() != 0;
  return RealCell(known ? row.stream.reported_jitter * 1e3 / row.stream.clock_rate() : kNone, 3);
}

using Column = AnalysisColumn<MediaRow>;

constexpr std::array kColumns{
    Column{"CALL_NUMBER", "Call", CallNumberCell},  // 0
    Column{"START_TIME", "Start", [](R row) { return TimeCell(row.stream.first_time); }},
    Column{"CALL_ID", "Call ID", CallTextCell<&CallTexts::call_id>},
    Column{"CALL_FROM", "From", CallTextCell<&CallTexts::from>},
    Column{"CALL_TO", "To", CallTextCell<&CallTexts::to>},
    Column{"MOS_LQ", "MOS-LQ", ScoreCell<&VoiceRatings::listening>},  // 5
    Column{"CALL_STATE", "Call State", StateCell},
    Column{"EVENTS", "Events", [](R row) { return CountCell(row.stream.events()); }},
    Column{"FINISH_TIME", "Finish", [](R row) { return TimeCell(row.stream.last_time); }},
    Column{"CALL_INVITE_TIME", "Call Start", CallTimeCell<&Call::invite_time>},
    Column{"CALL_ANSWER_TIME", "Call Answered", CallTimeCell<&Call::answer_time>},  // 10
    Column{"MOS_CQ", "MOS-CQ", ScoreCell<&VoiceRatings::conversational>},
    Column{"CALL_DURATION", "Call Duration", CallDurationCell},
    Column{"HOPS", "Hops", HopsCell},
    Column{"DURATION", "Duration", [](R row) { return DurationCell(LengthOf(row.stream)); }},
    Column{"CALL_SETUP_TIME", "Call Setup (ms)", SetupTimeCell},  // 15
    Column{"CALL_END_TIME", "Call End", CallTimeCell<&Call::end_time>},
    Column{"CALL_STATUS", "Call Status Code", StatusCell},
    Column{"MOS_PQ", "MOS-PQ", RawScoreCell},
    Column{"PACKETS", "Packets", StreamCount<&MediaStream::packets>},
    Column{"EXPECTED_PACKETS", "Expected Packets", LossCell<&LossCounts::expected>},  // 20
    Column{"MOS_NOM", "MOS-NOM", ScoreCell<&VoiceRatings::nominal>},
    Column{"LOST_PACKETS", "Lost Packets", LossCell<&LossCounts::lost>},
    Column{"BYTES", "Bytes", StreamCount<&MediaStream::bytes>},
    Column{"PAYLOAD_BYTES", "Payload Bytes", StreamCount<&MediaStream::payload_bytes>},
    Column{"R_LISTENING", "R Factor Listening", RatingCell<&VoiceRatings::listening>},  // 25
    Column{"PROTOCOL", "Protocol", [](R) { return std::u16string(u"RTP"); }},
    Column{"LOSS_GAPS", "Loss Gaps", LossCell<&LossCounts::gaps>},
    Column{"LONGEST_LOSS_GAP", "Longest Loss Gap", LossCell<&LossCounts::longest_gap>},
    Column{"LATE_PACKETS", "Late Packets", StreamCount<&MediaStream::late>},
    Column{"R_CONVERSATIONAL", "R Factor Conversational", RatingCell<&VoiceRatings::conversational>},  // 30
    Column{"DUPLICATE_PACKETS", "Duplicate Packets", StreamCount<&MediaStream::duplicates>},
    Column{"RESTARTS", "Restarts", StreamCount<&MediaStream::restarts>},
    Column{"BURST_RATIO", "Burst Ratio", [](R row) { return RealCell(row.stream.sequence.losses().burst_ratio(), 2); }},
    Column{"MARKED_PACKETS", "Marked Packets", StreamCount<&MediaStream::marked>},
    Column{"R_G107", "R Factor G.107", RatingCell<&VoiceRatings::g107>},  // 35
    Column{"FLOW_ID", "Flow ID", [](R row) { return CountCell(row.number); }},
    Column{"PAYLOAD_TYPE", "Payload Type", StreamCount<&MediaStream::payload_type>},
    Column{"PAYLOAD_TYPE_CHANGES", "Payload Type Changes", StreamCount<&MediaStream::payload_changes>},
    Column{"CLOCK_RATE", "Clock Rate", ClockCell},
    Column{"PACKET_INTERVAL", "Packet Interval (ms)", IntervalCell},  // 40
    Column{"R_NOMINAL", "R Factor Nominal", RatingCell<&VoiceRatings::nominal>},
    Column{"FIRST_SEQUENCE", "First Sequence Number", [](R row) { return CountCell(row.stream.sequence.first()); }},
    Column{"LAST_SEQUENCE", "Last Sequence Number", [](R row) { return CountCell(row.stream.sequence.last()); }},
    Column{"SOURCE_ADDRESS", "Source Address", AddressCell<&StreamKey::source>},
    Column{"FIRST_TIMESTAMP", "First Timestamp", StreamCount<&MediaStream::first_timestamp>},  // 45
    Column{"LAST_TIMESTAMP", "Last Timestamp", StreamCount<&MediaStream::last_timestamp>},
    Column{"TIME_TO_LIVE", "Time to Live", StreamCount<&MediaStream::hops_left>},
    Column{"DESTINATION_ADDRESS", "Destination Address", AddressCell<&StreamKey::destination>},
    Column{"MEAN_DELTA", "Mean Delta (ms)", MeanDeltaCell},
    Column{"LARGEST_DELTA", "Largest Delta (ms)", DeltaCell<&MediaStream::largest_delta>},  // 50
    Column{"LEAST_DELTA", "Least Delta (ms)", DeltaCell<&MediaStream::least_delta>},
    Column{"DSCP", "DSCP", [](R row) { return CountCell(row.stream.traffic_class >> 2U); }},
    Column{"SOURCE_PORT", "Source Port", PortCell<&StreamKey::source>},
    Column{"PACKETS_PER_SECOND", "Packets per Second",
           [](R row) { return PerSecond(row.stream, static_cast<double>(row.stream.packets), 2); }},
    Column{"BIT_RATE", "Media Bits per Second",  // 55
           [](R row) { return PerSecond(row.stream, static_cast<double>(row.stream.payload_bytes) * 8, 0); }},
    Column{"MEDIA_TYPE", "Media Type", KindCell},
    Column{"SIGNALLED", "Signalled", [](R row) { return std::u16string(row.call ? u"Yes" : u"No"); }},
    Column{"DESTINATION_PORT", "Destination Port", PortCell<&StreamKey::destination>},
    Column{"JITTER", "Jitter (ms)", JitterCell<&JitterEstimate::now>},
    Column{"MEAN_JITTER", "Mean Jitter (ms)", JitterCell<&JitterEstimate::mean>},  // 60
    Column{"LARGEST_JITTER", "Largest Jitter (ms)", JitterCell<&JitterEstimate::largest>},
    Column{"TRANSPORT_FLOW", "UDP Flow",
           [](R row) { return row.stream.flow == 0 ? std::u16string() : CountCell(row.stream.flow); }},
    Column{"PACKET_LOSS", "Packet Loss %", LossPercentCell},
    Column{"ONE_WAY_DELAY", "One-Way Delay (ms)", DelayCell},
    Column{"RECEIVER_ROUND_TRIP", "Round Trip to Receiver (ms)",  // 65
           RoundTripCell<&MediaStream::receiver_round_trip>},
    Column{"SENDER_ROUND_TRIP", "Round Trip to Sender (ms)", RoundTripCell<&MediaStream::sender_round_trip>},
    Column{"SSRC", "SSRC", [](R row) { return HexCell(row.stream.key.ssrc); }},
    Column{"REPORTED_LOST", "Lost Packets by RTCP", ReportedLostCell},
    Column{"REPORTED_JITTER", "Jitter by RTCP (ms)", ReportedJitterCell},
    Column{"CODEC", "Codec", [](R row) { return WireTextCell(row.stream.codec_name()); }},  // 70
};
static_assert(kColumns.size() == 71);

}  // namespace

ComPtr<ITable> MakeMediaTable(const FrozenVoice& voice) {
  return ComPtr<ITable>(MakeObject<AnalysisTable<MediaRows, kColumns>>(MediaRows{voice}).get());
}

}  // namespace orvo
