// The per-packet information header (PPI): version, flags, length and link type of the packet, then fields of a type
// and a length. Numbers are little-endian.

#include <array>

#include "capture/decode/little_endian.h"
#include "capture/decode/protocol_registry.h"
#include "capture/decode/radio_rates.h"

namespace orvo {
namespace {

constexpr std::size_t kHeaderLength = 8;
constexpr std::size_t kFieldHeader = 4;
constexpr std::uint8_t kAligned = 1;  // fields are filled up to multiples of 4 bytes
constexpr std::uint32_t kLinkWireless = 105;

bool IsLevel(std::uint8_t byte) {
  constexpr std::uint8_t kUnknown = 0x80;
  return byte != 0 && byte != kUnknown;
}

/// 802.11-Common: timer (8), flags, rate, frequency, channel flags (2 each), hopping (2), signal, noise.
void ReadCommon(Bytes field, RadioFacts& radio) {
  constexpr std::uint16_t kHasFcs = 1;
  constexpr std::uint16_t kBadFcs = 4;
  constexpr std::uint16_t kCck = 0x20;
  constexpr std::uint16_t kOfdm = 0x40;
  constexpr std::uint16_t kBoth = 0x400;
  constexpr std::uint16_t kHighestRate = 216;
  const std::uint16_t flags = ReadLe16(field, 8);
  radio.has_fcs = (flags & kHasFcs) != 0;
  radio.bad_fcs = (flags & kBadFcs) != 0;
  radio.SetFrequency(ReadLe16(field, 12));
  const std::uint16_t channel = ReadLe16(field, 14);
  if ((channel & (kCck | kBoth)) != 0) radio.modes |= kRadioCck;
  if ((channel & (kOfdm | kBoth)) != 0) radio.modes |= kRadioOfdm;
  if (ReadLe16(field, 10) <= kHighestRate) radio.SetPlainRate(ReadLe16(field, 10));
  if (IsLevel(field[18])) radio.signal = LevelFromDbm(static_cast<std::int8_t>(field[18]));
  if (IsLevel(field[19])) radio.noise = LevelFromDbm(static_cast<std::int8_t>(field[19]));
}

/// 802.11n MAC and PHY: flags (4), aggregate (4), delimiters, index, streams, ...
void ReadHt(Bytes field, RadioFacts& radio) {
  constexpr std::uint32_t kWide = 2;
  constexpr std::uint32_t kShortGuard = 4;
  constexpr std::uint8_t kUnknown = 0xFF;
  const std::uint32_t flags = ReadLe32(field, 0);
  const bool wide = (flags & kWide) != 0;
  if (field[9] == kUnknown) return;
  radio.modes |= kRadioHt;
  if (wide) radio.modes |= kRadioWide;
  if (std::uint32_t rate = HtRate(field[9], wide, (flags & kShortGuard) != 0)) radio.rate = rate;
}

struct Field {
  std::uint16_t type;
  std::uint16_t length;
  void (*read)(Bytes field, RadioFacts& radio);
};
constexpr Field kFields[] = {{2, 20, ReadCommon}, {4, 48, ReadHt}};

/// False when a field does not fit.
bool ReadFields(Bytes fields, bool aligned, RadioFacts& radio) {
  while (!fields.empty()) {
    if (fields.size() < kFieldHeader) return false;
    const std::uint16_t type = ReadLe16(fields, 0);
    std::size_t length = ReadLe16(fields, 2);
    fields = fields.subspan(kFieldHeader);
    if (length > fields.size()) return false;
    for (const Field& known : kFields) {
      if (known.type == type && length >= known.length) known.read(fields, radio);
    }
    if (aligned) length = (length + 3) / 4 * 4;
    fields = Behind(fields, length);
  }
  return true;
}

Payload DecodePpi(Bytes bytes, PacketFacts& facts) {
  if (bytes.size() < kHeaderLength || ReadLe16(bytes, 2) > bytes.size()) {
    facts.MarkShort();
    return {};
  }
  const std::size_t length = ReadLe16(bytes, 2);
  if (bytes[0] != 0 || length < kHeaderLength) {
    facts.malformed = true;
    return {};
  }
  const std::uint32_t link = ReadLe32(bytes, 4);
  if (link == kLinkWireless) {
    Bytes fields = bytes.subspan(kHeaderLength, length - kHeaderLength);
    if (!ReadFields(fields, (bytes[1] & kAligned) != 0, facts.BeginWireless().radio)) facts.malformed = true;
  }
  return {{Layer::kLink, link}, bytes.subspan(length)};
}

constexpr std::array kKeys{LayerKey{Layer::kLink, 192}};
constexpr std::array kProtocols{Protocol{"PPI", kKeys, DecodePpi, false}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo
