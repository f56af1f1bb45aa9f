#pragma once

#include <vector>

#include "capture/decode/packet_facts.h"
#include "capture/names/name_directory.h"

namespace orvo {

/// Whether a packet comes from a name server's port: DNS, multicast DNS (RFC 6762) or LLMNR (RFC 4795).
inline bool MayHoldNames(const PacketFacts& facts) {
  const auto port = facts.source_port;
  return facts.has_ports && (port == 53 || port == 5353 || port == 5355) && !facts.payload.empty();
}

/// Appends the names of addresses that the answers in a packet tell: those of A and AAAA records under the name that
/// was asked for (the beginning of a chain of aliases), and those of PTR records of addresses. Over TCP only messages
/// that lie whole in the packet are read.
///
/// Names are ASCII letters in lower case, digits, hyphens, underscores, dots and visible characters beyond ASCII;
/// anything else, and a hyphen at the beginning, is a question mark, so that no name can act as a formula, a field
/// separator or a path wherever a report is opened. Left out are names that read like an address, and names of
/// addresses that belong to no host: unspecified, loopback, multicast and broadcast ones.
void ReadHeardNames(const PacketFacts& facts, std::vector<KnownName>* names);

/// The same for one message of these protocols (RFC 1035 section 4.1), whatever its bytes are.
void ReadDnsMessage(Bytes message, std::vector<KnownName>* names);

}  // namespace orvo
