#pragma once

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "capture/source/capture_file.h"
#include "capture/source/link_type.h"
#include "capture/source/packet.h"
#include "fuzz/support/radio_headers.h"
#include "fuzz/support/target.h"
#include "platform/clock.h"

/// Packets as inputs: each is a byte that chooses the link type, one for the step of time, one for how many bytes were
/// cut off, two for the length, low first, and the bytes.
namespace orvo::fuzz {

inline constexpr std::uint64_t kFirstTime = kUnixEpoch + 1'700'000'000 * kNanosecondsPerSecond;

/// Every link type that can be decoded, and one that cannot.
inline const std::vector<std::uint32_t>& LinkTypes() {
  static const std::vector<std::uint32_t> types = [] {
    constexpr std::uint32_t kMost = 512;
    constexpr std::uint32_t kUnknown = 147;
    std::vector<std::uint32_t> found;
    for (std::uint32_t type = 0; type < kMost; ++type) {
      if (IsDecodable(type)) found.push_back(type);
    }
    found.push_back(kUnknown);
    return found;
  }();
  return types;
}

/// The next packet, at most 2^`longest_step` nanoseconds before or behind the one that `packet` holds; false when there
/// is none left.
inline bool TakePacket(Input* input, Packet* packet, unsigned longest_step = 63) {
  if (input->empty()) return false;
  packet->link_type = LinkTypes()[TakeByte(input) % LinkTypes().size()];
  const unsigned step = TakeByte(input);
  const std::uint64_t move = std::uint64_t{1} << std::min(step & 0x3FU, longest_step);
  packet->time = (step & 0x80U) != 0 ? packet->time - move : packet->time + move;
  const std::uint32_t cut = TakeByte(input);
  const std::size_t low = TakeByte(input);
  packet->bytes = Take(input, low | std::size_t{TakeByte(input)} << 8);
  packet->original_length = static_cast<std::uint32_t>(packet->bytes.size()) + cut;
  return true;
}

/// Adds a packet to an input.
inline void AppendPacket(std::uint32_t link_type, std::string_view bytes, std::size_t missing, std::string* input) {
  constexpr char kMillisecond = 20;
  constexpr std::size_t kMostMissing = 255;
  *input += static_cast<char>(std::ranges::find(LinkTypes(), link_type) - LinkTypes().begin());
  *input += kMillisecond;
  *input += static_cast<char>(std::min(missing, kMostMissing));
  *input += static_cast<char>(bytes.size() & 0xFF);
  *input += static_cast<char>(bytes.size() >> 8);
  *input += bytes;
}

/// Gives the first packets of every sample, a few at a time, long ones cut off. Those of the air come on every link
/// that has them.
template <class Add>
void MakePacketSeeds(Add add) {
  constexpr std::size_t kPackets = 8;
  constexpr std::size_t kLongest = 400;
  constexpr int kMostSeeds = 24;
  for (const std::string& path : Samples()) {
    SourceError error;
    std::unique_ptr<PacketSource> source = OpenCaptureFile(path, &error);
    Require(source != nullptr, "samples can be read");
    Packet packet;
    bool more = source->Next(&packet);
    for (int number = 0; more && number < kMostSeeds; ++number) {
      std::string seed;
      std::array<std::string, kOtherRadios> on_other_links;
      for (std::size_t i = 0; more && i < kPackets; ++i, more = source->Next(&packet)) {
        const Input bytes = packet.bytes.first(std::min(packet.bytes.size(), kLongest));
        const std::size_t missing = packet.original_length - bytes.size();
        AppendPacket(packet.link_type, AsText(bytes), missing, &seed);
        packet.bytes = bytes;
        const std::optional<Bytes> frame = FrameBehindRadiotap(packet);
        for (std::size_t other = 0; frame && other < kOtherRadios; ++other) {
          const RadioHeader& header = RadioHeaders()[other];
          AppendPacket(header.link_type, header.bytes + std::string(AsText(*frame)), missing, &on_other_links[other]);
        }
      }
      add(seed);
      for (const std::string& other : on_other_links) {
        if (!other.empty()) add(other);
      }
    }
  }
}

}  // namespace orvo::fuzz
