#include "capture/analysis/rtp_packet.h"

#include "capture/decode/packet_facts.h"

namespace orvo {
namespace {

constexpr std::size_t kFixedLength = 12;
constexpr std::uint8_t kPadding = 0x20;
constexpr std::uint8_t kExtension = 0x10;

}  // namespace

bool ReadRtp(Bytes payload, bool cut_off, RtpHeader* header) {
  if (!MayBeRtp(payload)) return false;
  std::size_t length = kFixedLength + (payload[0] & 0x0FU) * std::size_t{4};
  if ((payload[0] & kExtension) != 0) {
    if (length + 4 > payload.size()) return false;
    length += 4 + Read16(payload, length + 2) * std::size_t{4};
  }
  if (length > payload.size()) return false;
  std::size_t carried = payload.size() - length;
  if ((payload[0] & kPadding) != 0 && !cut_off) {
    std::uint8_t padding = payload.back();
    if (padding == 0 || padding > carried) return false;
    carried -= padding;
  }
  header->marker = (payload[1] & 0x80) != 0;
  header->payload_type = payload[1] & 0x7F;
  header->sequence = Read16(payload, 2);
  header->timestamp = Read32(payload, 4);
  header->ssrc = Read32(payload, 8);
  header->payload_length = static_cast<std::uint16_t>(carried);
  return true;
}

}  // namespace orvo
