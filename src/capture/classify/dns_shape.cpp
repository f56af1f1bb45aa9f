#include "capture/classify/dns_shape.h"

#include "capture/decode/packet_facts.h"

namespace orvo {
namespace {

constexpr std::size_t kHeaderLength = 12;
constexpr std::size_t kMaxName = 255;
constexpr std::size_t kMaxLabel = 63;
constexpr unsigned kMaxRecords = 256;
constexpr unsigned kReservedFlag = 0x0040;
constexpr unsigned kMaxRcode = 11;  // DSOTYPENI, the last that a header holds

/// Bytes of a name without compression at the beginning; 0 when there is none.
std::size_t NameLength(Bytes bytes) {
  std::size_t at = 0;
  while (at < bytes.size() && at < kMaxName) {
    std::size_t label = bytes[at];
    if (label == 0) return at + 1;
    if (label > kMaxLabel) return 0;
    at += 1 + label;
  }
  return 0;
}

bool IsOpcode(unsigned opcode) {
  return opcode <= 6 && opcode != 3;
}

}  // namespace

bool LooksLikeDns(Bytes payload) {
  if (payload.size() < kHeaderLength) return false;
  unsigned flags = Read16(payload, 2);
  unsigned questions = Read16(payload, 4);
  if (!IsOpcode(flags >> 11 & 0xF) || (flags & 0xF) > kMaxRcode || (flags & kReservedFlag) != 0) return false;
  bool response = (flags & 0x8000) != 0;
  if (questions != 1 || (!response && (flags & 0xF) != 0)) return false;
  for (std::size_t count : {6U, 8U, 10U}) {
    if (Read16(payload, count) > kMaxRecords) return false;
  }
  Bytes question = payload.subspan(kHeaderLength);
  std::size_t name = NameLength(question);
  if (name == 0 || question.size() < name + 4) return false;
  unsigned type = Read16(question, name);
  unsigned network_class = Read16(question, name + 2);
  return type != 0 && (network_class == 1 || network_class == 3 || network_class == 255);
}

}  // namespace orvo
