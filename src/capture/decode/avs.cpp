// The AVS capture header in front of wireless frames: 32-bit numbers, high byte first, which begin with a magic number
// of 20 bits, a version, and the header's length.

#include "capture/decode/avs.h"

#include <array>

namespace orvo {
namespace {

constexpr std::uint32_t kMagic = 0x80211000;
constexpr std::uint32_t kMagicMask = 0xFFFFF000;
constexpr std::size_t kLeastLength = 64;

constexpr std::size_t kLengthAt = 4;
constexpr std::size_t kPhyAt = 24;
constexpr std::size_t kChannelAt = 28;
constexpr std::size_t kRateAt = 32;
constexpr std::size_t kUnitAt = 44;
constexpr std::size_t kSignalAt = 48;
constexpr std::size_t kNoiseAt = 52;

/// The field holds a channel's number, MHz, or kHz.
void SetChannel(RadioFacts& radio, std::uint32_t value) {
  constexpr std::uint32_t kNumbers = 256;
  constexpr std::uint32_t kMegahertz = 10'000;
  if (value < kNumbers) {
    radio.SetChannel(value);
  } else {
    radio.SetFrequency(value < kMegahertz ? value : value / 1000);
  }
}

/// The field counts in 100 kbit/s, or in bit/s.
void SetRate(RadioFacts& radio, std::uint32_t value) {
  constexpr std::uint32_t kHundredKilobits = 10'000;
  radio.SetPlainRate(value < kHundredKilobits ? value / 5 : value / 500'000);
}

RadioLevel Level(std::uint32_t unit, std::uint32_t value) {
  constexpr std::uint32_t kNormalised = 1;
  constexpr std::uint32_t kDbm = 2;
  constexpr std::int32_t kFloor = -200;
  const auto level = static_cast<std::int32_t>(value);
  if (unit == kNormalised && level >= 0) return LevelFromPercent(level);
  if (unit == kDbm && level < 0 && level > kFloor) return LevelFromDbm(level);
  return {};
}

void SetModes(RadioFacts& radio, std::uint32_t phy) {
  constexpr std::array<std::uint16_t, 9> kModes{
      0, 0, kRadioCck, 0, kRadioCck, kRadioCck, kRadioCck | kRadioOfdm, kRadioCck | kRadioOfdm, kRadioOfdm};
  if (phy < kModes.size()) radio.modes |= kModes[phy];
}

constexpr std::array kKeys{LayerKey{Layer::kLink, 163}};
constexpr std::array kProtocols{Protocol{"AVS", kKeys, DecodeAvs, false}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace

bool IsAvs(Bytes bytes) {
  return bytes.size() >= 4 && (Read32(bytes, 0) & kMagicMask) == kMagic;
}

Payload DecodeAvs(Bytes bytes, PacketFacts& facts) {
  RadioFacts& radio = facts.BeginWireless().radio;
  if (bytes.size() < kLeastLength || Read32(bytes, kLengthAt) > bytes.size()) {
    facts.MarkShort();
    return {};
  }
  const std::size_t length = Read32(bytes, kLengthAt);
  if (!IsAvs(bytes) || length < kLeastLength) {
    facts.malformed = true;
    return {};
  }
  SetChannel(radio, Read32(bytes, kChannelAt));
  SetRate(radio, Read32(bytes, kRateAt));
  SetModes(radio, Read32(bytes, kPhyAt));
  radio.signal = Level(Read32(bytes, kUnitAt), Read32(bytes, kSignalAt));
  radio.noise = Level(Read32(bytes, kUnitAt), Read32(bytes, kNoiseAt));
  return {{Layer::kWireless, 0}, bytes.subspan(length)};
}

}  // namespace orvo
