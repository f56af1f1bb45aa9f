#include "capture/source/pcapng_file.h"

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

#include "capture/source/file_source.h"
#include "capture/source/link_type.h"
#include "capture/source/time_scale.h"
#include "platform/clock.h"

namespace orvo {
namespace {

enum BlockType : std::uint32_t {
  kInterfaceDescription = 1,
  kObsoletePacket = 2,
  kSimplePacket = 3,
  kInterfaceStatistics = 5,
  kEnhancedPacket = 6,
  kSectionHeader = 0x0A0D'0D0A,  // the same in both byte orders
};

enum OptionCode : std::uint16_t {
  kEndOfOptions = 0,
  kPacketDropCount = 4,     // of an Enhanced Packet Block
  kInterfaceDropCount = 5,  // of an Interface Statistics Block, as the next
  kSystemDropCount = 7,
  kInterfaceTimeResolution = 9,  // of an Interface Description Block, as the next
  kInterfaceTimeOffset = 14,
};

constexpr std::uint32_t kByteOrderMagic = 0x1A2B'3C4D;
constexpr std::uint32_t kShortestBlock = 12;
constexpr std::uint32_t kLongestBlock = 16 * 1024 * 1024;
constexpr std::size_t kBlockHeader = 8;
constexpr std::size_t kBlockTrailer = 4;
constexpr std::size_t kMaxInterfaces = 65'536;

std::uint64_t AddUpTo64Bits(std::uint64_t a, std::uint64_t b) {
  return a > std::numeric_limits<std::uint64_t>::max() - b ? std::numeric_limits<std::uint64_t>::max() : a + b;
}

std::size_t Padded(std::size_t size) {
  return (size + 3) & ~std::size_t{3};
}

struct Interface {
  TimeScale times;
  std::uint32_t link_type = 0;
  std::uint32_t number = 0;
  std::uint32_t snap_length = 0;  // 0: none
  bool decodable = false;
  PacketClock clock;
  std::uint64_t dropped_by_packets = 0;     // the sum of what single packets tell
  std::uint64_t dropped_by_statistics = 0;  // the latest total that the interface tells

  /// Both count the same packets.
  std::uint64_t dropped() const { return std::max(dropped_by_packets, dropped_by_statistics); }
};

class PcapngFile final : public FileSource {
 public:
  PcapngFile(std::string_view path, ByteWindow window) : FileSource(path, std::move(window)) {}

  /// Reads the first header; gives why the file cannot be read, or nothing.
  std::string Begin() {
    Block block;
    return ReadBlock(&block) && BeginSection(block.body) ? std::string() : damage_;
  }

  bool Next(Packet* packet) override {
    while (!ended_) {
      if (TakeBlock(packet)) return true;
    }
    return false;
  }

  std::size_t NextBatch(std::span<Packet> room) override {
    std::size_t count = 0;
    while (!ended_ && count < room.size() && (count == 0 || BlockAtHand())) count += TakeBlock(&room[count]);
    return count;
  }

  std::uint64_t dropped() const override {
    std::uint64_t sum = dropped_before_;
    for (const Interface& one : interfaces_) sum = AddUpTo64Bits(sum, one.dropped());
    return sum;
  }

 private:
  struct Block {
    std::uint32_t type = 0;
    Bytes body;  // between the two lengths; empty for a block that is passed over
  };

  /// Takes the next block; true when it gave a packet.
  bool TakeBlock(Packet* packet) {
    if (!window_.Look(kShortestBlock)) return EndOfStream();
    Block block;
    if (!ReadBlock(&block)) return End(damage_);
    switch (block.type) {
      [[likely]] case kEnhancedPacket : return ReadEnhancedPacket(block.body, packet);
      case kSimplePacket: return ReadSimplePacket(block.body, packet);
      case kObsoletePacket: return ReadObsoletePacket(block.body, packet);
      default: return ReadOtherBlock(block) ? false : End(damage_);
    }
  }

  /// Whether the next block lies in the window, so that reading it leaves the bytes before it where they are. A section
  /// header may change the order of the bytes that its own length has.
  bool BlockAtHand() {
    if (window_.left() < kShortestBlock) return false;
    const std::uint8_t* start = window_.Look(kShortestBlock);
    return Load32(start) != kSectionHeader && window_.left() >= Load32(start + 4);
  }

  bool Damaged(std::string why) {
    damage_ = std::move(why);
    return false;
  }
  bool DamagedByEnd() {
    return Damaged(window_.problem().empty() ? "the file ends in the middle of a block" : window_.problem());
  }

  /// Reads a block whole and moves behind it; its body stays in place until the next is read. False, and the cause in
  /// damage_, where the blocks' chain breaks.
  bool ReadBlock(Block* block) {
    const std::uint8_t* start = window_.Look(kShortestBlock);
    if (!start) return DamagedByEnd();
    block->type = Load32(start);
    if (block->type == kSectionHeader && !TakeByteOrder(start + kBlockHeader)) {
      return Damaged("a section's byte order cannot be told");
    }
    const std::uint32_t length = Load32(start + 4);
    if (length < kShortestBlock || length % 4 != 0) [[unlikely]] {
      return Damaged("a block claims a length of " + std::to_string(length) + " bytes");
    }
    if (length > kLongestBlock) [[unlikely]]
      return PassOver(block->type, length);
    start = window_.Look(length);
    if (!start) return DamagedByEnd();
    if (Load32(start + length - kBlockTrailer) != length) [[unlikely]] {
      return Damaged("the two lengths of a block differ");
    }
    block->body = {start + kBlockHeader, length - kBlockHeader - kBlockTrailer};
    window_.Take(length);
    return true;
  }

  /// Secrets, names and other people's blocks may be long; what is used here never is.
  bool PassOver(std::uint32_t type, std::uint32_t length) {
    if (type == kSectionHeader || type <= kSimplePacket || type == kInterfaceStatistics || type == kEnhancedPacket) {
      return Damaged("a block claims a length of " + std::to_string(length) + " bytes");
    }
    return window_.Skip(length) || DamagedByEnd();
  }

  bool TakeByteOrder(const std::uint8_t* magic) {
    swapped_ = false;
    const std::uint32_t value = Load32(magic);
    swapped_ = value == __builtin_bswap32(kByteOrderMagic);
    return swapped_ || value == kByteOrderMagic;
  }

  /// Blocks that hold no packet.
  bool ReadOtherBlock(const Block& block) {
    switch (block.type) {
      case kSectionHeader: return BeginSection(block.body);
      case kInterfaceDescription: return AddInterface(block.body);
      case kInterfaceStatistics: ReadStatistics(block.body); return true;
      default: return true;
    }
  }

  bool BeginSection(Bytes body) {
    if (body.size() < 16) return Damaged("a section header is too short");
    const unsigned major = Load16(&body[4]);
    if (major != 1) return Damaged("a section is of version " + std::to_string(major) + " instead of 1");
    dropped_before_ = dropped();
    interfaces_before_ = std::min(interfaces_before_ + interfaces_.size(), kMaxInterfaces);
    interfaces_.clear();
    return true;
  }

  bool AddInterface(Bytes body) {
    if (body.size() < 8) return Damaged("an interface description is too short");
    if (interfaces_.size() == kMaxInterfaces) return Damaged("a section describes more than 65536 interfaces");
    Interface added;
    added.link_type = LinkTypeFromFile(Load16(body.data()));
    added.decodable = IsDecodable(added.link_type);
    added.snap_length = Load32(&body[4]);
    added.number = static_cast<std::uint32_t>(std::min(interfaces_before_ + interfaces_.size(), kMaxInterfaces - 1));
    std::uint8_t resolution = 6;
    std::int64_t offset = 0;
    ForEachOption(body.subspan(8), [&](std::uint16_t code, Bytes value) {
      if (code == kInterfaceTimeResolution && value.size() == 1) resolution = value[0];
      if (code == kInterfaceTimeOffset && value.size() == 8) offset = static_cast<std::int64_t>(Load64(value.data()));
    });
    added.times = TimeScale(resolution, offset);
    interfaces_.push_back(added);
    return true;
  }

  void ReadStatistics(Bytes body) {
    if (body.size() < 12) return;
    const std::uint32_t identifier = Load32(body.data());
    if (identifier >= interfaces_.size()) return;
    std::uint64_t total = 0;
    ForEachOption(body.subspan(12), [&](std::uint16_t code, Bytes value) {
      if ((code == kInterfaceDropCount || code == kSystemDropCount) && value.size() == 8) {
        total = AddUpTo64Bits(total, Load64(value.data()));
      }
    });
    Interface& told = interfaces_[identifier];
    told.dropped_by_statistics = std::max(told.dropped_by_statistics, total);
  }

  // The three kinds of packet blocks; false for a packet that cannot be taken.

  bool ReadEnhancedPacket(Bytes body, Packet* packet) {
    constexpr std::size_t kFixed = 20;
    if (body.size() < kFixed) return LeaveOut("is too short");
    Interface* from = FindInterface(Load32(body.data()));
    if (!from) return LeaveOut("names an interface that was not described");
    const std::uint32_t captured = Load32(&body[12]);
    const Bytes rest = body.subspan(kFixed);
    if (captured > rest.size()) return LeaveOut("is longer than its block");
    if (const std::size_t end = Padded(captured); end < rest.size()) [[unlikely]] {
      ForEachOption(rest.subspan(end), [&](std::uint16_t code, Bytes value) {
        if (code == kPacketDropCount && value.size() == 8) AddDropped(from, Load64(value.data()));
      });
    }
    ReadTime(&body[4], from, packet);
    return Finish(*from, rest.first(captured), Load32(&body[16]), packet);
  }

  bool ReadObsoletePacket(Bytes body, Packet* packet) {
    constexpr std::size_t kFixed = 20;
    constexpr std::uint16_t kDropsUnknown = 0xFFFF;
    if (body.size() < kFixed) return LeaveOut("is too short");
    Interface* from = FindInterface(Load16(body.data()));
    if (!from) return LeaveOut("names an interface that was not described");
    const std::uint32_t captured = Load32(&body[12]);
    if (captured > body.size() - kFixed) return LeaveOut("is longer than its block");
    const std::uint16_t dropped = Load16(&body[2]);
    if (dropped != kDropsUnknown) AddDropped(from, dropped);
    ReadTime(&body[4], from, packet);
    return Finish(*from, body.subspan(kFixed, captured), Load32(&body[16]), packet);
  }

  bool ReadSimplePacket(Bytes body, Packet* packet) {
    if (body.size() < 4) return LeaveOut("is too short");
    Interface* from = FindInterface(0);
    if (!from) return LeaveOut("names an interface that was not described");
    const std::uint32_t original = Load32(body.data());
    // The captured length is told nowhere: it is what the interface was made to capture of the original.
    std::size_t captured = original;
    if (from->snap_length != 0) captured = std::min<std::size_t>(captured, from->snap_length);
    packet->time = last_time_;
    return Finish(*from, body.subspan(4, std::min(captured, body.size() - 4)), original, packet);
  }

  Interface* FindInterface(std::uint32_t identifier) {
    return identifier < interfaces_.size() ? &interfaces_[identifier] : nullptr;
  }

  void ReadTime(const std::uint8_t* stamp, Interface* from, Packet* packet) {
    SetTime(from->times.TimeOf((std::uint64_t{Load32(stamp)} << 32) | Load32(stamp + 4)), &from->clock, packet);
    last_time_ = packet->time;
  }

  bool Finish(const Interface& from, Bytes bytes, std::uint32_t original, Packet* packet) {
    packet->bytes = bytes;
    packet->link_type = from.link_type;
    packet->interface_number = from.number;
    Deliver(packet, original);
    if (!from.decodable) [[unlikely]]
      notes_.AddUnknownLink(from.link_type);
    return true;
  }

  static void AddDropped(Interface* from, std::uint64_t count) {
    from->dropped_by_packets = AddUpTo64Bits(from->dropped_by_packets, count);
  }

  bool LeaveOut(const char* why) {
    if (!left_out_)
      notes_.Add("the block behind packet " + std::to_string(packets_) + " " + why + "; such packets are left out");
    left_out_ = true;
    return false;
  }

  /// Calls use(code, value) for each option that lies whole within the bytes.
  template <class Use>
  void ForEachOption(Bytes options, Use use) const {
    while (options.size() >= 4) {
      const std::uint16_t code = Load16(options.data()), length = Load16(&options[2]);
      options = options.subspan(4);
      if (code == kEndOfOptions || length > options.size()) return;
      use(code, options.first(length));
      options = options.subspan(std::min(Padded(length), options.size()));
    }
  }

  std::vector<Interface> interfaces_;  // of the present section
  std::size_t interfaces_before_ = 0;  // in earlier sections
  std::uint64_t dropped_before_ = 0;
  std::uint64_t last_time_ = kUnixEpoch;
  std::string damage_;
  bool left_out_ = false;
};

}  // namespace

bool IsPcapng(const std::uint8_t* magic) {
  std::uint32_t value = 0;
  std::memcpy(&value, magic, sizeof value);
  return value == kSectionHeader;
}

std::unique_ptr<PacketSource> OpenPcapng(std::string_view path, ByteWindow window, SourceError* error) {
  auto source = std::make_unique<PcapngFile>(path, std::move(window));
  const std::string why = source->Begin();
  if (why.empty()) return source;
  *error = Refusal(E_FAIL, path, "is not a capture file that can be read (" + why + "); record it again");
  return nullptr;
}

}  // namespace orvo
