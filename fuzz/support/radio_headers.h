#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>

#include "capture/source/packet.h"

/// Frames of a radiotap capture as other radios would hand them on, so that seeds reach every link of the air.
namespace orvo::fuzz {

inline constexpr std::uint32_t kRadiotapLink = 127;

struct RadioHeader {
  std::uint32_t link_type;
  std::string bytes;
};

inline constexpr std::size_t kOtherRadios = 4;

/// No header, Prism, AVS and PPI, all of which say that the radio has measured nothing.
inline const std::array<RadioHeader, kOtherRadios>& RadioHeaders() {
  auto join = [](std::initializer_list<std::uint8_t> begin, std::size_t zeros) {
    return std::string(begin.begin(), begin.end()) + std::string(zeros, '\0');
  };
  static const std::array<RadioHeader, kOtherRadios> headers{{
      {105, {}},
      {119, join({0x44, 0, 0, 0, 144, 0, 0, 0}, 136)},
      {163, join({0x80, 0x21, 0x10, 0x01, 0, 0, 0, 64}, 56)},
      {192, join({0, 0, 32, 0, 105, 0, 0, 0, 2, 0, 20, 0}, 20)},
  }};
  return headers;
}

/// What follows the radiotap header; nothing for a packet of another link, or with a damaged header.
inline std::optional<Bytes> FrameBehindRadiotap(const Packet& packet) {
  constexpr std::size_t kLengthAt = 2;
  if (packet.link_type != kRadiotapLink || packet.bytes.size() < kLengthAt + 2) return {};
  const auto length = static_cast<std::size_t>(packet.bytes[kLengthAt] | packet.bytes[kLengthAt + 1] << 8);
  if (length > packet.bytes.size()) return {};
  return packet.bytes.subspan(length);
}

}  // namespace orvo::fuzz
