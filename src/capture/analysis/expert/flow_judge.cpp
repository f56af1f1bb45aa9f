#include "capture/analysis/expert/flow_judge.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "capture/analysis/expert/first_bytes.h"

namespace orvo {
namespace {

constexpr std::uint8_t kTcp = 6;

/// Between these, what fills a gap within the time that a connection took to open was overtaken on its way: nothing is
/// sent again sooner than it takes to learn of the loss.
constexpr std::uint32_t kLeastReorderTime = 3'000;
constexpr std::uint32_t kMostReorderTime = 200'000;

/// Shorter answers say little about throughput.
constexpr std::uint32_t kLongAnswer = 64 * 1024;

/// The event of a late answer.
ExpertEvent SlowAnswerOf(SpokenProtocol spoken) {
  switch (spoken) {
    case SpokenProtocol::kDns: return ExpertEvent::kDnsSlowAnswer;
    case SpokenProtocol::kHttp: return ExpertEvent::kHttpSlowAnswer;
    default: return ExpertEvent::kBusyServer;
  }
}

AddressRecord AddressOf(const FlowRow& row, FlowSide side) {
  AddressRecord record;
  if (row.ip_version == 4) {
    SetAddress<4>(&record, kAddressIp, row.addresses[side].data());
  } else {
    SetAddress<16>(&record, kAddressIpv6, row.addresses[side].data());
  }
  return record;
}

FlowSide Other(FlowSide side) {
  return side == kClient ? kServer : kClient;
}

}  // namespace

void FlowJudge::Judge(const PacketNote& packet, const FlowNote& note, FlowSide sender) {
  sender_ = sender;
  if (packet.ip_protocol == kTcp) {
    if (note.has_segment) JudgeTcp(note);
  } else if (!note.payload().empty()) {
    JudgeUdp(note.payload());
  }
}

void FlowJudge::JudgeTcp(const FlowNote& note) {
  const TcpSegment& segment = note.segment;
  std::uint32_t reorder_time = std::clamp(row_.connect_time, kLeastReorderTime, kMostReorderTime);
  TcpTrack& tcp = track_.transport.tcp;
  TcpFindings findings = tcp[sender_].Note(segment, now_, reorder_time, &tcp[Other(sender_)]);
  NoteTroubles(findings);
  if (!track_.connected) NoteConnecting(segment);
  if (findings.new_data) {
    if (track_.spoken == SpokenProtocol::kTls) NoteTlsRecord(note.payload());
    sender_ == kClient ? NoteRequest() : NoteAnswer(note.payload(), segment.length);
  }
  if (segment.Has(TcpSegment::kRst)) NoteReset();
  if (segment.Has(TcpSegment::kRst | TcpSegment::kFin)) EndAnswer();
}

void FlowJudge::NoteTroubles(const TcpFindings& findings) {
  if (findings.retransmission) {
    ++row_.retransmissions[sender_];
    Report(ExpertEvent::kTcpRetransmission);
  }
  if (findings.out_of_order) {
    ++row_.out_of_order;
    Report(ExpertEvent::kTcpOutOfOrder);
  }
  if (findings.missing) {
    ++row_.missing;
    if (sender_ == kServer) track_.request_time = 0;  // what is missing may have been the answer's beginning
    Report(ExpertEvent::kTcpSegmentMissing);
  }
  if (findings.duplicate_ack) {
    ++row_.duplicate_acks;
    bool loss = findings.acks_in_a_row == ThresholdOf(ExpertEvent::kTcpRepeatedAck);
    if (loss) Report(ExpertEvent::kTcpRepeatedAck, findings.acks_in_a_row);
  }
  row_.zero_windows += findings.zero_window;
  if (findings.window_closes) Report(ExpertEvent::kTcpZeroWindow);
  if (findings.has_ack_delay && IsSlow(ExpertEvent::kTcpSlowAck, findings.ack_delay)) {
    Report(ExpertEvent::kTcpSlowAck, findings.ack_delay);
  }
}

/// From the first segment of the client to its acknowledgement of the server's, which is the time of a round trip
/// wherever in between the capture was made.
void FlowJudge::NoteConnecting(const TcpSegment& segment) {
  if (segment.Has(TcpSegment::kRst)) return;
  if (segment.Has(TcpSegment::kSyn)) {
    if (sender_ == kServer) {
      track_.let_in = true;
    } else if (!track_.asked_to_connect) {
      track_.asked_to_connect = true;
      track_.opened = now_;
    }
    return;
  }
  if (sender_ == kServer || !track_.asked_to_connect || !track_.let_in) return;
  track_.connected = true;
  row_.connect_time = std::max<std::uint32_t>(TicksBetween(track_.opened, now_), 1);
  if (IsSlow(ExpertEvent::kTcpSlowConnection, row_.connect_time)) {
    Report(ExpertEvent::kTcpSlowConnection, row_.connect_time);
  }
}

void FlowJudge::NoteReset() {
  ++row_.resets;
  if (track_.reset) return;
  track_.reset = true;
  bool refused = sender_ == kServer && track_.asked_to_connect && !track_.let_in;
  Report(refused ? ExpertEvent::kTcpRefused : ExpertEvent::kTcpReset);
}

/// The answer is waited for from the end of the request on.
void FlowJudge::NoteRequest() {
  EndAnswer();
  track_.request_time = time_;
}

void FlowJudge::NoteAnswer(Bytes payload, std::uint32_t length) {
  if (track_.request_time != 0) {
    AddResponse(track_.request_time);
    track_.request_time = 0;
    if (track_.spoken == SpokenProtocol::kHttp) {
      unsigned status = HttpStatus(payload);
      if (status >= 400 && status < 500) Report(ExpertEvent::kHttpClientError, status);
      if (status >= 500 && status < 600) Report(ExpertEvent::kHttpServerError, status);
    } else if (track_.spoken == SpokenProtocol::kDns && payload.size() > 2) {
      DnsHeader header = ReadDnsHeader(payload.subspan(2));  // behind its length (RFC 1035 section 4.2.2)
      if (header.is_answer) NoteRcode(header.rcode);
    }
  }
  if (track_.answer_bytes == 0) track_.answer_begin = now_;
  track_.answer_bytes += std::min(length, std::numeric_limits<std::uint32_t>::max() - track_.answer_bytes);
  track_.answer_end = now_;
}

void FlowJudge::EndAnswer() {
  std::uint32_t bytes = std::exchange(track_.answer_bytes, 0);
  std::uint32_t duration = TicksBetween(track_.answer_begin, track_.answer_end);
  if (bytes < kLongAnswer || duration == 0) return;
  std::uint64_t rate = std::uint64_t{bytes} * 8 * 1'000'000 / duration;
  if (rate < ThresholdOf(ExpertEvent::kTcpLowThroughput)) ReportFrom(kServer, ExpertEvent::kTcpLowThroughput, rate);
}

void FlowJudge::NoteTlsRecord(Bytes payload) {
  if (track_.tls_agreed) return;
  TlsRecord record = ReadTlsRecord(payload);
  if (record.client_hello && !track_.tls_begun) {
    track_.tls_begun = true;
    track_.opened = now_;
  } else if (record.after_handshake) {
    track_.tls_agreed = true;
    std::uint32_t delay = TicksBetween(track_.opened, now_);
    if (track_.tls_begun && IsSlow(ExpertEvent::kTlsSlowHandshake, delay)) {
      Report(ExpertEvent::kTlsSlowHandshake, delay);
    }
  } else if (record.fatal_alert) {
    Report(ExpertEvent::kTlsAlert, record.alert);
  }
}

void FlowJudge::JudgeUdp(Bytes payload) {
  if (track_.spoken == SpokenProtocol::kDns) {
    NoteDnsMessage(payload);
  } else if (track_.spoken == SpokenProtocol::kAskedOverUdp) {
    if (sender_ == kClient) {
      if (track_.request_time == 0) track_.request_time = time_;  // asked again, it still waits since the first time
    } else if (track_.request_time != 0) {
      AddResponse(std::exchange(track_.request_time, 0));
    }
  }
}

void FlowJudge::NoteDnsMessage(Bytes payload) {
  DnsHeader header = ReadDnsHeader(payload);
  auto& queries = track_.transport.dns.queries;
  auto* found = std::ranges::find_if(
      queries, [&](const DnsTrack::Query& query) { return query.time != 0 && query.id == header.id; });
  if (sender_ == kClient && header.is_query) {
    if (found != queries.end()) return Report(ExpertEvent::kDnsRepeatedQuery);
    *std::ranges::min_element(queries, {}, &DnsTrack::Query::time) = {time_, header.id};
  } else if (sender_ == kServer && header.is_answer) {
    if (found != queries.end()) AddResponse(std::exchange(found->time, 0));
    NoteRcode(header.rcode);
  }
}

void FlowJudge::NoteRcode(std::uint8_t rcode) {
  constexpr std::uint8_t kNoSuchName = 3;
  if (rcode == 0) return;
  Report(rcode == kNoSuchName ? ExpertEvent::kDnsNameNotFound : ExpertEvent::kDnsError, rcode);
}

void FlowJudge::AddResponse(std::uint64_t begin) {
  std::uint64_t delay = time_ > begin ? (time_ - begin) / 1000 : 0;
  row_.responses.Add(delay, apdex_target_);
  ExpertEvent slow = SlowAnswerOf(track_.spoken);
  if (IsSlow(slow, delay)) Report(slow, delay);
}

void FlowJudge::ReportFrom(FlowSide side, ExpertEvent event, std::uint64_t value) {
  ++row_.events;
  row_.severity = std::max(row_.severity, TypeOf(event).severity);
  EventRecord record;
  record.event = event;
  record.time = time_;
  record.flow = row_.id;
  record.value = value;
  record.source = AddressOf(row_, side);
  record.destination = AddressOf(row_, Other(side));
  record.source_port = row_.ports[side];
  record.destination_port = row_.ports[Other(side)];
  record.applications = row_.applications;
  record.ip_protocol = row_.ip_protocol;
  log_.Add(record);
}

}  // namespace orvo
