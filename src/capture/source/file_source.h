#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

#include "capture/source/byte_window.h"
#include "capture/source/packet_source.h"
#include "capture/source/source_notes.h"

namespace orvo {

/// What the packets of one interface were timed by.
struct PacketClock {
  std::uint64_t last_time = 0;  ///< of the packet before, 0 for none
  bool leapt = false;           ///< which claimed another
};

/// What the readers of both capture formats share: the bytes, their order, and what is said about damage.
class FileSource : public PacketSource {
 public:
  SourceProgress progress() const override { return {window_.position(), window_.size()}; }
  const SourceError& warning() const override { return notes_.warning(); }

 protected:
  /// The longest frame that is taken for possible; every link that is captured from carries less.
  static constexpr std::uint32_t kLongestFrame = 262'144;

  FileSource(std::string_view path, ByteWindow window) : window_(std::move(window)), notes_(path) {}

  // Numbers of the file, which need not be aligned.
  std::uint16_t Load16(const std::uint8_t* at) const {
    const auto value = Load<std::uint16_t>(at);
    return swapped_ ? __builtin_bswap16(value) : value;
  }
  std::uint32_t Load32(const std::uint8_t* at) const {
    const auto value = Load<std::uint32_t>(at);
    return swapped_ ? __builtin_bswap32(value) : value;
  }
  std::uint64_t Load64(const std::uint8_t* at) const {
    const auto value = Load<std::uint64_t>(at);
    return swapped_ ? __builtin_bswap64(value) : value;
  }

  /// Gives the next packet its time. One on its own, far from the one before it of its interface, has a damaged time,
  /// which would stretch everything that is counted over time; it gets the time of the one before. A second one in a
  /// row means that the clock was set, and is believed.
  void SetTime(std::uint64_t claimed, PacketClock* clock, Packet* packet) {
    constexpr std::uint64_t kFar = std::uint64_t{365} * 86'400 * 1'000'000'000;
    const std::uint64_t last = clock->last_time;
    clock->leapt = (claimed > last ? claimed - last : last - claimed) > kFar && last != 0 && !clock->leapt;
    if (clock->leapt) [[unlikely]]
      NoteTime(claimed, last);
    packet->time = clock->last_time = clock->leapt ? last : claimed;
  }

  /// Finishes a packet whose bytes and time are set: counts it, and judges the length that it claims to have had.
  void Deliver(Packet* packet, std::uint32_t claimed_length) {
    ++packets_;
    const auto captured = static_cast<std::uint32_t>(packet->bytes.size());
    packet->original_length = claimed_length < captured ? captured : claimed_length;
    if (claimed_length > kLongestFrame) [[unlikely]] {
      packet->original_length = captured;
      NoteLength(claimed_length);
    }
  }

  // All of these end the source and give false, for Next to return.

  /// No header could be read: a sound end when nothing is left and nothing went wrong.
  bool EndOfStream();
  /// The stream ended within a packet.
  bool CutOff();
  bool End(std::string_view why);

  ByteWindow window_;
  SourceNotes notes_;
  std::uint64_t packets_ = 0;
  bool swapped_ = false;  // the file's numbers are not in this machine's order
  bool ended_ = false;

 private:
  template <class T>
  static T Load(const std::uint8_t* at) {
    T value;
    std::memcpy(&value, at, sizeof value);
    return value;
  }
  void NoteLength(std::uint32_t claimed_length);
  void NoteTime(std::uint64_t claimed, std::uint64_t last);

  bool length_noted_ = false;
  bool time_noted_ = false;
};

}  // namespace orvo
