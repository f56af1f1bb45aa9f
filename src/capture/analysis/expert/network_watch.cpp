#include "capture/analysis/expert/network_watch.h"

#include <algorithm>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

constexpr std::uint64_t kSecond = 1'000'000'000;
constexpr std::size_t kPhysicalLength = 6;

/// The event with the ends of the packet's innermost datagram, or else of its frame.
EventRecord EventOf(ExpertEvent event, const Packet& packet, const PacketFacts& facts) {
  EventRecord record;
  record.event = event;
  record.time = packet.time;
  Bytes datagram = facts.datagram;
  if (datagram.empty()) {
    if (facts.pair_count == 0) return record;
    record.source = facts.pairs[0].source;
    record.destination = facts.pairs[0].destination;
  } else if (datagram[0] >> 4 == 4) {
    SetAddress<4>(&record.source, kAddressIp, datagram.data() + 12);
    SetAddress<4>(&record.destination, kAddressIp, datagram.data() + 16);
  } else {
    SetAddress<16>(&record.source, kAddressIpv6, datagram.data() + 8);
    SetAddress<16>(&record.destination, kAddressIpv6, datagram.data() + 24);
  }
  return record;
}

void Report(ExpertEvent event, std::uint64_t value, const Packet& packet, const PacketFacts& facts,
            std::vector<EventRecord>* events) {
  EventRecord record = EventOf(event, packet, facts);
  record.value = value;
  events->push_back(record);
}

}  // namespace

NetworkWatch::NetworkWatch()
    : arp_(ProtocolRegistry::Get().FindName("ARP")),
      icmp_(ProtocolRegistry::Get().FindName("ICMP")),
      icmpv6_(ProtocolRegistry::Get().FindName("ICMPv6")) {}

void NetworkWatch::Inspect(const Packet& packet, const PacketFacts& facts, std::vector<EventRecord>* events) {
  // Beacons and probes of the air go to everybody, too, but no further than the air.
  const bool is_data = !facts.is_wireless || facts.wireless.type == FrameType::kData;
  if (is_data && facts.delivery() == Delivery::kBroadcast) CountBroadcast(packet, facts, events);
  if (facts.is_fragment) Report(ExpertEvent::kIpFragment, 0, packet, facts, events);
  if (facts.chain_length == 0) return;
  std::uint16_t innermost = facts.chain[facts.chain_length - 1U];
  if (innermost == arp_) InspectArp(packet, facts, events);
  if (innermost == icmp_) InspectIcmp(packet, facts, events);
  if (innermost == icmpv6_) InspectIcmpv6(packet, facts, events);
}

void NetworkWatch::CountBroadcast(const Packet& packet, const PacketFacts& facts, std::vector<EventRecord>* events) {
  std::uint64_t second = packet.time / kSecond;
  if (second != second_) {
    second_ = second;
    broadcasts_ = 0;
  }
  // Once for each second, when it has become too many.
  if (++broadcasts_ == ThresholdOf(ExpertEvent::kBroadcastStorm) + 1) {
    Report(ExpertEvent::kBroadcastStorm, broadcasts_, packet, facts, events);
  }
}

/// RFC 826: what a request or a reply says of its sender. A sender without an address only asks whether one is free
/// (RFC 5227 section 2.1.1).
void NetworkWatch::InspectArp(const Packet& packet, const PacketFacts& facts, std::vector<EventRecord>* events) {
  static constexpr std::array<std::uint8_t, 6> kIpv4OverEthernet{0, 1, 8, 0, 6, 4};
  constexpr std::size_t kSenderPhysical = 8;
  constexpr std::size_t kSenderIp = kSenderPhysical + kPhysicalLength;
  Bytes message = facts.innermost;
  if (message.size() < kSenderIp + 4 || !std::ranges::equal(message.first(6), kIpv4OverEthernet)) return;
  if (Read32(message, kSenderIp) == 0) return;
  AddressRecord address;
  SetAddress<4>(&address, kAddressIp, message.data() + kSenderIp);
  NoteClaim(address, message.data() + kSenderPhysical, packet.time, events);
}

void NetworkWatch::InspectIcmp(const Packet& packet, const PacketFacts& facts, std::vector<EventRecord>* events) {
  constexpr std::uint8_t kUnreachable = 3;
  constexpr std::uint8_t kFragmentationNeeded = 4;
  constexpr std::uint8_t kTimeExceeded = 11;
  Bytes message = facts.innermost;
  if (!facts.is_icmp_error || message.size() < 2) return;
  std::uint8_t type = message[0];
  std::uint16_t type_and_code = Read16(message, 0);
  if (type == kUnreachable) {
    bool too_big = message[1] == kFragmentationNeeded;
    Report(too_big ? ExpertEvent::kIcmpPacketTooBig : ExpertEvent::kIcmpUnreachable, type_and_code, packet, facts,
           events);
  } else if (type == kTimeExceeded) {
    Report(ExpertEvent::kIcmpTimeExceeded, type_and_code, packet, facts, events);
  }
}

/// RFC 4443 sections 3.1 to 3.3, and neighbour advertisements.
void NetworkWatch::InspectIcmpv6(const Packet& packet, const PacketFacts& facts, std::vector<EventRecord>* events) {
  static constexpr std::array kErrors{ExpertEvent::kIcmpUnreachable, ExpertEvent::kIcmpPacketTooBig,
                                      ExpertEvent::kIcmpTimeExceeded};
  constexpr std::uint8_t kNeighbourAdvertisement = 136;
  Bytes message = facts.innermost;
  if (message.size() < 2) return;
  std::uint8_t type = message[0];
  if (type >= 1 && type <= kErrors.size()) {
    Report(kErrors[type - 1U], Read16(message, 0), packet, facts, events);
  } else if (type == kNeighbourAdvertisement) {
    InspectNeighbour(packet, facts, events);
  }
}

/// The address that an advertisement is about, and the physical address in its options (RFC 4861 sections 4.4, 4.6.1).
void NetworkWatch::InspectNeighbour(const Packet& packet, const PacketFacts& facts, std::vector<EventRecord>* events) {
  constexpr std::size_t kTarget = 8;
  constexpr std::size_t kOptions = 24;
  constexpr std::uint8_t kTargetPhysicalAddress = 2;
  Bytes message = facts.innermost;
  if (message.size() < kOptions + 8) return;
  Bytes option = message.subspan(kOptions, 8);
  if (option[0] != kTargetPhysicalAddress || option[1] != 1) return;
  AddressRecord address;
  SetAddress<16>(&address, kAddressIpv6, message.data() + kTarget);
  NoteClaim(address, option.data() + 2, packet.time, events);
}

void NetworkWatch::NoteClaim(const AddressRecord& address, const std::uint8_t* physical, std::uint64_t time,
                             std::vector<EventRecord>* events) {
  AddressClaims::PhysicalAddress claimant{};
  std::copy_n(physical, claimant.size(), claimant.begin());
  AddressClaims::Finding finding = claims_.Note(address, claimant, time);
  if (finding == AddressClaims::Finding::kNothing) return;
  bool contested = finding == AddressClaims::Finding::kContested;
  // That an IPv6 address moves is nothing that ARP would have a part in, and no conflict by itself.
  if (!contested && address.type != kAddressIp) return;
  EventRecord record;
  record.event = contested ? ExpertEvent::kDuplicateAddress : ExpertEvent::kArpConflict;
  record.time = time;
  SetAddress<kPhysicalLength>(&record.source, kAddressPhysical, physical);
  record.destination = address;
  events->push_back(record);
}

}  // namespace orvo
