#pragma once

#include <cstdint>

#include "capture/source/packet.h"

namespace orvo {

/// The fixed header of an RTP packet (RFC 3550 section 5.1), and how much it carries.
struct RtpHeader {
  std::uint32_t ssrc = 0;
  std::uint32_t timestamp = 0;
  std::uint16_t sequence = 0;
  std::uint8_t payload_type = 0;
  bool marker = false;
  std::uint16_t payload_length = 0;  ///< captured bytes behind all headers, without padding
};

/// A few compares that nearly everything else fails: version 2, room for the fixed header, and a payload type that is
/// none of RTCP's packet types (RFC 5761 section 4).
inline bool MayBeRtp(Bytes payload) {
  return payload.size() >= 12 && (payload[0] & 0xC0) == 0x80 && ((payload[1] & 0x7F) < 64 || (payload[1] & 0x7F) > 95);
}

/// The same for RTCP: version 2, room for a header and a sender, and a sender's or receiver's report, one of which
/// begins every compound packet (RFC 3550 section 6.1).
inline bool MayBeRtcp(Bytes payload) {
  return payload.size() >= 8 && (payload[0] & 0xC0) == 0x80 && (payload[1] == 200 || payload[1] == 201);
}

/// False when sources, extension or padding do not fit into the packet. `cut_off` says that the packet's end was not
/// captured, so that padding, which is told there, is not looked at.
bool ReadRtp(Bytes payload, bool cut_off, RtpHeader* header);

}  // namespace orvo
