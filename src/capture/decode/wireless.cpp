// Frames of wireless LANs (IEEE 802.11-2020 clause 9). Numbers are little-endian, those of other protocols inside are
// not.

#include <array>

#include "capture/decode/little_endian.h"
#include "capture/decode/protocol_registry.h"
#include "capture/decode/wireless_elements.h"

namespace orvo {
namespace {

constexpr std::uint8_t kAddressLength = 6;
constexpr std::size_t kFcsLength = 4;
constexpr std::size_t kQosLength = 2;
constexpr std::size_t kHtControlLength = 4;

// Where addresses and the sequence control stand (clause 9.2.3).
constexpr std::size_t kAddress1 = 4;
constexpr std::size_t kAddress2 = 10;
constexpr std::size_t kAddress3 = 16;
constexpr std::size_t kSequence = 22;
constexpr std::size_t kAddress4 = 24;
constexpr std::size_t kThreeAddresses = 24;
constexpr std::size_t kFourAddresses = 30;

// The second byte of the frame control field (clause 9.2.4.1).
constexpr std::uint8_t kToDs = 0x01;
constexpr std::uint8_t kFromDs = 0x02;
constexpr std::uint8_t kMoreFragments = 0x04;
constexpr std::uint8_t kRetry = 0x08;
constexpr std::uint8_t kProtected = 0x40;
constexpr std::uint8_t kOrder = 0x80;

/// What a data frame that carries nothing readable counts as, beside its subtypes.
constexpr std::uint32_t kEncryptedData = 0x100;

std::uint32_t TypeKey(FrameType type, std::uint8_t subtype) {
  return (static_cast<std::uint32_t>(type) << 4) | subtype;
}

AddressRecord AddressAt(Bytes frame, std::size_t at) {
  AddressRecord record;
  SetAddress<kAddressLength>(&record, kAddressPhysical, frame.data() + at);
  return record;
}

void SetPair(PacketFacts& facts, const AddressRecord& source, const AddressRecord& destination) {
  if (AddressPair* pair = facts.AddPhysicalPair()) *pair = {source, destination, DeliveryToPhysical(destination)};
}

/// Ends a frame that is too short for its header.
Payload Short(PacketFacts& facts) {
  facts.MarkShort();
  return {};
}

/// Notes who spoke to whom; the frame counts for its nodes from here on.
void SetEnds(WirelessFacts& wireless, const AddressRecord& transmitter, const AddressRecord& receiver) {
  wireless.transmitter = transmitter;
  wireless.receiver = receiver;
  wireless.delivery = DeliveryToPhysical(receiver);
  wireless.is_readable = true;
}

// --- management frames (clause 9.3.3) ---

/// Bytes before the elements, and where among them the capabilities are; no subtype without elements is listed.
struct BodyLayout {
  std::uint8_t subtype;
  std::uint8_t fixed;
  std::uint8_t capabilities;
};
constexpr std::uint8_t kNone = 0xFF;
constexpr BodyLayout kBodies[] = {
    {kAssociationRequest, 4, 0},
    {kAssociationResponse, 6, 0},
    {kReassociationRequest, 10, 0},
    {kReassociationResponse, 6, 0},
    {kProbeRequest, 0, kNone},
    {kProbeResponse, 12, 10},
    {kBeacon, 12, 10},
};

/// Capability information (clause 9.4.1.4).
void ReadCapabilities(std::uint16_t capabilities, NetworkFacts* network) {
  network->has_capabilities = true;
  network->is_infrastructure = (capabilities & 1U) != 0;
  network->is_ad_hoc = (capabilities & 2U) != 0;
  network->privacy = (capabilities & 0x10U) != 0;
}

void ReadAuthentication(Bytes body, PacketFacts& facts) {
  constexpr std::uint16_t kLeap = 0x80;
  if (body.size() < 6) return facts.MarkShort();
  if (ReadLe16(body, 0) == kLeap) facts.wireless.announced.authentication = kAuthenticationLeap;
  facts.wireless.announced.status = ReadLe16(body, 4);
}

void ReadBody(Bytes body, PacketFacts& facts) {
  WirelessFacts& wireless = facts.wireless;
  if (wireless.is_protected) return;
  if (wireless.subtype == kAuthentication) return ReadAuthentication(body, facts);
  for (const BodyLayout& layout : kBodies) {
    if (layout.subtype != wireless.subtype) continue;
    if (body.size() < layout.fixed) return facts.MarkShort();
    NetworkFacts& network = wireless.announced;
    if (layout.capabilities != kNone) ReadCapabilities(ReadLe16(body, layout.capabilities), &network);
    if (wireless.subtype == kAssociationResponse || wireless.subtype == kReassociationResponse) {
      network.status = ReadLe16(body, 2);
    }
    if (!ReadElements(body.subspan(layout.fixed), &network)) facts.MarkShort();
  }
}

Payload DecodeManagement(Bytes frame, PacketFacts& facts) {
  WirelessFacts& wireless = facts.wireless;
  const std::size_t header = kThreeAddresses + (wireless.has_order ? kHtControlLength : 0);
  if (frame.size() < kThreeAddresses) return Short(facts);
  SetEnds(wireless, AddressAt(frame, kAddress2), AddressAt(frame, kAddress1));
  wireless.network = AddressAt(frame, kAddress3);
  SetPair(facts, wireless.transmitter, wireless.receiver);
  if (frame.size() < header) {
    facts.MarkShort();
  } else {
    ReadBody(frame.subspan(header), facts);
  }
  return {{Layer::kWirelessType, TypeKey(wireless.type, wireless.subtype)}, {}};
}

// --- control frames (clause 9.3.1) ---

bool NamesTransmitter(std::uint8_t subtype) {
  switch (subtype) {
    case 2:  // trigger
    case 4:  // beamforming report poll
    case 5:  // null data packet announcement
    case 8:  // block acknowledgement request
    case 9:  // block acknowledgement
    case kPsPoll:
    case 11:  // request to send
    case 14:  // end of the contention-free period
    case 15: return true;
    default: return false;
  }
}

Payload DecodeControl(Bytes frame, PacketFacts& facts) {
  WirelessFacts& wireless = facts.wireless;
  const bool both = NamesTransmitter(wireless.subtype);
  if (frame.size() < (both ? kAddress3 : kAddress2)) return Short(facts);
  AddressRecord transmitter;
  if (both) {
    transmitter = AddressAt(frame, kAddress2);
    transmitter.bytes[0] &= 0xFEU;  // the group bit says that the frame tells its bandwidth (clause 9.2.4.3.8)
  }
  SetEnds(wireless, transmitter, AddressAt(frame, kAddress1));
  SetPair(facts, transmitter, wireless.receiver);
  return {{Layer::kWirelessType, TypeKey(wireless.type, wireless.subtype)}, {}};
}

// --- data frames (clause 9.3.2) ---

/// The two ends beyond the access points (table 9-30).
AddressPair EndsOf(Bytes frame, const WirelessFacts& wireless) {
  AddressPair pair;
  pair.destination = AddressAt(frame, wireless.to_ds ? kAddress3 : kAddress1);
  if (wireless.to_ds && wireless.from_ds) {
    pair.source = AddressAt(frame, kAddress4);
  } else {
    pair.source = AddressAt(frame, wireless.from_ds ? kAddress3 : kAddress2);
  }
  pair.delivery = DeliveryToPhysical(pair.destination);
  return pair;
}

AddressRecord NetworkOf(Bytes frame, const WirelessFacts& wireless) {
  if (wireless.to_ds && wireless.from_ds) return {};
  if (wireless.to_ds) return AddressAt(frame, kAddress1);
  return AddressAt(frame, wireless.from_ds ? kAddress2 : kAddress3);
}

/// What protection puts in front of the data tells its kind and key: WEP (clause 12.3.2.2), TKIP (12.5.2.2), whose
/// second byte follows from its first, or CCMP (12.5.3.2), whose third is 0. `whole` is the length on the air.
void ReadProtection(Bytes body, std::size_t whole, WirelessFacts* wireless) {
  constexpr std::size_t kInitialisation = 4;
  constexpr std::size_t kIcv = 4;
  constexpr std::uint8_t kExtended = 0x20;
  const bool extended = body.size() >= kInitialisation && (body[3] & kExtended) != 0;
  wireless->icv_error = whole < (extended ? 2 * kInitialisation : kInitialisation) + kIcv;
  if (body.size() < kInitialisation) return;
  wireless->has_key = true;
  wireless->key = body[3] >> 6;
  if (!extended) {
    wireless->encryption = kEncryptionWep;
  } else if (body[1] == ((body[0] | 0x20U) & 0x7FU) && body[2] != 0) {
    wireless->encryption = kEncryptionTkip;
  }
}

/// The first of the packets that an aggregate holds: two addresses and a length (clause 9.3.2.2.2).
Payload FirstOfAggregate(Bytes body, PacketFacts& facts, AddressPair* pair) {
  constexpr std::size_t kHeader = 14;
  if (body.size() < kHeader) return Short(facts);
  pair->destination = AddressAt(body, 0);
  pair->source = AddressAt(body, kAddressLength);
  pair->delivery = DeliveryToPhysical(pair->destination);
  const std::size_t length = Read16(body, kHeader - 2);
  body = body.subspan(kHeader);
  if (length > body.size()) facts.MarkShort();
  return {{Layer::kLlc, 0}, Within(body, length)};
}

Payload DecodeDataBody(Bytes frame, std::size_t header, bool is_aggregate, PacketFacts& facts, AddressPair* pair) {
  WirelessFacts& wireless = facts.wireless;
  const Payload nothing{{Layer::kWirelessType, TypeKey(wireless.type, wireless.subtype)}, {}};
  if (frame.size() < header) {
    facts.MarkShort();
    return nothing;
  }
  Bytes body = frame.subspan(header);
  if ((wireless.subtype & kDataWithoutPayload) != 0) return nothing;
  if (wireless.is_protected) {
    ReadProtection(body, body.size() + facts.missing, &wireless);
    return {{Layer::kWirelessType, kEncryptedData}, {}};
  }
  if (body.size() + facts.missing == 0) return nothing;
  facts.goes_on = (frame[1] & kMoreFragments) != 0;
  if ((frame[kSequence] & 0x0FU) != 0) return {{Layer::kLlc, 0}, {}, false};
  return is_aggregate ? FirstOfAggregate(body, facts, pair) : Payload{{Layer::kLlc, 0}, body};
}

Payload DecodeData(Bytes frame, PacketFacts& facts) {
  WirelessFacts& wireless = facts.wireless;
  std::size_t header = wireless.to_ds && wireless.from_ds ? kFourAddresses : kThreeAddresses;
  if (frame.size() < header) return Short(facts);
  SetEnds(wireless, AddressAt(frame, kAddress2), AddressAt(frame, kAddress1));
  wireless.network = NetworkOf(frame, wireless);
  AddressPair pair = EndsOf(frame, wireless);
  bool is_aggregate = false;
  if ((wireless.subtype & kDataWithQos) != 0) {
    constexpr std::uint8_t kAggregate = 0x80;  // clause 9.2.4.5.9
    is_aggregate = frame.size() > header && (frame[header] & kAggregate) != 0;
    header += kQosLength + (wireless.has_order ? kHtControlLength : 0);
  }
  if (wireless.radio.is_padded) header = (header + 3) / 4 * 4;
  Payload payload = DecodeDataBody(frame, header, is_aggregate, facts, &pair);
  SetPair(facts, pair.source, pair.destination);
  return payload;
}

/// Takes the frame check sequence off, of which the capture may have dropped a part.
Bytes WithoutFcs(Bytes frame, PacketFacts& facts) {
  if (!facts.wireless.radio.has_fcs) return frame;
  const std::size_t missing = std::min(facts.missing, kFcsLength);
  facts.missing -= missing;
  return frame.first(frame.size() - std::min(frame.size(), kFcsLength - missing));
}

Payload DecodeWireless(Bytes bytes, PacketFacts& facts) {
  WirelessFacts& wireless = facts.BeginWireless();
  bytes = WithoutFcs(bytes, facts);
  // Nothing in a damaged frame can be believed, its addresses least of all.
  if (wireless.radio.bad_fcs) return {};
  if (bytes.size() < kAddress1) return Short(facts);
  if ((bytes[0] & 3) != 0) {  // another version
    facts.malformed = true;
    return {};
  }
  wireless.type = static_cast<FrameType>((bytes[0] >> 2) & 3);
  wireless.subtype = bytes[0] >> 4;
  wireless.to_ds = (bytes[1] & kToDs) != 0;
  wireless.from_ds = (bytes[1] & kFromDs) != 0;
  wireless.is_retry = (bytes[1] & kRetry) != 0;
  wireless.is_protected = (bytes[1] & kProtected) != 0;
  wireless.has_order = (bytes[1] & kOrder) != 0;
  switch (wireless.type) {
    case FrameType::kManagement: return DecodeManagement(bytes, facts);
    case FrameType::kControl: return DecodeControl(bytes, facts);
    case FrameType::kData: return DecodeData(bytes, facts);
    default: wireless.is_readable = true; return {};
  }
}

template <LayerKey key>
constexpr std::array kOneKey{key};

template <FrameType type, std::uint8_t subtype>
constexpr Protocol Named(std::string_view name) {
  return {name, kOneKey<LayerKey{Layer::kWirelessType, (static_cast<std::uint32_t>(type) << 4) | subtype}>};
}

constexpr FrameType kManagement = FrameType::kManagement;
constexpr FrameType kControl = FrameType::kControl;

constexpr std::array kKeys{LayerKey{Layer::kLink, 105}, LayerKey{Layer::kWireless, 0}};
constexpr std::array kNoDataKeys{
    LayerKey{Layer::kWirelessType, 0x20}, LayerKey{Layer::kWirelessType, 0x21}, LayerKey{Layer::kWirelessType, 0x22},
    LayerKey{Layer::kWirelessType, 0x23}, LayerKey{Layer::kWirelessType, 0x24}, LayerKey{Layer::kWirelessType, 0x25},
    LayerKey{Layer::kWirelessType, 0x26}, LayerKey{Layer::kWirelessType, 0x27}, LayerKey{Layer::kWirelessType, 0x28},
    LayerKey{Layer::kWirelessType, 0x29}, LayerKey{Layer::kWirelessType, 0x2A}, LayerKey{Layer::kWirelessType, 0x2B},
    LayerKey{Layer::kWirelessType, 0x2C}, LayerKey{Layer::kWirelessType, 0x2E}, LayerKey{Layer::kWirelessType, 0x2F}};

constexpr std::array kProtocols{
    Protocol{"802.11", kKeys, DecodeWireless},
    Protocol{"802.11 Encrypted Data", kOneKey<LayerKey{Layer::kWirelessType, kEncryptedData}>},
    Protocol{"802.11 Null Data", kNoDataKeys},
    Named<kManagement, kAssociationRequest>("802.11 Association Request"),
    Named<kManagement, kAssociationResponse>("802.11 Association Response"),
    Named<kManagement, kReassociationRequest>("802.11 Reassociation Request"),
    Named<kManagement, kReassociationResponse>("802.11 Reassociation Response"),
    Named<kManagement, kProbeRequest>("802.11 Probe Request"),
    Named<kManagement, kProbeResponse>("802.11 Probe Response"),
    Named<kManagement, 6>("802.11 Timing Advertisement"),
    Named<kManagement, kBeacon>("802.11 Beacon"),
    Named<kManagement, 9>("802.11 ATIM"),
    Named<kManagement, kDisassociation>("802.11 Disassociation"),
    Named<kManagement, kAuthentication>("802.11 Authentication"),
    Named<kManagement, kDeauthentication>("802.11 Deauthentication"),
    Named<kManagement, 13>("802.11 Action"),
    Named<kManagement, 14>("802.11 Action without Acknowledgement"),
    Named<kControl, 2>("802.11 Trigger"),
    Named<kControl, 4>("802.11 Beamforming Report Poll"),
    Named<kControl, 5>("802.11 NDP Announcement"),
    Named<kControl, kControlWrapper>("802.11 Control Wrapper"),
    Named<kControl, 8>("802.11 Block Acknowledgement Request"),
    Named<kControl, 9>("802.11 Block Acknowledgement"),
    Named<kControl, kPsPoll>("802.11 PS-Poll"),
    Named<kControl, 11>("802.11 Request to Send"),
    Named<kControl, kClearToSend>("802.11 Clear to Send"),
    Named<kControl, kAcknowledgement>("802.11 Acknowledgement"),
    Named<kControl, 14>("802.11 CF-End"),
    Named<kControl, 15>("802.11 CF-End and Acknowledgement"),
};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo
