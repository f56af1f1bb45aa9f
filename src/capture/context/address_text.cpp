#include "capture/context/address_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <span>

#include "capture/classify/protocol_tree.h"

namespace orvo {
namespace {

using Octets = std::span<const std::uint8_t>;

void AppendHex(Octets octets, std::u16string* text) {
  static constexpr char16_t kDigits[] = u"0123456789abcdef";
  for (std::uint8_t octet : octets) {
    text->push_back(kDigits[octet >> 4]);
    text->push_back(kDigits[octet & 15]);
  }
}

void AppendNumber(std::uint32_t number, int base, std::u16string* text) {
  std::array<char, 16> digits;  // NOLINT(cppcoreguidelines-pro-type-member-init)
  char* end = std::to_chars(digits.data(), digits.data() + digits.size(), number, base).ptr;
  text->append(digits.data(), end);
}

void AppendPhysical(Octets octets, std::u16string* text) {
  for (std::size_t i = 0; i < octets.size(); ++i) {
    if (i != 0) text->push_back(u':');
    AppendHex(octets.subspan(i, 1), text);
  }
}

void AppendIpv4(Octets octets, std::u16string* text) {
  for (std::size_t i = 0; i < octets.size(); ++i) {
    if (i != 0) text->push_back(u'.');
    AppendNumber(octets[i], 10, text);
  }
}

/// RFC 5952: no leading zeros, the first of the longest runs of two or more zero groups shortened, lower case, and
/// the dotted form behind the prefix of IPv4-mapped addresses.
void AppendIpv6(Octets octets, std::u16string* text) {
  std::array<std::uint16_t, 8> groups{};
  for (std::size_t i = 0; i < groups.size(); ++i) {
    groups[i] = static_cast<std::uint16_t>((octets[2 * i] << 8) | octets[2 * i + 1]);
  }
  bool mapped = groups[5] == 0xFFFF && std::all_of(groups.begin(), groups.begin() + 5, [](auto g) { return g == 0; });
  if (mapped) {
    text->append(u"::ffff:");
    AppendIpv4(octets.subspan(12), text);
    return;
  }
  std::size_t run_start = groups.size();
  std::size_t run_length = 1;
  for (std::size_t i = 0; i < groups.size();) {
    std::size_t end = i;
    while (end < groups.size() && groups[end] == 0) ++end;
    if (end - i > run_length) {
      run_start = i;
      run_length = end - i;
    }
    i = std::max(end, i + 1);
  }
  for (std::size_t i = 0; i < groups.size(); ++i) {
    if (i == run_start) {
      text->append(u"::");
      i += run_length - 1;
      continue;
    }
    if (i != 0 && i != run_start + run_length) text->push_back(u':');
    AppendNumber(groups[i], 16, text);
  }
}

void AppendIpx(Octets octets, std::u16string* text) {
  AppendHex(octets.first(4), text);
  text->push_back(u'.');
  AppendHex(octets.subspan(4), text);
}

void AppendAppleTalk(Octets octets, std::u16string* text) {
  AppendNumber(static_cast<std::uint32_t>((octets[0] << 8) | octets[1]), 10, text);
  text->push_back(u'.');
  AppendNumber(octets[2], 10, text);
}

void AppendDecnet(Octets octets, std::u16string* text) {
  AppendNumber(octets[0] >> 2U, 10, text);
  text->push_back(u'.');
  AppendNumber(static_cast<std::uint32_t>(((octets[0] & 3) << 8) | octets[1]), 10, text);
}

void AppendLinkNumber(Octets octets, std::u16string* text) {
  std::uint32_t number = 0;
  for (std::uint8_t octet : octets) number = (number << 8) | octet;
  AppendNumber(number, 10, text);
}

void AppendProtocol(Octets octets, std::u16string* text) {
  std::string_view name = ProtocolTree::Get().name(static_cast<std::uint16_t>(octets[0] | (octets[1] << 8)));
  text->append(name.begin(), name.end());
}

struct Notation {
  std::uint8_t type;
  std::uint8_t shortest;
  std::uint8_t longest;
  std::u16string_view label;
  void (*append)(Octets octets, std::u16string* text);
};

constexpr std::array kNotations{
    Notation{kAddressIp, 4, 4, u"", AppendIpv4},
    Notation{kAddressPhysical, 6, 6, u"", AppendPhysical},
    Notation{kAddressIpv6, 16, 16, u"", AppendIpv6},
    Notation{kAddressProtocol, 2, 2, u"", AppendProtocol},
    Notation{kAddressIpx, 10, 10, u"IPX ", AppendIpx},
    Notation{kAddressAppleTalk, 3, 3, u"AppleTalk ", AppendAppleTalk},
    Notation{kAddressDecnet, 2, 2, u"DECnet ", AppendDecnet},
    Notation{kAddressTokenRing, 6, 6, u"", AppendPhysical},
    Notation{kAddressWan, 1, 4, u"WAN ", AppendLinkNumber},
};

const Notation* FindNotation(std::uint8_t type) {
  const auto* found =
      std::find_if(kNotations.begin(), kNotations.end(), [&](const Notation& n) { return n.type == type; });
  return found != kNotations.end() ? found : nullptr;
}

}  // namespace

void AppendAddress(const AddressRecord& record, std::u16string* text) {
  if (record.valid == 0) return;
  Octets octets(record.bytes.data(), std::min<std::size_t>(record.length, record.bytes.size()));
  const Notation* notation = FindNotation(record.type);
  bool fits = notation && octets.size() >= notation->shortest && octets.size() <= notation->longest;
  if (fits) {
    notation->append(octets, text);
  } else {
    AppendHex(octets, text);
  }
}

std::u16string_view AddressLabel(std::uint8_t type) {
  const Notation* notation = FindNotation(type);
  return notation ? notation->label : std::u16string_view();
}

}  // namespace orvo
