#include "capture/analysis/rtcp_packet.h"

#include "capture/analysis/rtp_packet.h"
#include "capture/decode/packet_facts.h"

namespace orvo {
namespace {

constexpr std::uint8_t kSenderReport = 200;
constexpr std::uint8_t kLastKnownType = 209;  // IANA: RTCP control packet types
constexpr std::size_t kHeader = 8;            // with the reporter's SSRC
constexpr std::size_t kSenderInfo = 20;
constexpr std::size_t kBlock = 24;

/// The parts of a compound packet lie end to end.
bool PartsFill(Bytes payload, bool cut_off) {
  while (payload.size() >= 4) {
    bool version_2 = (payload[0] & 0xC0) == 0x80;
    if (!version_2 || payload[1] < kSenderReport || payload[1] > kLastKnownType) return false;
    std::size_t length = (Read16(payload, 2) + std::size_t{1}) * 4;
    if (length > payload.size()) return cut_off;
    payload = payload.subspan(length);
  }
  return payload.empty() || cut_off;
}

RtcpReportBlock ReadBlock(Bytes bytes) {
  RtcpReportBlock block;
  block.ssrc = Read32(bytes, 0);
  block.fraction_lost = bytes[4];
  block.lost = static_cast<std::int32_t>(Read32(bytes, 4) << 8) >> 8;  // 24 bits with a sign
  block.jitter = Read32(bytes, 12);
  block.last_report = Read32(bytes, 16);
  block.delay = Read32(bytes, 20);
  return block;
}

}  // namespace

bool ReadRtcp(Bytes payload, bool cut_off, RtcpReport* report) {
  if (!MayBeRtcp(payload) || !PartsFill(payload, cut_off)) return false;
  report->is_sender = payload[1] == kSenderReport;
  report->sender = Read32(payload, 4);
  report->block_count = 0;
  Bytes part = Within(payload, (Read16(payload, 2) + std::size_t{1}) * 4);
  std::size_t at = kHeader;
  if (report->is_sender) {
    if (part.size() < kHeader + kSenderInfo) return false;
    report->ntp_middle = Read32(part, 10);
    at += kSenderInfo;
  }
  for (std::size_t i = payload[0] & 0x1FU; i != 0; --i, at += kBlock) {
    if (at + kBlock > part.size()) return cut_off;
    report->blocks[report->block_count++] = ReadBlock(part.subspan(at, kBlock));
  }
  return true;
}

}  // namespace orvo
