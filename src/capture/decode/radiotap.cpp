// The radiotap header in front of wireless frames (radiotap.org: header, present bitmaps, and the fields named below).
// Numbers are little-endian; every field stands at a multiple of its alignment from the header's begin.

#include <array>

#include "capture/decode/little_endian.h"
#include "capture/decode/protocol_registry.h"
#include "capture/decode/radio_rates.h"

namespace orvo {
namespace {

constexpr std::size_t kFixedLength = 8;
constexpr std::size_t kPresentAt = 4;

// Bits of a present bitmap that are no fields.
constexpr unsigned kTlvs = 28;
constexpr unsigned kRadiotapNext = 29;
constexpr unsigned kVendorNext = 30;
constexpr unsigned kMoreWords = 31;

constexpr bool HasBit(std::uint32_t word, unsigned bit) {
  return ((word >> bit) & 1U) != 0;
}

// "Flags"
constexpr std::uint8_t kFcsAtEnd = 0x10;
constexpr std::uint8_t kPadding = 0x20;
constexpr std::uint8_t kBadFcs = 0x40;

/// "Channel" and "XChannel" share the meaning of their bits.
struct ChannelFlag {
  std::uint32_t flag;
  std::uint16_t modes;
};
constexpr ChannelFlag kChannelFlags[] = {
    {0x0010, kRadioTurbo},
    {0x0020, kRadioCck},
    {0x0040, kRadioOfdm},
    {0x0400, kRadioCck | kRadioOfdm},
    {0x2000, kRadioStaticTurbo},
    {0x4000, kRadioHalfWidth},
    {0x8000, kRadioQuarterWidth},
    {0x10000, kRadioHt},
    {0x20000, kRadioHt | kRadioWide | kRadioWideAbove},
    {0x40000, kRadioHt | kRadioWide | kRadioWideBelow},
};

void SetModes(RadioFacts& radio, std::uint32_t flags) {
  for (const ChannelFlag& one : kChannelFlags) {
    if ((flags & one.flag) != 0) radio.modes |= one.modes;
  }
}

void ReadFlags(Bytes field, RadioFacts& radio) {
  radio.has_fcs = (field[0] & kFcsAtEnd) != 0;
  radio.is_padded = (field[0] & kPadding) != 0;
  radio.bad_fcs = (field[0] & kBadFcs) != 0;
}

void ReadRate(Bytes field, RadioFacts& radio) {
  radio.SetPlainRate(field[0]);
}

void ReadChannel(Bytes field, RadioFacts& radio) {
  if (radio.frequency == 0) radio.SetFrequency(ReadLe16(field, 0));
  SetModes(radio, ReadLe16(field, 2));
}

void ReadXChannel(Bytes field, RadioFacts& radio) {
  SetModes(radio, ReadLe32(field, 0));
  if (radio.frequency == 0) radio.SetFrequency(ReadLe16(field, 4));
}

// Later values are those of single antennas.
void ReadSignal(Bytes field, RadioFacts& radio) {
  if (radio.signal.dbm == kNoDbm) radio.signal = LevelFromDbm(static_cast<std::int8_t>(field[0]));
}
void ReadNoise(Bytes field, RadioFacts& radio) {
  if (radio.noise.dbm == kNoDbm) radio.noise = LevelFromDbm(static_cast<std::int8_t>(field[0]));
}
void ReadRelativeSignal(Bytes field, RadioFacts& radio) {
  if (!radio.signal.known()) radio.signal = LevelFromPercent(field[0]);
}
void ReadRelativeNoise(Bytes field, RadioFacts& radio) {
  if (!radio.noise.known()) radio.noise = LevelFromPercent(field[0]);
}

/// "MCS": what is known, flags, index.
void ReadMcs(Bytes field, RadioFacts& radio) {
  constexpr std::uint8_t kKnowsWidth = 1;
  constexpr std::uint8_t kKnowsIndex = 2;
  constexpr std::uint8_t kShortGuard = 4;
  const bool wide = (field[0] & kKnowsWidth) != 0 && (field[1] & 3) == 1;
  radio.modes |= kRadioHt;
  if (wide) radio.modes |= kRadioWide;
  if ((field[0] & kKnowsIndex) != 0) radio.rate = HtRate(field[2], wide, (field[1] & kShortGuard) != 0);
}

/// The width in MHz for the bandwidth numbers of "VHT".
std::uint32_t VhtWidth(std::uint8_t number) {
  constexpr std::array<std::uint8_t, 26> kWidths{20, 40, 20, 20, 80, 40, 40, 20, 20, 20, 20, 160, 80,
                                                 80, 40, 40, 40, 40, 20, 20, 20, 20, 20, 20, 20,  20};
  return number < kWidths.size() ? kWidths[number] : 0;
}

/// "VHT": what is known (2), flags, bandwidth, index and streams of up to four users (the first counts), coding, ...
void ReadVht(Bytes field, RadioFacts& radio) {
  constexpr std::uint16_t kKnowsWidth = 0x40;
  constexpr std::uint8_t kShortGuard = 4;
  const std::uint32_t width = (ReadLe16(field, 0) & kKnowsWidth) != 0 ? VhtWidth(field[3]) : 20;
  radio.modes |= kRadioHt;
  if (width > 20) radio.modes |= kRadioWide;
  radio.rate = VhtRate(field[4] >> 4, field[4] & 0x0FU, width, (field[2] & kShortGuard) != 0);
}

/// "HE": six numbers of 16 bits.
void ReadHe(Bytes field, RadioFacts& radio) {
  constexpr std::uint16_t kKnowsIndex = 0x20;  // of the first
  constexpr std::uint16_t kKnowsWidth = 0x4000;
  constexpr std::array<std::uint16_t, 11> kTones{234, 468, 980, 1960, 24, 48, 102, 234, 468, 980, 1960};
  constexpr std::array<std::uint16_t, 4> kGuards{800, 1600, 3200, 0};
  const std::uint16_t known = ReadLe16(field, 0);
  const std::uint16_t coding = ReadLe16(field, 4);
  const std::uint16_t width = ReadLe16(field, 8);
  const std::size_t unit = (known & kKnowsWidth) != 0 ? width & 0x0FU : 0;
  const std::uint16_t guard = kGuards[(width >> 4) & 3U];
  const std::uint32_t streams = ReadLe16(field, 10) & 0x0FU;
  radio.modes |= kRadioHt;
  if (unit >= 1 && unit <= 3) radio.modes |= kRadioWide;
  if ((known & kKnowsIndex) == 0 || unit >= kTones.size() || guard == 0) return;
  radio.rate = HeRate((coding >> 8) & 0x0FU, streams, kTones[unit], guard, HasBit(coding, 12));
}

struct Field {
  std::uint8_t alignment;
  std::uint8_t length;
  void (*read)(Bytes field, RadioFacts& radio) = nullptr;
};

/// By bit; those behind are unknown, so that nothing behind them can be found.
constexpr std::array kFields{
    Field{8, 8},                      // TSFT
    Field{1, 1, ReadFlags},           // Flags
    Field{1, 1, ReadRate},            // Rate
    Field{2, 4, ReadChannel},         // Channel
    Field{1, 2},                      // FHSS
    Field{1, 1, ReadSignal},          // Antenna signal, dBm
    Field{1, 1, ReadNoise},           // Antenna noise, dBm
    Field{2, 2},                      // Lock quality
    Field{2, 2},                      // TX attenuation
    Field{2, 2},                      // dB TX attenuation
    Field{1, 1},                      // dBm TX power
    Field{1, 1},                      // Antenna
    Field{1, 1, ReadRelativeSignal},  // dB antenna signal
    Field{1, 1, ReadRelativeNoise},   // dB antenna noise
    Field{2, 2},                      // RX flags
    Field{2, 2},                      // TX flags
    Field{1, 1},                      // RTS retries
    Field{1, 1},                      // Data retries
    Field{4, 8, ReadXChannel},        // XChannel
    Field{1, 3, ReadMcs},             // MCS
    Field{4, 8},                      // A-MPDU status
    Field{2, 12, ReadVht},            // VHT
    Field{8, 12},                     // Timestamp
    Field{2, 12, ReadHe},             // HE
    Field{2, 12},                     // HE-MU
    Field{2, 6},                      // HE-MU other user
    Field{1, 1},                      // 0-length PSDU
    Field{2, 4},                      // L-SIG
};
constexpr unsigned kNoFrame = 26;  // 0-length PSDU: what follows the header is nothing that was sent

/// Walks the fields of a header, which is as long as it claims to be.
class Walker {
 public:
  Walker(Bytes header, RadioFacts& radio) : header_(header), radio_(radio) {}

  /// False when a field, or a bitmap, lies beyond the header.
  bool Walk() {
    std::size_t words = 1;
    while (HasBit(Word(words - 1), kMoreWords)) {
      if (kPresentAt + 4 * (words + 1) > header_.size()) return false;
      ++words;
    }
    at_ = kPresentAt + 4 * words;
    for (std::size_t i = 0; i < words && !is_over_; ++i) {
      if (!WalkWord(Word(i))) return false;
    }
    return true;
  }

  bool has_frame() const { return has_frame_; }

 private:
  std::uint32_t Word(std::size_t index) const { return ReadLe32(header_, kPresentAt + 4 * index); }

  bool WalkWord(std::uint32_t word) {
    for (unsigned bit = 0; bit <= kTlvs && is_radiotap_; ++bit) {
      if (!HasBit(word, bit)) continue;
      // What is behind a field of unknown length cannot be found.
      is_over_ = first_bit_ + bit >= kFields.size();
      if (is_over_) return true;
      if (!Take(kFields[bit])) return false;
      if (bit == kNoFrame) has_frame_ = false;
    }
    first_bit_ += 32;
    if (HasBit(word, kRadiotapNext)) {
      is_radiotap_ = true;
      first_bit_ = 0;
    } else if (HasBit(word, kVendorNext)) {
      is_radiotap_ = false;
      return SkipVendor();
    }
    return true;
  }

  bool Take(const Field& field) {
    Align(field.alignment);
    if (at_ + field.length > header_.size()) return false;
    if (field.read) field.read(header_.subspan(at_, field.length), radio_);
    at_ += field.length;
    return true;
  }

  /// "Vendor Namespace": whose it is (4 bytes), and how much to skip.
  bool SkipVendor() {
    constexpr std::size_t kLength = 6;
    Align(2);
    if (at_ + kLength > header_.size()) return false;
    at_ += kLength + ReadLe16(header_, at_ + 4);
    return at_ <= header_.size();
  }

  void Align(std::size_t alignment) { at_ = (at_ + alignment - 1) / alignment * alignment; }

  Bytes header_;
  RadioFacts& radio_;
  std::size_t at_ = 0;
  unsigned first_bit_ = 0;  // of the word in work, within its namespace
  bool is_radiotap_ = true;
  bool is_over_ = false;
  bool has_frame_ = true;
};

Payload DecodeRadiotap(Bytes bytes, PacketFacts& facts) {
  RadioFacts& radio = facts.BeginWireless().radio;
  if (bytes.size() < kFixedLength || ReadLe16(bytes, 2) > bytes.size()) {
    facts.MarkShort();
    return {};
  }
  const std::size_t length = ReadLe16(bytes, 2);
  if (bytes[0] != 0 || length < kFixedLength) {
    facts.malformed = true;
    return {};
  }
  Walker walker(bytes.first(length), radio);
  if (!walker.Walk()) facts.malformed = true;
  if (!walker.has_frame()) return {};
  return {{Layer::kWireless, 0}, bytes.subspan(length)};
}

constexpr std::array kKeys{LayerKey{Layer::kLink, 127}};
constexpr std::array kProtocols{Protocol{"Radiotap", kKeys, DecodeRadiotap, false}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo
