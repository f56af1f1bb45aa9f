#pragma once

#include <memory>
#include <string>
#include <vector>

#include "capture/source/capture_file.h"
#include "tests/capture/frames.h"
#include "tests/support/temporary_folder.h"

namespace orvo::test {

/// Puts the bytes of capture files together, in either byte order. What is not named has the value that most files
/// have.
class CaptureBytes {
 public:
  explicit CaptureBytes(bool big_endian = false) : big_(big_endian) {}

  Buffer U16(std::uint16_t value) const { return Number(value, 2); }
  Buffer U32(std::uint32_t value) const { return Number(value, 4); }
  Buffer U64(std::uint64_t value) const { return Number(value, 8); }

  // The classic format.
  Buffer PcapHeader(std::uint32_t magic = 0xA1B2C3D4, std::uint32_t link_type = 1, std::uint16_t minor = 4) const {
    return U32(magic) + U16(2) + U16(minor) + U64(0) + U32(262144) + U32(link_type);
  }
  Buffer PcapRecord(std::uint32_t seconds, std::uint32_t fraction, const Buffer& frame, std::uint32_t captured,
                    std::uint32_t original) const {
    return U32(seconds) + U32(fraction) + U32(captured) + U32(original) + frame;
  }
  Buffer PcapRecord(std::uint32_t seconds, std::uint32_t fraction, const Buffer& frame) const {
    return PcapRecord(seconds, fraction, frame, SizeOf(frame), SizeOf(frame));
  }

  // The blocks of the newer format.
  Buffer Block(std::uint32_t type, const Buffer& body) const {
    const Buffer padded = Padded(body);
    const std::uint32_t length = SizeOf(padded) + 12;
    return U32(type) + U32(length) + padded + U32(length);
  }
  Buffer Section(std::uint16_t major = 1) const {
    return Block(0x0A0D0D0A, U32(0x1A2B3C4D) + U16(major) + U16(0) + Buffer(8, 0xFF));
  }
  Buffer Option(std::uint16_t code, const Buffer& value) const {
    return U16(code) + U16(static_cast<std::uint16_t>(value.size())) + Padded(value);
  }
  Buffer Interface(std::uint16_t link_type = 1, const Buffer& options = {}, std::uint32_t snap_length = 0) const {
    return Block(1, U16(link_type) + U16(0) + U32(snap_length) + options);
  }
  Buffer Enhanced(std::uint32_t interface_number, std::uint64_t stamp, const Buffer& frame, std::uint32_t captured,
                  std::uint32_t original, const Buffer& options = {}) const {
    return Block(6, U32(interface_number) + Stamp(stamp) + U32(captured) + U32(original) + Padded(frame) + options);
  }
  Buffer Enhanced(std::uint32_t interface_number, std::uint64_t stamp, const Buffer& frame,
                  const Buffer& options = {}) const {
    return Enhanced(interface_number, stamp, frame, SizeOf(frame), SizeOf(frame), options);
  }
  Buffer Simple(const Buffer& frame, std::uint32_t original) const { return Block(3, U32(original) + frame); }
  Buffer Obsolete(std::uint16_t interface_number, std::uint16_t drops, std::uint64_t stamp, const Buffer& frame) const {
    return Block(2,
                 U16(interface_number) + U16(drops) + Stamp(stamp) + U32(SizeOf(frame)) + U32(SizeOf(frame)) + frame);
  }
  Buffer Statistics(std::uint32_t interface_number, const Buffer& options) const {
    return Block(5, U32(interface_number) + U64(0) + options);
  }

  static std::uint32_t SizeOf(const Buffer& bytes) { return static_cast<std::uint32_t>(bytes.size()); }

 private:
  static Buffer Padded(Buffer bytes) {
    bytes.resize((bytes.size() + 3) / 4 * 4);
    return bytes;
  }
  Buffer Stamp(std::uint64_t stamp) const {
    return U32(static_cast<std::uint32_t>(stamp >> 32)) + U32(static_cast<std::uint32_t>(stamp));
  }
  Buffer Number(std::uint64_t value, std::size_t size) const {
    Buffer bytes(size);
    for (std::size_t i = 0; i < size; ++i) {
      bytes[big_ ? size - 1 - i : i] = static_cast<std::uint8_t>(value >> (8 * i));
    }
    return bytes;
  }

  bool big_;
};

/// A folder for capture files.
class CaptureFolder : public TemporaryFolder {
 public:
  std::string Write(const Buffer& bytes, const std::string& name = "capture") const {
    // A file of its own each time: some systems wait for the disk where one is overwritten.
    std::filesystem::remove(Path(name));
    return TemporaryFolder::Write(name, {bytes.begin(), bytes.end()});
  }
};

/// A packet with bytes of its own.
struct ReadPacket {
  Packet packet;
  Buffer bytes;
};

/// All that a file gives.
struct ReadCapture {
  explicit ReadCapture(const std::string& path) {
    std::unique_ptr<PacketSource> source = OpenCaptureFile(path, &error);
    if (!source) return;
    opened = true;
    for (Packet packet; source->Next(&packet);) {
      packets.push_back({packet, Buffer(packet.bytes.begin(), packet.bytes.end())});
    }
    Packet after;
    ended = !source->Next(&after);
    warning = source->warning();
    dropped = source->dropped();
    progress = source->progress();
  }

  bool opened = false;
  bool ended = false;  ///< the end stays the end
  SourceError error;
  SourceError warning;
  std::vector<ReadPacket> packets;
  std::uint64_t dropped = 0;
  SourceProgress progress;
};

}  // namespace orvo::test
