#pragma once

#include <cstdint>

#include "capture/source/packet.h"

namespace orvo {

// What the first bytes of a payload say. Nothing is read beyond them, and whatever does not look right says nothing.

/// The status of an HTTP/1 answer (RFC 9112 section 4); 0 when these are no beginning of one.
unsigned HttpStatus(Bytes payload);

struct DnsHeader {
  std::uint16_t id = 0;
  std::uint8_t rcode = 0;
  bool is_query = false;   ///< a standard query, not its answer
  bool is_answer = false;  ///< to a standard query
};
/// RFC 1035 section 4.1.1.
DnsHeader ReadDnsHeader(Bytes message);

/// What a TLS record begins (RFC 8446 section 5.1; RFC 5246 section 6.2.1).
struct TlsRecord {
  bool client_hello = false;
  bool after_handshake = false;  ///< a change of the cipher, or application data
  bool fatal_alert = false;      ///< readable, thus sent before encryption
  std::uint8_t alert = 0;
};
TlsRecord ReadTlsRecord(Bytes payload);

}  // namespace orvo
