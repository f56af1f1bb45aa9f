#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/error.h"
#include "platform/guid.h"

namespace orvo {

/// Puts a snapshot together: numbers are little-endian.
class SnapshotWriter {
 public:
  template <std::unsigned_integral T>
  void Number(T value) {
    for (std::size_t i = 0; i < sizeof(T); ++i) bytes_.push_back(static_cast<char>(value >> (8 * i)));
  }
  void Identifier(const Guid& guid) {
    Number(guid.data1);
    Number(guid.data2);
    Number(guid.data3);
    for (std::uint8_t byte : guid.data4) Number(byte);
  }
  void Text(std::u16string_view text) {
    Number(static_cast<std::uint32_t>(text.size()));
    for (char16_t unit : text) Number(static_cast<std::uint16_t>(unit));
  }
  template <class Body>
  void Section(std::uint32_t tag, Body body) {
    Number(tag);
    std::size_t at = bytes_.size();
    Number(std::uint32_t{0});
    body();
    PutAt(at, static_cast<std::uint32_t>(bytes_.size() - at - 4));
  }
  void Raw(std::string_view raw) { bytes_ += raw; }

  template <std::unsigned_integral T>
  void PutAt(std::size_t at, T value) {
    for (std::size_t i = 0; i < sizeof(T); ++i) bytes_[at + i] = static_cast<char>(value >> (8 * i));
  }
  const std::string& bytes() const { return bytes_; }

 private:
  std::string bytes_;
};

/// Takes values from the front of untrusted bytes; raises E_FAIL when there are too few.
class SnapshotReader {
 public:
  explicit SnapshotReader(std::string_view bytes) : bytes_(bytes) {}

  std::string_view Take(std::size_t count) {
    if (count > bytes_.size()) Raise(E_FAIL);
    std::string_view taken = bytes_.substr(0, count);
    bytes_.remove_prefix(count);
    return taken;
  }
  template <std::unsigned_integral T>
  T Number() {
    T value = 0;
    std::string_view taken = Take(sizeof(T));
    for (std::size_t i = sizeof(T); i-- > 0;) {
      value = static_cast<T>((std::uint64_t{value} << 8) | static_cast<unsigned char>(taken[i]));
    }
    return value;
  }
  Guid Identifier() {
    Guid guid;
    guid.data1 = Number<std::uint32_t>();
    guid.data2 = Number<std::uint16_t>();
    guid.data3 = Number<std::uint16_t>();
    for (std::uint8_t& byte : guid.data4) byte = Number<std::uint8_t>();
    return guid;
  }
  /// A number of things of at least `length` bytes each, all of which can be there.
  std::uint32_t Count(std::size_t length) {
    auto count = Number<std::uint32_t>();
    if (count > bytes_.size() / length) Raise(E_FAIL);
    return count;
  }
  std::u16string Text() {
    std::u16string text(Count(2), u'\0');
    for (char16_t& unit : text) unit = Number<std::uint16_t>();
    return text;
  }
  bool AtEnd() const { return bytes_.empty(); }

 private:
  std::string_view bytes_;
};

}  // namespace orvo
