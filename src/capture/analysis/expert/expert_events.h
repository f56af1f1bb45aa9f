#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace orvo {

enum class EventLayer : std::uint8_t { kDataLink, kNetwork, kTransport, kApplication };
enum class EventSeverity : std::uint8_t { kInformational, kMinor, kMajor, kSevere };

/// What the number that comes with an event says, and its threshold with it.
enum class EventMeasure : std::uint8_t {
  kNothing,
  kDelay,          ///< milliseconds
  kBitsPerSecond,  ///< a threshold is what the rate falls below
  kPerSecond,
  kInARow,
  kStatusCode,   ///< of HTTP
  kRcode,        ///< of DNS (RFC 1035 section 4.1.1, IANA DNS RCODEs)
  kAlert,        ///< description of a TLS alert (RFC 8446 section 6)
  kTypeAndCode,  ///< of ICMP: type * 256 + code
};

enum class ExpertEvent : std::uint8_t {
  kArpConflict,
  kBroadcastStorm,
  kDuplicateAddress,
  kIpFragment,
  kIcmpUnreachable,
  kIcmpPacketTooBig,
  kIcmpTimeExceeded,
  kTcpRetransmission,
  kTcpOutOfOrder,
  kTcpSegmentMissing,
  kTcpRepeatedAck,
  kTcpSlowAck,
  kTcpZeroWindow,
  kTcpSlowConnection,
  kTcpRefused,
  kTcpReset,
  kTcpLowThroughput,
  kBusyServer,
  kDnsNameNotFound,
  kDnsError,
  kDnsSlowAnswer,
  kDnsRepeatedQuery,
  kHttpClientError,
  kHttpServerError,
  kHttpSlowAnswer,
  kTlsAlert,
  kTlsSlowHandshake,
};

/// One kind of event. The texts are ASCII without commas, which separated text would take for its own.
struct ExpertEventType {
  ExpertEvent event;
  std::string_view key;   ///< for programs; never changes
  std::string_view name;  ///< for people
  EventLayer layer;
  EventSeverity severity;
  EventMeasure measure;
  std::uint64_t threshold;  ///< in the measure's unit; 0 for events that have none
  std::string_view cause;
  std::string_view advice;
};

namespace expert_events {
using enum ExpertEvent;
using enum EventLayer;
using enum EventSeverity;
using enum EventMeasure;

/// Every event, in the order of the enumeration. docs/expert-events.md is made from it.
inline constexpr std::array kTypes{
    ExpertEventType{
        kArpConflict, "ARP_CONFLICT", "ARP Conflict", kDataLink, kMinor, kNothing, 0,
        "An IPv4 address is announced with another physical address than before.",
        "Harmless after a change of hardware or a failover; else look for a wrongly configured or hostile station."},
    ExpertEventType{kBroadcastStorm, "BROADCAST_STORM", "Broadcast Storm", kDataLink, kSevere, kPerSecond, 1000,
                    "More broadcast frames within one second than a segment can do with.",
                    "Look for a loop between switches and for a station that sends without end."},
    ExpertEventType{kDuplicateAddress, "DUPLICATE_ADDRESS", "Duplicate Network Address", kNetwork, kSevere, kNothing, 0,
                    "Two physical addresses claim one IP address by turns.",
                    "Find both stations by their physical addresses and give one of them another IP address."},
    ExpertEventType{kIpFragment, "IP_FRAGMENT", "IP Fragment", kNetwork, kInformational, kNothing, 0,
                    "A datagram was too large for a link and was cut into fragments.",
                    "Compare the largest packet sizes of the links and let the sender find the path's."},
    ExpertEventType{kIcmpUnreachable, "ICMP_UNREACHABLE", "ICMP Destination Unreachable", kNetwork, kMinor,
                    kTypeAndCode, 0, "A router or the receiver could not deliver a packet.",
                    "Check that the station is up and that its port is open; then look for filters on the way."},
    ExpertEventType{
        kIcmpPacketTooBig, "ICMP_PACKET_TOO_BIG", "ICMP Packet Too Big", kNetwork, kMinor, kTypeAndCode, 0,
        "A packet did not fit into the next link and may not be cut into fragments.",
        "Expected while a sender finds the path's size; if it goes on see whether filters hold these messages back."},
    ExpertEventType{kIcmpTimeExceeded, "ICMP_TIME_EXCEEDED", "ICMP Time Exceeded", kNetwork, kMinor, kTypeAndCode, 0,
                    "A packet ran out of hops or its fragments did not all arrive.",
                    "Expected while a route is traced; else look for a loop between routers."},
    ExpertEventType{kTcpRetransmission, "TCP_RETRANSMISSION", "TCP Retransmission", kTransport, kMinor, kNothing, 0,
                    "A segment was sent again as it or its acknowledgement was lost or late.",
                    "Look for a link with errors or without room between the two; a few are normal."},
    ExpertEventType{kTcpOutOfOrder, "TCP_OUT_OF_ORDER", "TCP Segment out of Order", kTransport, kInformational,
                    kNothing, 0, "A segment arrived after one that was sent later.",
                    "Several paths lead to the receiver or the capture joins several interfaces."},
    ExpertEventType{kTcpSegmentMissing, "TCP_SEGMENT_MISSING", "TCP Segment Missing", kTransport, kMinor, kNothing, 0,
                    "Bytes were skipped: a segment was lost before it came here or the capture lacks it.",
                    "If no retransmission follows the capture has dropped packets; else look for loss before the point "
                    "of capture."},
    ExpertEventType{kTcpRepeatedAck, "TCP_REPEATED_ACK", "TCP Repeated Acknowledgement", kTransport, kInformational,
                    kInARow, 3, "A receiver asks for a segment that it misses (RFC 5681 section 3.2).",
                    "Look for loss between the sender and the receiver."},
    ExpertEventType{
        kTcpSlowAck, "TCP_SLOW_ACK", "TCP Slow Acknowledgement", kTransport, kMinor, kDelay, 500,
        "Data waited for its acknowledgement longer than a receiver may delay it (RFC 9293 section 3.8.6.3).",
        "Look for a long or congested path and for a receiver under load."},
    ExpertEventType{kTcpZeroWindow, "TCP_ZERO_WINDOW", "TCP Zero Window", kTransport, kMajor, kNothing, 0,
                    "A receiver has no room left and stops its sender.",
                    "The application there reads too slowly: look at its load and its disk and memory."},
    ExpertEventType{kTcpSlowConnection, "TCP_SLOW_CONNECTION", "TCP Slow Connection", kTransport, kMinor, kDelay, 500,
                    "Opening a connection took long.",
                    "Look for lost first segments and for a server whose queue of new connections is full."},
    ExpertEventType{
        kTcpRefused, "TCP_CONNECTION_REFUSED", "TCP Connection Refused", kTransport, kMajor, kNothing, 0,
        "The server answered the first segment with a reset: nothing listens on that port or a filter refuses.",
        "Check that the service runs and that the client asks for the right port."},
    ExpertEventType{
        kTcpReset, "TCP_CONNECTION_RESET", "TCP Connection Reset", kTransport, kMinor, kNothing, 0,
        "A connection was broken off instead of closed.",
        "Some programs always end so; else look for a crash or a time limit at the side that sent the reset."},
    ExpertEventType{kTcpLowThroughput, "TCP_LOW_THROUGHPUT", "TCP Low Throughput", kTransport, kMinor, kBitsPerSecond,
                    100'000, "A long answer (64 KiB or more) arrived slowly.",
                    "Look for losses first; then compare the receiver's window with the path's delay."},
    ExpertEventType{kBusyServer, "BUSY_SERVER", "Busy Server", kApplication, kMinor, kDelay, 2000,
                    "A server took long until the first byte of its answer.",
                    "Compare with the time that connections take to open: if that is short the server itself is slow."},
    ExpertEventType{kDnsNameNotFound, "DNS_NAME_NOT_FOUND", "DNS Name Not Found", kApplication, kInformational, kRcode,
                    0, "A name was asked for that does not exist.",
                    "Check the name; many of one station may be a search list or unwanted software."},
    ExpertEventType{kDnsError, "DNS_ERROR", "DNS Error", kApplication, kMinor, kRcode, 0,
                    "A name server could not or would not answer.",
                    "Look into the server's log and check who may use it."},
    ExpertEventType{kDnsSlowAnswer, "DNS_SLOW_ANSWER", "DNS Slow Answer", kApplication, kMinor, kDelay, 500,
                    "A name server took long to answer.",
                    "Look at its load and at the servers that it asks in turn; use one that is nearer."},
    ExpertEventType{kDnsRepeatedQuery, "DNS_REPEATED_QUERY", "DNS Repeated Query", kApplication, kMinor, kNothing, 0,
                    "A name was asked for again as no answer came.",
                    "Check that the name server is up and that queries and answers may pass."},
    ExpertEventType{kHttpClientError, "HTTP_CLIENT_ERROR", "HTTP Client Error", kApplication, kMinor, kStatusCode, 0,
                    "A server refused a request with a status of 400 to 499.",
                    "Look for broken links (404) and for missing rights (401 and 403)."},
    ExpertEventType{kHttpServerError, "HTTP_SERVER_ERROR", "HTTP Server Error", kApplication, kMajor, kStatusCode, 0,
                    "A server failed at a request with a status of 500 to 599.",
                    "Look into the server's log; 502 to 504 come from a proxy whose server does not answer."},
    ExpertEventType{kHttpSlowAnswer, "HTTP_SLOW_ANSWER", "HTTP Slow Answer", kApplication, kMinor, kDelay, 2000,
                    "A web server took long until the first byte of its answer.",
                    "Look at the page that was asked for and at the load of the server and of its database."},
    ExpertEventType{
        kTlsAlert, "TLS_ALERT", "TLS Fatal Alert", kApplication, kMajor, kAlert, 0,
        "A secure connection failed: the two sides do not agree or a certificate is not trusted.",
        "The alert's number tells why: 40 no common method; 42 to 46 and 48 a certificate; 70 an old version."},
    ExpertEventType{kTlsSlowHandshake, "TLS_SLOW_HANDSHAKE", "TLS Slow Handshake", kApplication, kMinor, kDelay, 1000,
                    "Agreeing on a secure connection took long.",
                    "Look at the delay of the path and at the load of the server."},
};
}  // namespace expert_events

inline constexpr std::size_t kExpertEventCount = expert_events::kTypes.size();

constexpr const ExpertEventType& TypeOf(ExpertEvent event) {
  return expert_events::kTypes[static_cast<std::size_t>(event)];
}

constexpr std::uint64_t ThresholdOf(ExpertEvent event) {
  return TypeOf(event).threshold;
}

/// Whether a delay in microseconds is beyond the event's threshold.
constexpr bool IsSlow(ExpertEvent event, std::uint64_t microseconds) {
  return microseconds > ThresholdOf(event) * 1000;
}

static_assert([] {
  for (std::size_t i = 0; i < kExpertEventCount; ++i) {
    if (static_cast<std::size_t>(expert_events::kTypes[i].event) != i) return false;
  }
  return true;
}());

/// As reports show them.
std::string_view LayerName(EventLayer layer);
std::string_view SeverityName(EventSeverity severity);

}  // namespace orvo
