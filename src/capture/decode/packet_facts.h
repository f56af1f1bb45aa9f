#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <tuple>

#include "capture/decode/wireless_facts.h"
#include "capture/source/packet.h"
#include "engine/address.h"

namespace orvo {

/// The two ends that one header names. Both addresses are of one type; an end that the header leaves out is an empty
/// record.
struct AddressPair {
  AddressRecord source;
  AddressRecord destination;
  Delivery delivery = Delivery::kUnicast;

  bool names_both_ends() const { return source.valid != 0 && destination.valid != 0; }
};

/// Names the flow of a packet, and its direction.
struct FlowMark {
  static constexpr std::uint32_t kNone = 0xFFFFFFFF;

  std::uint64_t serial = 0;  ///< counts flows from 1 in the order in which they begin; 0 for no flow
  std::uint32_t number =
      kNone;                ///< of the flow's place, which another takes when it is over: small, to index tables by
  bool from_first = false;  ///< which of its two ends has sent the packet
};

/// What the decoders found in one packet. One object serves packet after packet; nothing in it is ever allocated.
struct PacketFacts {
  static constexpr std::size_t kMaxPairs = 2;
  static constexpr std::size_t kMaxChain = 12;

  /// Makes the object ready for a packet of these lengths.
  void Begin(std::size_t captured, std::size_t original) {
    pair_count = 0;
    chain_length = 0;
    vlan_tags = 0;
    tcp_flags = 0;
    ip_protocol = 0;
    source_port = destination_port = 0;
    has_network_pair = has_ports = is_fragment = is_icmp_error = malformed = false;
    missing = original - std::min(captured, original);
    cut_off = missing != 0;
    goes_on = false;
    eap_method = 0;
    is_wireless = false;
    network = datagram = payload = innermost = {};
    applications = {};
    flow = {};
  }

  /// Room for the addresses of a frame; null inside of what has addresses already, since a frame in a tunnel is its
  /// outer nodes' traffic.
  AddressPair* AddPhysicalPair() { return pair_count == 0 ? ClearedPair() : nullptr; }

  /// Room for the addresses of a network header; null for all but the outermost.
  AddressPair* AddNetworkPair() {
    if (has_network_pair) return nullptr;
    has_network_pair = true;
    return ClearedPair();
  }

  /// Notes an IP datagram, from its header to the end of what was captured of it. Ports and payload are those of the
  /// innermost of datagrams in each other, so that what was found before is dropped.
  void BeginDatagram(Bytes bytes) {
    if (network.empty()) network = bytes;
    datagram = bytes;
    payload = {};
    has_ports = false;
    source_port = destination_port = 0;
  }

  /// To whom the frame itself is addressed, whatever it carries.
  Delivery delivery() const { return pair_count != 0 ? pairs[0].delivery : Delivery::kUnicast; }

  /// A header that does not fit into the bytes left: the frame's fault, unless the capture dropped its tail or another
  /// frame has the rest.
  void MarkShort() { malformed = malformed || !(cut_off || goes_on); }

  /// For the first header of a wireless link.
  WirelessFacts& BeginWireless() {
    if (!is_wireless) wireless = {};
    is_wireless = true;
    return wireless;
  }

  /// The frame's if it has one, then the network header's; those beyond the count are left over from earlier packets.
  std::array<AddressPair, kMaxPairs> pairs;
  std::array<std::uint16_t, kMaxChain> chain{};  ///< identifiers of the protocols met, outermost first
  std::uint8_t pair_count = 0;
  std::uint8_t chain_length = 0;
  std::uint8_t vlan_tags = 0;
  std::uint8_t tcp_flags = 0;  ///< as in the header: FIN 1, SYN 2, RST 4 (RFC 9293 section 3.1)
  /// IPv4's protocol, IPv6's last next header (IANA protocol numbers), of the innermost IP header; 0 also without one.
  std::uint8_t ip_protocol = 0;
  std::uint16_t source_port = 0;
  std::uint16_t destination_port = 0;
  bool has_network_pair = false;
  bool has_ports = false;  ///< only the first fragment of a datagram has them; `ip_protocol` says whose they are
  bool is_fragment = false;
  bool is_icmp_error = false;   ///< an error message of ICMP or ICMPv6
  bool malformed = false;       ///< a header contradicts itself or the frame's length
  bool cut_off = false;         ///< less was captured than was on the wire
  bool is_wireless = false;     ///< a frame of 802.11, or a radio's header in front of one
  bool goes_on = false;         ///< the link has split the packet, and later frames have the rest
  std::uint8_t eap_method = 0;  ///< of a message of 802.1X (IANA EAP method types), 0 for none
  std::size_t missing = 0;      ///< bytes that were on the wire behind those captured
  Bytes network;    ///< the outermost IP datagram from its header on, without padding, as far as it was captured
  Bytes datagram;   ///< the same of the innermost
  Bytes payload;    ///< what the innermost TCP, UDP or SCTP header carries, as far as it was captured; may be empty
  Bytes innermost;  ///< from the last header that was read on
  /// Identifiers of the protocols that the packet's flow was found to carry: what is spoken, then what it is spoken to
  /// (TLS, then a mail service); 0 for not known. Decoders leave them alone.
  std::array<std::uint16_t, 2> applications{};
  FlowMark flow;           ///< which flow the packet is of; decoders leave it alone
  WirelessFacts wireless;  ///< set for a wireless frame only

 private:
  AddressPair* ClearedPair() {
    pairs[pair_count] = {};
    return &pairs[pair_count++];
  }
};

/// Fills a record with the first `length` bytes, which are there.
template <std::uint8_t length>
void SetAddress(AddressRecord* record, AddressType type, const std::uint8_t* bytes) {
  static_assert(length <= std::tuple_size_v<decltype(record->bytes)>);
  *record = {1, type, length, 0, {}};
  std::memcpy(record->bytes.data(), bytes, length);
}

inline std::uint16_t Read16(Bytes bytes, std::size_t at) {
  return static_cast<std::uint16_t>((bytes[at] << 8) | bytes[at + 1]);
}

inline std::uint32_t Read32(Bytes bytes, std::size_t at) {
  return (std::uint32_t{Read16(bytes, at)} << 16) | Read16(bytes, at + 2);
}

/// What is left behind `count` bytes, which may be more than there are.
inline Bytes Behind(Bytes bytes, std::size_t count) {
  return bytes.subspan(std::min(count, bytes.size()));
}

/// At most the first `count` bytes.
inline Bytes Within(Bytes bytes, std::size_t count) {
  return bytes.first(std::min(count, bytes.size()));
}

}  // namespace orvo
