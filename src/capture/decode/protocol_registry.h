#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "capture/decode/packet_facts.h"

namespace orvo {

/// What a number that names a protocol is a number of.
enum class Layer : std::uint8_t {
  kNone,
  kLink,            ///< link type of a packet
  kWireless,        ///< 0: a frame of IEEE 802.11 behind a radio's header
  kWirelessType,    ///< type and subtype of a frame of IEEE 802.11
  kEtherType,       ///< IEEE 802 EtherType
  kEthernetLength,  ///< 0: an IEEE 802.3 frame with a length in the EtherType's place
  kLlc,             ///< 0: an IEEE 802.2 header on a link other than Ethernet
  kSap,             ///< destination service access point of an IEEE 802.2 header
  kSnapCisco,       ///< protocol identifier of a SNAP header whose organisation is 00-00-0C
  kSlowSubtype,     ///< subtype of IEEE 802.3 clause 57A
  kOsi,             ///< network layer protocol identifier (ISO/IEC TR 9577)
  kPpp,             ///< protocol field of PPP
  kIpxSocket,
  kDdpType,     ///< type of an AppleTalk datagram
  kIpProtocol,  ///< protocol of IPv4, next header of IPv6
  kTcpPort,
  kUdpPort,
  kUdpTunnel,  ///< destination port of UDP, for protocols that carry packets of others
  kSctpPort,
};
inline constexpr std::size_t kLayerCount = static_cast<std::size_t>(Layer::kSctpPort) + 1;

struct LayerKey {
  Layer layer = Layer::kNone;
  std::uint32_t number = 0;
};

/// What a header hands on: the protocol behind it, and its bytes. The default hands on nothing.
struct Payload {
  LayerKey key;
  Bytes bytes;
  bool has_header = true;  ///< false in a later fragment: the protocol is known, its header is elsewhere
};

/// One protocol: its name, the keys under which other headers announce it, and the function that reads its header. The
/// function gets whatever bytes there are, none included, checks before it reads, notes what it found, and says what
/// comes next. Null for a protocol that is only recognised.
struct Protocol {
  std::string_view name;
  std::span<const LayerKey> keys;
  Payload (*decode)(Bytes bytes, PacketFacts& facts) = nullptr;
  bool in_chain = true;  ///< false for a mark that belongs to the header before it, such as a VLAN tag
};

/// Adds protocols to the registry before main begins: every file of a protocol holds one, at namespace scope, and
/// nothing else has to know the file. (The engine is linked as objects, so that no linker leaves the file out.)
class ProtocolRegistration {
 public:
  explicit ProtocolRegistration(std::span<const Protocol> registered);
  /// For protocols that are not known at compile time: asked once, when the registry is made. They must stay.
  explicit ProtocolRegistration(std::span<const Protocol> (*registered_later)());

  std::span<const Protocol> protocols() const { return later_ ? later_() : protocols_; }
  const ProtocolRegistration* next() const { return next_; }

 private:
  std::span<const Protocol> protocols_;
  std::span<const Protocol> (*later_)() = nullptr;
  const ProtocolRegistration* next_;
};

/// All registered protocols, ordered by name, so that identifiers do not depend on the order of linking. Identifier 0
/// stands for no protocol. A protocol without keys is only a name, and the same as one of that name with keys.
/// Immutable once made.
class ProtocolRegistry {
 public:
  /// Made on first use; raises std::logic_error when two protocols claim one name or one key.
  static const ProtocolRegistry& Get();

  /// Identifier of the protocol that a key announces, 0 when no protocol does.
  std::uint16_t Find(Layer layer, std::uint32_t number) const {
    const auto& keys = by_key_[static_cast<std::size_t>(layer)];
    return number < keys.size() ? keys[number] : std::uint16_t{0};
  }
  /// Identifier of the protocol of that name, 0 when there is none.
  std::uint16_t FindName(std::string_view name) const;
  const Protocol& protocol(std::uint16_t identifier) const { return *protocols_[identifier]; }
  /// Identifiers run from 1 to count() - 1.
  std::size_t count() const { return protocols_.size(); }

 private:
  ProtocolRegistry();
  void AddKey(LayerKey key, std::uint16_t identifier);

  std::vector<const Protocol*> protocols_;
  std::array<std::vector<std::uint16_t>, kLayerCount> by_key_;
};

/// Runs a packet through the decoders of its headers, from the link inwards.
void DecodePacket(const Packet& packet, PacketFacts* facts);

}  // namespace orvo
