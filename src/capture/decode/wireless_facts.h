#pragma once

#include <array>
#include <cstdint>

#include "capture/decode/radio_facts.h"
#include "engine/address.h"

namespace orvo {

/// To whom a frame or datagram is addressed.
enum class Delivery : std::uint8_t { kUnicast, kBroadcast, kMulticast };

/// The type of a frame of 802.11, as the field's number (IEEE 802.11-2020 table 9-1).
enum class FrameType : std::uint8_t { kManagement = 0, kControl = 1, kData = 2, kExtension = 3 };

/// Subtypes of management frames (the same table).
enum ManagementSubtype : std::uint8_t {
  kAssociationRequest = 0,
  kAssociationResponse = 1,
  kReassociationRequest = 2,
  kReassociationResponse = 3,
  kProbeRequest = 4,
  kProbeResponse = 5,
  kBeacon = 8,
  kDisassociation = 10,
  kAuthentication = 11,
  kDeauthentication = 12,
};

/// Subtypes of control frames.
enum ControlSubtype : std::uint8_t { kControlWrapper = 7, kPsPoll = 10, kClearToSend = 12, kAcknowledgement = 13 };

/// Bits of the subtypes of data frames.
inline constexpr std::uint8_t kDataWithoutPayload = 4;
inline constexpr std::uint8_t kDataWithQos = 8;

/// Codes of WirelessNodeEntry::encryption. CCMP, GCMP and their like have no code.
enum WirelessEncryption : std::uint8_t {
  kEncryptionNone = 0,
  kEncryptionWep = 1,
  kEncryptionCkip = 2,
  kEncryptionTkip = 3
};

/// Codes of WirelessNodeEntry::authentication.
enum WirelessAuthentication : std::uint8_t {
  kAuthenticationNone = 0,
  kAuthenticationEap = 1,
  kAuthenticationLeap = 2,
  kAuthenticationPeap = 3,
  kAuthenticationEapTls = 4,
};

/// What the body of a management frame tells of a network.
struct NetworkFacts {
  bool has_capabilities = false;  ///< the next three are set
  bool is_infrastructure = false;
  bool is_ad_hoc = false;
  bool privacy = false;
  bool has_name = false;  ///< there is a name element; a hidden name is empty or all zeros
  bool has_security = false;
  bool plain_rates = false;  ///< has rates of 802.11b
  bool ofdm_rates = false;   ///< has others
  std::uint8_t name_length = 0;
  std::array<std::uint8_t, 32> name{};
  std::uint8_t channel = 0;  ///< 0 for none
  std::uint8_t encryption = kEncryptionNone;
  std::uint8_t authentication = kAuthenticationNone;
  std::uint16_t status = 0;  ///< of a response to an association: 0 for success

  bool shows_name() const;
};

/// What a frame of 802.11 is.
struct WirelessFacts {
  bool is_readable = false;  ///< the fields below are set; false for a damaged or cut frame
  RadioFacts radio;
  FrameType type = FrameType::kManagement;
  std::uint8_t subtype = 0;
  bool to_ds = false;
  bool from_ds = false;
  bool is_retry = false;
  bool is_protected = false;
  bool has_order = false;  ///< strictly ordered, or with an HT control field
  bool icv_error = false;  ///< protected, but too short to hold what protection adds
  bool has_key = false;    ///< the next two are set
  std::uint8_t key = 0;
  std::uint8_t encryption = kEncryptionNone;  ///< by the form of the frame
  Delivery delivery = Delivery::kUnicast;     ///< of the receiver
  /// Who sent and who was to receive the frame on the air; an empty record for one that the frame does not name.
  AddressRecord transmitter;
  AddressRecord receiver;
  AddressRecord network;  ///< the BSSID
  NetworkFacts announced;
};

/// Whom a physical address stands for.
Delivery DeliveryToPhysical(const AddressRecord& physical);

}  // namespace orvo
