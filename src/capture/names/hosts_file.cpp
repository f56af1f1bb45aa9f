#include "capture/names/hosts_file.h"

#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <unordered_set>

#include "capture/decode/packet_facts.h"
#include "capture/names/text_lines.h"
#include "capture/tables/keyed_hash.h"
#include "platform/utf.h"

namespace orvo {
namespace {

constexpr std::string_view kBlanks = " \t";

/// Takes the first word off a line.
std::string_view NextWord(std::string_view* line) {
  line->remove_prefix(std::min(line->find_first_not_of(kBlanks), line->size()));
  const std::string_view word = line->substr(0, line->find_first_of(kBlanks));
  line->remove_prefix(word.size());
  return word;
}

/// False for what is no address, or the unspecified one.
bool ReadAddress(std::string_view word, AddressRecord* record) {
  const std::string text(word.substr(0, word.find('%')));  // the zone of a link-local address
  std::array<std::uint8_t, 16> bytes{};
  if (inet_pton(AF_INET, text.c_str(), bytes.data()) == 1) {
    SetAddress<4>(record, kAddressIp, bytes.data());
  } else if (inet_pton(AF_INET6, text.c_str(), bytes.data()) == 1) {
    SetAddress<16>(record, kAddressIpv6, bytes.data());
  } else {
    return false;
  }
  return std::ranges::any_of(bytes, [](std::uint8_t byte) { return byte != 0; });
}

std::u16string Utf16(std::string_view utf8) {
  std::u16string text;
  for (std::size_t at = 0; at < utf8.size();) {
    const CodePoint next = NextCodePoint(utf8, at);
    AppendCodePoint(next.value, &text);
    at += next.length;
  }
  return text;
}

}  // namespace

Status ReadHostsFile(const std::string& path, std::vector<KnownName>* names) {
  std::unordered_set<AddressRecord, KeyedHash> seen;
  return ForEachLine(path, [&](std::string_view line) {
    line = line.substr(0, line.find('#'));
    KnownName known;
    if (!ReadAddress(NextWord(&line), &known.address)) return;
    const std::string_view name = NextWord(&line);
    if (name.empty() || !seen.insert(known.address).second) return;
    known.name = Utf16(name);
    names->push_back(std::move(known));
  });
}

}  // namespace orvo
