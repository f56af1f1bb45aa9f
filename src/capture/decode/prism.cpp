// The Prism monitor header in front of wireless frames: 32-bit numbers in the byte order of the machine that captured.
// A message code, a length and a device name of 16 bytes are followed by ten items: identifier, status, length, value.

#include <array>
#include <cstdint>

#include "capture/decode/avs.h"
#include "capture/decode/little_endian.h"

namespace orvo {
namespace {

constexpr std::size_t kItemsAt = 24;
constexpr std::size_t kItemLength = 12;
constexpr std::size_t kStatusAt = 4;
constexpr std::size_t kValueAt = 8;
constexpr std::size_t kLength = kItemsAt + 10 * kItemLength;

enum Item : std::uint8_t { kChannel = 2, kRssi = 3, kSignal = 5, kNoise = 6, kRate = 7 };

class Header {
 public:
  explicit Header(Bytes bytes) : bytes_(bytes), is_little_((ReadLe32(bytes, 0) & kCodes) != 0) {}

  bool is_prism() const {
    constexpr std::uint32_t kMonitor = 0x41;
    constexpr std::uint32_t kMonitorOld = 0x44;
    return (Code() == kMonitor || Code() == kMonitorOld) && Number(4) >= kLength;
  }
  std::size_t length() const { return Number(4); }
  /// Items with a status other than 0 have no value.
  bool Has(Item item) const { return (bytes_[At(item) + kStatusAt] | bytes_[At(item) + kStatusAt + 1]) == 0; }
  std::uint32_t Value(Item item) const { return Number(At(item) + kValueAt); }

 private:
  static constexpr std::uint32_t kCodes = 0xFF;  // a code fits into the lowest byte

  static std::size_t At(Item item) { return kItemsAt + item * kItemLength; }
  std::uint32_t Code() const { return Number(0); }
  std::uint32_t Number(std::size_t at) const { return is_little_ ? ReadLe32(bytes_, at) : Read32(bytes_, at); }

  Bytes bytes_;
  bool is_little_;
};

/// Drivers put dBm here, which is negative, or a percentage.
RadioLevel Level(const Header& header, Item item) {
  constexpr std::int32_t kFloor = -200;
  if (!header.Has(item)) return {};
  const auto value = static_cast<std::int32_t>(header.Value(item));
  if (value < 0) return value > kFloor ? LevelFromDbm(value) : RadioLevel{};
  return value > 0 && value <= 100 ? LevelFromPercent(value) : RadioLevel{};
}

Payload DecodePrism(Bytes bytes, PacketFacts& facts) {
  if (IsAvs(bytes)) return DecodeAvs(bytes, facts);
  RadioFacts& radio = facts.BeginWireless().radio;
  if (bytes.size() < kLength) {
    facts.MarkShort();
    return {};
  }
  const Header header(bytes);
  if (!header.is_prism()) {
    facts.malformed = true;
    return {};
  }
  if (header.length() > bytes.size()) {
    facts.MarkShort();
    return {};
  }
  constexpr std::uint32_t kHighestRate = 127;
  if (header.Has(kChannel)) radio.SetChannel(header.Value(kChannel));
  if (header.Has(kRate) && header.Value(kRate) <= kHighestRate) radio.SetPlainRate(header.Value(kRate));
  radio.signal = Level(header, kSignal);
  if (!radio.signal.known()) radio.signal = Level(header, kRssi);
  radio.noise = Level(header, kNoise);
  return {{Layer::kWireless, 0}, bytes.subspan(header.length())};
}

constexpr std::array kKeys{LayerKey{Layer::kLink, 119}};
constexpr std::array kProtocols{Protocol{"Prism", kKeys, DecodePrism, false}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo
