#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace orvo {

/// Room for any network name, its hexadecimal form included.
inline constexpr std::size_t kPrintableBytesCapacity = 256;

/// The bytes as characters when all of them are printable ASCII, else "0x" and two upper-case digits a byte.
/// `capacity` is the room for the text with a closing zero; below twice the bytes plus 3 the result is false and the
/// text empty. The result replaces `out`.
bool PrintableBytes(std::span<const std::uint8_t> bytes, std::size_t capacity, std::u16string* out);

}  // namespace orvo
