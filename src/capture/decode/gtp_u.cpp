// GTP-U version 1, the user plane of mobile networks (3GPP TS 29.281 section 5): signalling, or a packet of a terminal.

#include <array>

#include "capture/decode/ip_version.h"

namespace orvo {
namespace {

constexpr std::size_t kHeaderLength = 8;
constexpr std::size_t kOptionalLength = 4;  ///< sequence number, N-PDU number, type of the next extension
/// Version, whether it is GTP at all and not its charging protocol, and a spare bit that receivers ignore.
constexpr std::uint8_t kVersionAndKind = 0xF0;
constexpr std::uint8_t kVersion1Gtp = 0x30;
constexpr std::uint8_t kHasOptional = 0x07;
constexpr std::uint8_t kHasExtension = 0x04;
constexpr std::uint8_t kPacketOfTerminal = 255;

/// Extensions give their length in units of four bytes first and the type of the next one last. False when one does
/// not fit.
bool SkipExtensions(std::uint8_t next, Bytes* bytes) {
  while (next != 0) {
    std::size_t length = bytes->empty() ? 0 : (*bytes)[0] * std::size_t{4};
    if (length == 0 || length > bytes->size()) return false;
    next = (*bytes)[length - 1];
    *bytes = bytes->subspan(length);
  }
  return true;
}

Payload DecodeGtpU(Bytes bytes, PacketFacts& facts) {
  if (bytes.size() < kHeaderLength) {
    facts.MarkShort();
    return {};
  }
  std::uint8_t flags = bytes[0];
  if ((flags & kVersionAndKind) != kVersion1Gtp) return {};
  std::uint8_t message = bytes[1];
  std::size_t length = Read16(bytes, 2);
  bytes = bytes.subspan(kHeaderLength);
  if (length > bytes.size() && !facts.is_fragment) facts.MarkShort();
  bytes = Within(bytes, length);
  if ((flags & kHasOptional) != 0) {
    if (bytes.size() < kOptionalLength) {
      facts.MarkShort();
      return {};
    }
    std::uint8_t next = (flags & kHasExtension) != 0 ? bytes[kOptionalLength - 1] : std::uint8_t{0};
    bytes = bytes.subspan(kOptionalLength);
    if (!SkipExtensions(next, &bytes)) {
      facts.MarkShort();
      return {};
    }
  }
  return message == kPacketOfTerminal ? ByIpVersion(bytes) : Payload{};
}

constexpr std::array kKeys{LayerKey{Layer::kUdpTunnel, 2152}, LayerKey{Layer::kUdpPort, 2152}};
constexpr std::array kProtocols{Protocol{"GTP-U", kKeys, DecodeGtpU}};
const ProtocolRegistration kRegistration(kProtocols);

}  // namespace
}  // namespace orvo
