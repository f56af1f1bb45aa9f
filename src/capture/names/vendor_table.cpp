#include "capture/names/vendor_table.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <span>
#include <utility>

#include "capture/names/text_lines.h"

namespace orvo {
namespace {

constexpr std::array kFiles{"oui.csv", "mam.csv", "oui36.csv", "iab.csv"};
constexpr std::array<unsigned, 3> kAssignmentBits{36, 28, 24};  // the longest one that is known counts
constexpr std::size_t kMostVendors = 1'000'000;
constexpr std::size_t kLongestWord = 20;

/// Names that no interface was ever sold under: assignments kept private, and blocks given out in smaller ones.
constexpr std::array<std::string_view, 2> kNobody{"Private", "IEEE Registration Authority"};
/// Where the legal form begins, in lower case.
constexpr std::array<std::string_view, 24> kLegalForms{
    "inc", "incorporated", "corp", "corporation", "co", "company", "ltd", "limited", "llc", "llp", "plc", "gmbh",
    "ag",  "kg",           "srl",  "spa",         "bv", "nv",      "ab",  "as",      "oy",  "oyj", "pty", "pte"};

bool IsWordCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-';
}
char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
char Upper(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool IsLegalForm(std::string_view word) {
  std::string lower(word);
  std::ranges::transform(lower, lower.begin(), Lower);
  return std::ranges::find(kLegalForms, lower) != kLegalForms.end();
}

/// Takes the first field off a line of comma-separated values (RFC 4180), as it stands there.
std::string_view NextField(std::string_view* line) {
  bool quoted = false;
  std::size_t end = 0;
  for (; end < line->size() && (quoted || (*line)[end] != ','); ++end) quoted ^= (*line)[end] == '"';
  const std::string_view field = line->substr(0, end);
  line->remove_prefix(std::min(end + 1, line->size()));
  return field;
}

/// What a field means: without the quotes around it, and with one for each two within.
std::string Unquoted(std::string_view field) {
  std::string text;
  bool quoted = false;
  for (std::size_t at = 0; at < field.size(); ++at) {
    const bool quote = field[at] == '"';
    const bool doubled = quote && quoted && at + 1 < field.size() && field[at + 1] == '"';
    if (doubled) ++at;
    if (quote && !doubled) quoted = !quoted;
    if (!quote || doubled) text.push_back(field[at]);
  }
  return text;
}

constexpr std::uint64_t Key(std::uint64_t assignment, unsigned bits) {
  return assignment << 8 | bits;
}

}  // namespace

std::string VendorWord(std::string_view organization) {
  if (std::ranges::find(kNobody, organization) != kNobody.end()) return {};
  std::string vendor;
  while (!organization.empty()) {
    const auto length =
        static_cast<std::size_t>(std::ranges::find_if_not(organization, IsWordCharacter) - organization.begin());
    std::string word(organization.substr(0, length));
    organization.remove_prefix(std::min(length + 1, organization.size()));
    if (word.empty()) continue;
    if (!vendor.empty() && (IsLegalForm(word) || vendor.size() + word.size() > kLongestWord)) break;
    word.front() = Upper(word.front());
    vendor += word.substr(0, kLongestWord);
  }
  return vendor;
}

void VendorTable::Load() const {
  for (const char* file : kFiles) {
    ForEachLine(folder_ + "/" + file, [&](std::string_view line) {
      NextField(&line);  // the registry
      const std::string assignment = Unquoted(NextField(&line));
      const auto bits = static_cast<unsigned>(assignment.size() * 4);
      std::uint64_t value = 0;
      const auto [end, error] = std::from_chars(assignment.data(), assignment.data() + assignment.size(), value, 16);
      if (error != std::errc() || end != assignment.data() + assignment.size()) return;
      if (std::ranges::find(kAssignmentBits, bits) == kAssignmentBits.end() || vendors_.size() == kMostVendors) return;
      const std::string_view organization = NextField(&line);
      vendors_.push_back({Key(value, bits), names_.size(), organization.size()});
      names_.append(organization);
    });
  }
  std::ranges::stable_sort(vendors_, {}, &Vendor::key);
}

/// The first that names somebody of those that are listed under a key; empty for none.
std::string VendorTable::Find(std::uint64_t key) const {
  for (const Vendor& vendor : std::ranges::equal_range(vendors_, key, {}, &Vendor::key)) {
    std::string word = VendorWord(Unquoted(std::string_view(names_).substr(vendor.name, vendor.length)));
    if (!word.empty()) return word;
  }
  return {};
}

bool VendorTable::Append(const AddressRecord& address, std::u16string* text) const {
  constexpr unsigned kGroup = 1;
  constexpr unsigned kLocal = 2;
  if (address.type != kAddressPhysical || address.length != 6) return false;
  if ((address.bytes[0] & (kGroup | kLocal)) != 0) return false;
  std::call_once(loaded_, [this] { Load(); });
  std::uint64_t number = 0;
  for (std::uint8_t byte : std::span(address.bytes).first(6)) number = number << 8 | byte;
  for (unsigned bits : kAssignmentBits) {
    const std::string vendor = Find(Key(number >> (48 - bits), bits));
    if (vendor.empty()) continue;
    text->append(vendor.begin(), vendor.end());
    for (std::size_t i = 3; i < 6; ++i) {
      static constexpr char16_t kDigits[] = u"0123456789abcdef";
      text->push_back(i == 3 ? u'_' : u':');
      text->push_back(kDigits[address.bytes[i] >> 4]);
      text->push_back(kDigits[address.bytes[i] & 15]);
    }
    return true;
  }
  return false;
}

}  // namespace orvo
