#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "platform/unknown.h"

namespace orvo {

/// The kinds of address that an address table holds.
enum AddressType : std::uint8_t {
  kAddressNone = 0,
  kAddressProtocol = 9,    ///< a protocol entry: two bytes, the 16-bit protocol number, low byte first
  kAddressPhysical = 10,   ///< six bytes
  kAddressTokenRing = 11,  ///< six bytes
  kAddressAppleTalk = 20,  ///< network (two bytes, high first), node (one byte)
  kAddressIp = 21,         ///< four bytes, network order
  kAddressDecnet = 22,     ///< two bytes, high first: area in the upper 6 bits, node in the lower 10
  kAddressIpv6 = 24,       ///< sixteen bytes, network order
  kAddressIpx = 25,        ///< network (four bytes), node (six bytes)
  kAddressWan = 43,        ///< the link's own number, up to four bytes, high first
};

/// One address: `valid` is 0 for an empty record, which has no text.
struct AddressRecord {
  std::uint8_t valid = 0;
  std::uint8_t type = kAddressNone;
  std::uint8_t length = 0;  ///< bytes in use
  std::uint8_t reserved = 0;
  std::array<std::uint8_t, 20> bytes{};

  bool operator==(const AddressRecord&) const = default;
};

/// The number of a protocol entry.
constexpr std::uint16_t ProtocolNumber(const AddressRecord& record) {
  return static_cast<std::uint16_t>(record.bytes[0] | (record.bytes[1] << 8));
}

/// Stands for "no address" wherever an address index is expected.
inline constexpr std::uint32_t kNoAddress = 0xFFFFFFFF;

/// Every address and protocol that the statistics name, each under an index that never changes while the capture
/// lasts: records of a snapshot resolve through the live table. Indices run from 0 in order of first appearance.
class IAddressTable : public IUnknown {
 public:
  static constexpr Guid kIid = "F49A4381-92F0-4793-99E4-4015E1D41FAD"_guid;

  virtual Status GetCount(std::uint32_t* count) = 0;
  /// The record of an index, valid while this object is held; S_FALSE and null for an index that the table lacks.
  virtual Status GetRecord(std::uint32_t index, const AddressRecord** record) = 0;
  /// Walks the addresses of one type in the table's order; S_FALSE and kNoAddress at the end.
  virtual Status FirstOfType(std::uint8_t type, std::uint32_t* index) = 0;
  virtual Status NextOfType(std::uint32_t index, std::uint32_t* next) = 0;

 protected:
  ~IAddressTable() = default;
};

/// Words addresses. Created by class identifier; knows the names that the engine has learnt.
/// Texts hold no control characters, whatever was captured.
class IAddressNameService : public IUnknown {
 public:
  static constexpr Guid kIid = "966D9588-540E-45A6-A67F-B6BE8E34815A"_guid;

  /// Appends what stands before an address of that type ("IPX "); nothing for kinds that speak for themselves.
  virtual Status AppendTypeLabel(std::uint8_t type, std::u16string* text) = 0;
  /// Appends the address's name where one is known, else the address in its usual notation (RFC 5952 for IPv6).
  virtual Status AppendAddressText(const AddressRecord& record, std::u16string* text) = 0;

 protected:
  ~IAddressNameService() = default;
};

inline constexpr Guid kAddressNameServiceClass = "AA4501D6-6394-4DD2-8D5C-74B19C5386BE"_guid;

}  // namespace orvo
