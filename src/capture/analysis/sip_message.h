#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "capture/analysis/session_description.h"
#include "capture/source/packet.h"

namespace orvo {

/// What the analysis of calls wants to know of a SIP message (RFC 3261).
struct SipMessage {
  bool is_request = false;
  std::uint16_t status = 0;  ///< of a response, 100 to 699
  std::string method;        ///< of the request, or of the one that is answered
  std::string call_id;       ///< never empty
  std::string from;          ///< user@host
  std::string to;
  bool in_dialog = false;  ///< the To header has a tag
  std::vector<OfferedMedia> media;
};

/// Four letters that a SIP message may begin with: those of its methods, or "SIP/".
bool BeginsLikeSip(std::uint32_t first_letters);

/// A few compares that everything else fails.
inline bool MayBeSip(Bytes payload) {
  if (payload.size() < 16 || payload[0] < 'A' || payload[0] > 'U') return false;
  return BeginsLikeSip(std::uint32_t{payload[0]} << 24 | std::uint32_t{payload[1]} << 16 |
                       std::uint32_t{payload[2]} << 8 | payload[3]);
}

/// Reads the message that a text begins with, and says how many bytes are its own. 0 bytes: this is no SIP. False with
/// some: it is, but lacks what every message has.
///
/// The text comes from the wire. Of its header at most 64 KB are looked through and five fields of up to 1 KB each
/// are parsed; of its body, session descriptions of up to 8 KB. A message may be cut off anywhere.
bool ReadSip(std::string_view text, SipMessage* message, std::size_t* length);

}  // namespace orvo
