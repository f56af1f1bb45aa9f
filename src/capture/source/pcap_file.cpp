#include "capture/source/pcap_file.h"

#include <utility>

#include "capture/source/file_source.h"
#include "capture/source/link_type.h"
#include "platform/clock.h"

namespace orvo {
namespace {

constexpr std::size_t kFileHeader = 24;
constexpr std::size_t kRecordHeader = 16;
/// The upper bits of the link type tell about check sequences at the end of frames, which are counted as part of them.
constexpr std::uint32_t kLinkTypeBits = 0x03FF'FFFF;

struct Variant {
  std::uint32_t magic;
  std::uint32_t nanoseconds_per_unit;  // 0: records have other fields
};

constexpr Variant kVariants[] = {
    {0xA1B2'C3D4, 1000}, {0xA1B2'3C4D, 1}, {0xA1B2'CD34, 0}, {0xA1B2'34CD, 0}, {0xA1E2'CB12, 0},
};

const Variant* FindVariant(const std::uint8_t* magic, bool* swapped) {
  std::uint32_t value = 0;
  std::memcpy(&value, magic, sizeof value);
  for (const Variant& variant : kVariants) {
    *swapped = value == __builtin_bswap32(variant.magic);
    if (*swapped || value == variant.magic) return &variant;
  }
  return nullptr;
}

/// Early writers stored the two lengths of a record the other way round, and of one version either way.
enum class LengthOrder : std::uint8_t { kCapturedFirst, kOriginalFirst, kSmallerIsCaptured };

class PcapFile final : public FileSource {
 public:
  PcapFile(std::string_view path, ByteWindow window) : FileSource(path, std::move(window)) {}

  /// Reads the file's header; gives why the file cannot be read, or nothing.
  std::string Begin() {
    const std::uint8_t* header = window_.Look(kFileHeader);
    if (!header) return window_.problem().empty() ? "its header is cut off" : window_.problem();
    const Variant* variant = FindVariant(header, &swapped_);
    if (!variant) return "it begins like none";
    if (variant->nanoseconds_per_unit == 0) return "its records are of a modified form";
    nanoseconds_per_unit_ = variant->nanoseconds_per_unit;
    const unsigned major = Load16(header + 4), minor = Load16(header + 6);
    if (major != 2 || minor > 4) {
      return "its version is " + std::to_string(major) + "." + std::to_string(minor) + " instead of 2.4";
    }
    order_ = minor < 3    ? LengthOrder::kOriginalFirst
             : minor == 3 ? LengthOrder::kSmallerIsCaptured
                          : LengthOrder::kCapturedFirst;
    link_type_ = LinkTypeFromFile(Load32(header + 20) & kLinkTypeBits);
    decodable_ = IsDecodable(link_type_);
    window_.Take(kFileHeader);
    return {};
  }

  bool Next(Packet* packet) override {
    if (ended_) return false;
    const std::uint8_t* header = window_.Look(kRecordHeader);
    if (!header) return EndOfStream();
    std::uint32_t captured = Load32(header + 8), original = Load32(header + 12);
    if (order_ != LengthOrder::kCapturedFirst && (order_ == LengthOrder::kOriginalFirst || captured > original))
        [[unlikely]] {
      std::swap(captured, original);
    }
    if (captured > kLongestFrame) [[unlikely]] {
      return End("the next one claims " + std::to_string(captured) + " captured bytes");
    }
    const std::uint8_t* record = window_.Look(kRecordHeader + captured);
    if (!record) return CutOff();
    SetTime(TimeOf(Load32(record), Load32(record + 4)), &clock_, packet);
    packet->bytes = {record + kRecordHeader, captured};
    packet->link_type = link_type_;
    packet->interface_number = 0;
    window_.Take(kRecordHeader + captured);
    Deliver(packet, original);
    if (!decodable_) [[unlikely]]
      notes_.AddUnknownLink(link_type_);
    return true;
  }

  std::size_t NextBatch(std::span<Packet> room) override {
    std::size_t count = 0;
    while (count < room.size() && (count == 0 || RecordAtHand()) && Next(&room[count])) ++count;
    return count;
  }

  std::uint64_t dropped() const override { return 0; }

 private:
  /// Whether the next record lies in the window, so that reading it leaves the bytes before it where they are.
  bool RecordAtHand() {
    if (window_.left() < kRecordHeader || order_ != LengthOrder::kCapturedFirst) return false;
    return window_.left() - kRecordHeader >= Load32(window_.Look(kRecordHeader) + 8);
  }

  /// Seconds are unsigned and last until 2106. Fractions are signed; a negative one is a lie, and taken for none.
  std::uint64_t TimeOf(std::uint32_t seconds, std::uint32_t fraction) const {
    if (fraction > 0x7FFF'FFFF) [[unlikely]]
      fraction = 0;
    return kUnixEpoch + seconds * std::uint64_t{1'000'000'000} + fraction * std::uint64_t{nanoseconds_per_unit_};
  }

  std::uint32_t link_type_ = 0;
  PacketClock clock_;
  std::uint32_t nanoseconds_per_unit_ = 0;
  LengthOrder order_ = LengthOrder::kCapturedFirst;
  bool decodable_ = false;
};

}  // namespace

bool IsPcap(const std::uint8_t* magic) {
  bool swapped = false;
  return FindVariant(magic, &swapped) != nullptr;
}

std::unique_ptr<PacketSource> OpenPcap(std::string_view path, ByteWindow window, SourceError* error) {
  auto source = std::make_unique<PcapFile>(path, std::move(window));
  const std::string why = source->Begin();
  if (why.empty()) return source;
  *error = Refusal(E_FAIL, path,
                   "is not a capture file that can be read (" + why + "); give a file in pcap or pcapng format");
  return nullptr;
}

}  // namespace orvo
