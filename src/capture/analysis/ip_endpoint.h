#pragma once

#include <array>
#include <cstdint>
#include <cstring>

#include "capture/decode/packet_facts.h"
#include "capture/tables/keyed_hash.h"

namespace orvo {

/// An IPv6 address, or an IPv4 address in the form that RFC 4291 section 2.5.5.2 gives it among those.
using IpBytes = std::array<std::uint8_t, 16>;

inline IpBytes MapIpv4(const std::uint8_t* four) {
  return {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, four[0], four[1], four[2], four[3]};
}

inline AddressRecord RecordOf(const IpBytes& address) {
  AddressRecord record;
  static constexpr std::uint8_t kMapped[12] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF};
  if (std::memcmp(address.data(), kMapped, sizeof kMapped) == 0) {
    SetAddress<4>(&record, kAddressIp, address.data() + 12);
  } else {
    SetAddress<16>(&record, kAddressIpv6, address.data());
  }
  return record;
}

/// Where a program sends from or listens. Without padding, so that it compares and hashes as bytes.
struct IpEndpoint {
  IpBytes address{};
  std::uint16_t port = 0;

  bool operator==(const IpEndpoint& other) const = default;
};

/// The two ends of a packet, and what of its IP header is of interest to whoever follows a stream.
struct IpEnds {
  IpEndpoint source;
  IpEndpoint destination;
  std::uint8_t hops_left = 0;      ///< time to live, hop limit
  std::uint8_t traffic_class = 0;  ///< the field that holds the differentiated services code point
};

/// False when the packet has no ports behind an IP header. In tunnels the innermost datagram counts.
inline bool ReadEnds(const PacketFacts& facts, IpEnds* ends) {
  Bytes datagram = facts.datagram;
  if (!facts.has_ports || datagram.size() < 20) return false;
  if (datagram[0] >> 4 == 4) {
    ends->source.address = MapIpv4(datagram.data() + 12);
    ends->destination.address = MapIpv4(datagram.data() + 16);
    ends->hops_left = datagram[8];
    ends->traffic_class = datagram[1];
  } else {
    if (datagram.size() < 40) return false;
    std::memcpy(ends->source.address.data(), datagram.data() + 8, 16);
    std::memcpy(ends->destination.address.data(), datagram.data() + 24, 16);
    ends->hops_left = datagram[7];
    ends->traffic_class = static_cast<std::uint8_t>((datagram[0] << 4) | (datagram[1] >> 4));
  }
  ends->source.port = facts.source_port;
  ends->destination.port = facts.destination_port;
  return true;
}

/// A source of media on its way: the stream that RFC 3550 knows by its SSRC, in one direction between two ends.
struct StreamKey {
  IpEndpoint source;
  IpEndpoint destination;
  std::uint32_t ssrc = 0;

  bool operator==(const StreamKey& other) const = default;
};
static_assert(sizeof(StreamKey) == 40);

inline std::uint64_t HashOf(const KeyedHash& hash, const StreamKey& key) {
  std::array<std::uint64_t, 5> words;
  std::memcpy(words.data(), &key, sizeof key);
  return hash(words);
}

inline std::uint64_t HashOf(const KeyedHash& hash, const IpEndpoint& endpoint) {
  std::array<std::uint64_t, 3> words{};
  static_assert(sizeof endpoint == 18);
  std::memcpy(words.data(), &endpoint, sizeof endpoint);
  return hash(words);
}

}  // namespace orvo
