#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/export.h"
#include "platform/status.h"

namespace orvo {

/// A 128-bit identifier of a class, an interface or a statistic.
struct Guid {
  std::uint32_t data1 = 0;
  std::uint16_t data2 = 0;
  std::uint16_t data3 = 0;
  std::array<std::uint8_t, 8> data4{};

  auto operator<=>(const Guid&) const = default;
};

struct GuidHash {
  std::size_t operator()(const Guid& guid) const noexcept {
    std::uint64_t high = (std::uint64_t{guid.data1} << 32) | (std::uint64_t{guid.data2} << 16) | guid.data3;
    std::uint64_t low = 0;
    for (std::uint8_t byte : guid.data4) low = (low << 8) | byte;
    return static_cast<std::size_t>(high ^ (low * 0x9E3779B97F4A7C15ULL));
  }
};

/// "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}" in either letter case; CO_E_CLASSSTRING for anything else.
ORVO_PLATFORM_API Status ParseGuid(std::u16string_view text, Guid* guid);

/// The registry text form, upper case, with braces.
ORVO_PLATFORM_API std::u16string FormatGuid(const Guid& guid);

/// "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx"_guid, checked by the compiler.
consteval Guid operator""_guid(const char* text, std::size_t length) {
  auto digit = [](char c) -> unsigned {
    if (c >= '0' && c <= '9') return static_cast<unsigned>(c - '0');
    if (c >= 'a' && c <= 'f') return static_cast<unsigned>(c - 'a' + 10);
    if (c >= 'A' && c <= 'F') return static_cast<unsigned>(c - 'A' + 10);
    throw "not a hexadecimal digit";
  };
  if (length != 36) throw "a GUID has 36 characters";
  std::array<std::uint8_t, 16> bytes{};
  std::size_t at = 0;
  for (std::size_t i = 0; i < length;) {
    if (i == 8 || i == 13 || i == 18 || i == 23) {
      if (text[i++] != '-') throw "a GUID has hyphens after 8, 12, 16 and 20 digits";
      continue;
    }
    bytes[at++] = static_cast<std::uint8_t>(digit(text[i]) * 16 + digit(text[i + 1]));
    i += 2;
  }
  Guid guid;
  guid.data1 =
      (std::uint32_t{bytes[0]} << 24) | (std::uint32_t{bytes[1]} << 16) | (std::uint32_t{bytes[2]} << 8) | bytes[3];
  guid.data2 = static_cast<std::uint16_t>((bytes[4] << 8) | bytes[5]);
  guid.data3 = static_cast<std::uint16_t>((bytes[6] << 8) | bytes[7]);
  for (std::size_t i = 0; i < 8; ++i) guid.data4[i] = bytes[8 + i];
  return guid;
}

}  // namespace orvo
