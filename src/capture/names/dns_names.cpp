#include "capture/names/dns_names.h"

#include <arpa/nameser.h>
#include <netinet/in.h>

#include <algorithm>
#include <charconv>
#include <string>
#include <string_view>
#include <utility>

#include "platform/utf.h"

namespace orvo {
namespace {

// A message that asks for more work than this is none that a name server sends.
constexpr int kMostRecords = 256;
constexpr std::size_t kMostAliases = 32;
/// Multicast DNS marks records that replace all others with the top bit of the class (RFC 6762 section 10.2).
constexpr unsigned kClassMask = 0x7FFF;

bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}
char Lower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
bool IsNameCharacter(char32_t c) {
  // The wide forms of ASCII act as ASCII does in some spreadsheets, and no registered name has them (RFC 5892).
  constexpr char32_t kFirstWide = 0xFF01, kLastWide = 0xFF5E;
  if (c >= kFirstWide && c <= kLastWide) return false;
  if (c >= 0x80) return !IsInvisible(c);
  return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-' || c == '_' || c == '.';
}

/// The bytes of a name that the resolver library printed (RFC 1035 section 5.1: "\046" and "\." stand for one byte
/// each), ASCII letters in lower case.
std::string NameBytes(std::string_view printed) {
  std::string bytes;
  for (std::size_t at = 0; at < printed.size(); ++at) {
    char c = printed[at];
    if (c == '\\' && at + 1 < printed.size()) {
      unsigned code = 0;
      const char* digits = printed.data() + at + 1;
      if (at + 3 < printed.size() && std::from_chars(digits, digits + 3, code).ptr == digits + 3) {
        c = static_cast<char>(code);
        at += 3;
      } else {
        c = printed[++at];
      }
    }
    bytes.push_back(Lower(c));
  }
  return bytes;
}

/// A last label of digits is no name's but an address's.
bool ReadsLikeAddress(std::string_view name) {
  const std::string_view last = name.substr(name.find_last_of('.') + 1);
  return std::ranges::all_of(last, IsDigit);
}

/// A name as reports show it; empty for what is none.
std::u16string HostName(std::string_view bytes) {
  std::u16string name;
  if (bytes.ends_with('.')) bytes.remove_suffix(1);
  if (ReadsLikeAddress(bytes)) return name;
  for (std::size_t at = 0; at < bytes.size();) {
    const CodePoint next = NextCodePoint(bytes, at);
    AppendCodePoint(next.valid && IsNameCharacter(next.value) ? next.value : U'?', &name);
    at += next.length;
  }
  // No host's name begins with one (RFC 952), and a cell that does is a formula.
  if (name.starts_with(u'-')) name.front() = u'?';
  return name;
}

bool IsHost(const AddressRecord& address) {
  const auto& b = address.bytes;
  if (address.type == kAddressIp) return b[0] != 0 && b[0] != 127 && b[0] < 224;
  if (address.type != kAddressIpv6) return false;
  const bool mostly_zero = std::all_of(b.begin(), b.begin() + 15, [](std::uint8_t byte) { return byte == 0; });
  return b[0] != 0xFF && !(mostly_zero && b[15] <= 1);
}

/// Takes the first label off a name.
std::string_view NextLabel(std::string_view* name) {
  const std::string_view label = name->substr(0, name->find('.'));
  name->remove_prefix(std::min(label.size() + 1, name->size()));
  return label;
}

/// The address that a name of the reverse trees stands for, its numbers last to first: "4.3.2.1.in-addr.arpa" (RFC 1035
/// section 3.5), or 32 hexadecimal digits and "ip6.arpa" (RFC 3596 section 2.5).
bool ReadReverseName(std::string_view name, AddressRecord* address) {
  std::array<std::uint8_t, 16> bytes{};
  const bool ipv4 = name.ends_with(".in-addr.arpa");
  if (!ipv4 && !name.ends_with(".ip6.arpa")) return false;
  const std::size_t labels = ipv4 ? 4 : 32;
  for (std::size_t i = labels; i-- > 0;) {
    const std::string_view label = NextLabel(&name);
    unsigned value = 0;
    const auto [end, error] = std::from_chars(label.data(), label.data() + label.size(), value, ipv4 ? 10 : 16);
    if (error != std::errc() || end != label.data() + label.size() || value > (ipv4 ? 255U : 15U)) return false;
    if (ipv4) {
      bytes[i] = static_cast<std::uint8_t>(value);
    } else {
      bytes[i / 2] = static_cast<std::uint8_t>(bytes[i / 2] | value << (i % 2 == 0 ? 4 : 0));
    }
  }
  if (name != (ipv4 ? "in-addr.arpa" : "ip6.arpa")) return false;
  if (ipv4) {
    SetAddress<4>(address, kAddressIp, bytes.data());
  } else {
    SetAddress<16>(address, kAddressIpv6, bytes.data());
  }
  return true;
}

/// Reads one message. The resolver library keeps within its bytes and refuses names that point to themselves.
class MessageReader {
 public:
  explicit MessageReader(Bytes message) {
    if (message.size() > NS_MAXMSG) return;
    sound_ = ns_initparse(message.data(), static_cast<int>(message.size()), &message_) == 0;
  }

  bool IsAnswer() const {
    return sound_ && ns_msg_getflag(message_, ns_f_qr) == 1 && ns_msg_getflag(message_, ns_f_opcode) == ns_o_query &&
           ns_msg_getflag(message_, ns_f_rcode) == ns_r_noerror;
  }

  /// Calls `take` with the records that are of the Internet's class, however long they hold: servers of local names say
  /// 0.
  template <class Take>
  void ForEach(ns_sect section, Take take) {
    const int count = std::min<int>(ns_msg_count(message_, section), kMostRecords);
    for (int i = 0; i < count; ++i) {
      ns_rr record;
      if (ns_parserr(&message_, section, i, &record) != 0) return;
      if ((record.rr_class & kClassMask) == ns_c_in) take(record);
    }
  }

  /// The name that a record's data is; empty when it is none.
  std::string NameIn(const ns_rr& record) const {
    char text[NS_MAXDNAME];
    const int length = ns_name_uncompress(ns_msg_base(message_), ns_msg_end(message_), record.rdata, text, sizeof text);
    return length < 0 ? std::string() : NameBytes(text);
  }

 private:
  ns_msg message_{};
  bool sound_ = false;
};

/// Which names stand for which others.
class Aliases {
 public:
  void Add(std::string alias, std::string target) {
    if (aliases_.size() < kMostAliases) aliases_.emplace_back(std::move(target), std::move(alias));
  }

  /// The name at the beginning of the chain that ends with this one.
  std::string Beginning(std::string name) const {
    for (std::size_t steps = 0; steps < aliases_.size(); ++steps) {
      const auto found = std::ranges::find(aliases_, name, &std::pair<std::string, std::string>::first);
      if (found == aliases_.end()) break;
      name = found->second;
    }
    return name;
  }

 private:
  std::vector<std::pair<std::string, std::string>> aliases_;  // (target, alias)
};

void ReadRecord(const MessageReader& message, const ns_rr& record, const Aliases& aliases,
                std::vector<KnownName>* names) {
  KnownName known;
  std::string name;
  if (record.type == ns_t_a && record.rdlength == 4) {
    SetAddress<4>(&known.address, kAddressIp, record.rdata);
    name = aliases.Beginning(NameBytes(record.name));
  } else if (record.type == ns_t_aaaa && record.rdlength == 16) {
    SetAddress<16>(&known.address, kAddressIpv6, record.rdata);
    name = aliases.Beginning(NameBytes(record.name));
  } else if (record.type == ns_t_ptr && ReadReverseName(NameBytes(record.name), &known.address)) {
    name = message.NameIn(record);
  }
  known.name = HostName(name);
  if (!known.name.empty() && IsHost(known.address)) names->push_back(std::move(known));
}

}  // namespace

void ReadDnsMessage(Bytes message, std::vector<KnownName>* names) {
  MessageReader reader(message);
  if (!reader.IsAnswer()) return;
  Aliases aliases;
  reader.ForEach(ns_s_an, [&](const ns_rr& record) {
    if (record.type == ns_t_cname) aliases.Add(NameBytes(record.name), reader.NameIn(record));
  });
  // Multicast DNS puts the addresses of the services that it announces into the additional section, others put those of
  // the servers that they refer to there.
  for (ns_sect section : {ns_s_an, ns_s_ar}) {
    reader.ForEach(section, [&](const ns_rr& record) { ReadRecord(reader, record, aliases, names); });
  }
}

void ReadHeardNames(const PacketFacts& facts, std::vector<KnownName>* names) {
  Bytes bytes = facts.payload;
  if (facts.ip_protocol != 6) return ReadDnsMessage(bytes, names);
  while (bytes.size() >= 2) {  // RFC 1035 section 4.2.2: each message behind its length
    const std::size_t length = Read16(bytes, 0);
    if (length == 0 || length > bytes.size() - 2) return;
    ReadDnsMessage(bytes.subspan(2, length), names);
    bytes = Behind(bytes, 2 + length);
  }
}

}  // namespace orvo
