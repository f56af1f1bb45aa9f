#include "capture/names/trust_file.h"

#include <array>
#include <charconv>
#include <string_view>

#include "capture/decode/packet_facts.h"
#include "capture/names/text_lines.h"

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

bool ReadPhysicalAddress(std::string_view word, AddressRecord* record) {
  constexpr std::size_t kBytes = 6;
  constexpr std::size_t kStep = 3;
  if (word.size() != kBytes * kStep - 1) return false;
  std::array<std::uint8_t, kBytes> bytes{};
  for (std::size_t i = 0; i < kBytes; ++i) {
    const char* digits = word.data() + i * kStep;
    const auto [end, error] = std::from_chars(digits, digits + 2, bytes[i], 16);
    if (error != std::errc() || end != digits + 2) return false;
    if (i + 1 < kBytes && digits[2] != ':' && digits[2] != '-') return false;
  }
  SetAddress<kBytes>(record, kAddressPhysical, bytes.data());
  return true;
}

bool ReadLine(std::string_view line, TrustedAddress* trusted) {
  if (!ReadPhysicalAddress(NextWord(&line), &trusted->address)) return false;
  const std::string_view word = NextWord(&line);
  trusted->trust = word == "trusted" ? Trust::kTrusted : Trust::kKnown;
  return (word == "trusted" || word == "known") && NextWord(&line).empty();
}

}  // namespace

Status ReadTrustFile(const std::string& path, std::vector<TrustedAddress>* addresses, std::string* bad_line) {
  bool is_good = true;
  const Status status = ForEachLine(path, [&](std::string_view line) {
    const std::string_view text = line.substr(0, line.find('#'));
    TrustedAddress trusted;
    if (!is_good || text.find_first_not_of(kBlanks) == std::string_view::npos) return;
    is_good = ReadLine(text, &trusted);
    if (is_good) {
      addresses->push_back(trusted);
    } else {
      *bad_line = line;
    }
  });
  return status == S_OK && !is_good ? E_INVALIDARG : status;
}

}  // namespace orvo
