#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "capture/source/packet.h"

namespace orvo {

/// What a receiver reports of a source (RFC 3550 section 6.4.1).
struct RtcpReportBlock {
  std::uint32_t ssrc = 0;
  std::uint8_t fraction_lost = 0;  ///< in 256ths, since the report before
  std::int32_t lost = 0;           ///< since the beginning; duplicates may make it negative
  std::uint32_t jitter = 0;        ///< in units of the stream's clock
  std::uint32_t last_report = 0;   ///< LSR: middle bits of the NTP time of the last sender's report, 0 for none
  std::uint32_t delay = 0;         ///< DLSR: time since that report came, in 1/65536 seconds
};

/// A sender's or receiver's report.
struct RtcpReport {
  static constexpr std::size_t kMaxBlocks = 31;

  std::uint32_t sender = 0;      ///< SSRC of who reports
  bool is_sender = false;        ///< `ntp_middle` holds
  std::uint32_t ntp_middle = 0;  ///< middle 32 bits of the report's NTP time
  std::array<RtcpReportBlock, kMaxBlocks> blocks;
  std::size_t block_count = 0;
};

/// Reads the report that begins a compound packet; false when the packet is none: each of its parts must have version 2
/// and a known type, and all together must fill it (RFC 3550 appendix A.2). `cut_off` excuses missing parts at the end.
bool ReadRtcp(Bytes payload, bool cut_off, RtcpReport* report);

}  // namespace orvo
