#pragma once

#include <cstdint>

#include "capture/analysis/expert/event_log.h"
#include "capture/analysis/expert/expert_notes.h"
#include "capture/analysis/expert/flow_row.h"
#include "capture/analysis/expert/flow_track.h"
#include "capture/tables/packet_note.h"

namespace orvo {

/// Judges one packet of a flow: what it says of response times and of trouble goes into the flow's row and to the log.
class FlowJudge {
 public:
  /// All must outlive the judge. `time` is the packet's; `apdex_target` is in microseconds.
  FlowJudge(FlowTrack* track, FlowRow* row, EventLog* log, std::uint64_t time, std::uint64_t apdex_target)
      : track_(*track), row_(*row), log_(*log), time_(time), now_(TickOf(time)), apdex_target_(apdex_target) {}

  void Judge(const PacketNote& packet, const FlowNote& note, FlowSide sender);
  /// Nothing more will come of the flow.
  void Close() { EndAnswer(); }

 private:
  void JudgeTcp(const FlowNote& note);
  void JudgeUdp(Bytes payload);
  void NoteTroubles(const TcpFindings& findings);
  void NoteConnecting(const TcpSegment& segment);
  void NoteReset();
  void NoteRequest();
  void NoteAnswer(Bytes payload, std::uint32_t length);
  void EndAnswer();
  void NoteDnsMessage(Bytes payload);
  void NoteTlsRecord(Bytes payload);
  void NoteRcode(std::uint8_t rcode);
  void AddResponse(std::uint64_t begin);
  void Report(ExpertEvent event, std::uint64_t value = 0) { ReportFrom(sender_, event, value); }
  void ReportFrom(FlowSide side, ExpertEvent event, std::uint64_t value);

  FlowTrack& track_;
  FlowRow& row_;
  EventLog& log_;
  std::uint64_t time_;
  Tick now_;
  std::uint64_t apdex_target_;
  FlowSide sender_ = kClient;
};

}  // namespace orvo
