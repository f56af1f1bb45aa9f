#include "capture/analysis/expert/first_bytes.h"

#include <algorithm>
#include <string_view>

#include "capture/decode/packet_facts.h"

namespace orvo {
namespace {

bool IsDigit(std::uint8_t byte) {
  return byte >= '0' && byte <= '9';
}

enum TlsType : std::uint8_t { kChangeCipher = 20, kAlert = 21, kHandshake = 22, kApplicationData = 23 };
constexpr std::size_t kTlsHeader = 5;
constexpr unsigned kLongestTlsRecord = 16384 + 2048;
constexpr std::uint8_t kClientHello = 1;
constexpr std::uint8_t kFatal = 2;

}  // namespace

unsigned HttpStatus(Bytes payload) {
  static constexpr std::string_view kBeginning = "HTTP/1.";
  constexpr std::size_t kStatus = 9;  // behind "HTTP/1.1 "
  if (payload.size() < kStatus + 3 || !std::equal(kBeginning.begin(), kBeginning.end(), payload.begin())) return 0;
  Bytes digits = payload.subspan(kStatus, 3);
  if (payload[kStatus - 1] != ' ' || !std::ranges::all_of(digits, IsDigit)) return 0;
  return static_cast<unsigned>((digits[0] - '0') * 100 + (digits[1] - '0') * 10 + (digits[2] - '0'));
}

DnsHeader ReadDnsHeader(Bytes message) {
  constexpr std::size_t kLength = 12;
  constexpr unsigned kAnswerFlag = 0x8000;
  constexpr unsigned kOpcodeMask = 0x7800;
  DnsHeader header;
  if (message.size() < kLength) return header;
  unsigned flags = Read16(message, 2);
  if ((flags & kOpcodeMask) != 0) return header;
  header.id = Read16(message, 0);
  header.rcode = flags & 0xF;
  header.is_answer = (flags & kAnswerFlag) != 0;
  header.is_query = !header.is_answer;
  return header;
}

TlsRecord ReadTlsRecord(Bytes payload) {
  TlsRecord record;
  if (payload.size() < kTlsHeader || payload[1] != 3) return record;
  unsigned length = Read16(payload, 3);
  if (length == 0 || length > kLongestTlsRecord) return record;
  switch (payload[0]) {
    case kChangeCipher:
    case kApplicationData: record.after_handshake = true; break;
    case kHandshake: record.client_hello = payload.size() > kTlsHeader && payload[kTlsHeader] == kClientHello; break;
    case kAlert:
      if (length != 2 || payload.size() < kTlsHeader + 2) break;
      record.fatal_alert = payload[kTlsHeader] == kFatal;
      record.alert = payload[kTlsHeader + 1];
      break;
    default: break;
  }
  return record;
}

}  // namespace orvo
