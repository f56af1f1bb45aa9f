#include "capture/classify/ndpi_names.h"

#include <ndpi_protocol_ids.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

struct Rename {
  std::uint16_t number;  ///< nDPI's
  std::string_view name;
};

/// Where this engine knows a protocol under another name, or a name means something else here. Of the other names only
/// the spelling is changed.
constexpr std::array kRenames{
    Rename{NDPI_PROTOCOL_FTP_CONTROL, "FTP"},
    Rename{NDPI_PROTOCOL_FTP_DATA, "FTP Data"},
    Rename{NDPI_PROTOCOL_MAIL_POPS, "POP3S"},
    Rename{NDPI_PROTOCOL_MDNS, "mDNS"},
    Rename{NDPI_PROTOCOL_COAP, "CoAP"},
    Rename{NDPI_PROTOCOL_DHCPV6, "DHCPv6"},
    Rename{NDPI_PROTOCOL_IP_ICMPV6, "ICMPv6"},
    Rename{NDPI_PROTOCOL_IP_IP_IN_IP, "IPIP"},
    Rename{NDPI_PROTOCOL_DCERPC, "DCE RPC"},
    Rename{NDPI_PROTOCOL_JABBER, "XMPP"},
    Rename{NDPI_PROTOCOL_MSSQL_TDS, "SQL Server"},
    Rename{NDPI_PROTOCOL_ORACLE, "Oracle TNS"},
    Rename{NDPI_PROTOCOL_WSD, "WS-Discovery"},
    Rename{NDPI_PROTOCOL_RADIUS, "RADIUS"},
    Rename{NDPI_PROTOCOL_RSYNC, "rsync"},
    Rename{NDPI_PROTOCOL_WHOIS_DAS, "WHOIS"},
    Rename{NDPI_PROTOCOL_H323, "H.323"},
    Rename{NDPI_PROTOCOL_USENET, "NNTP"},
    Rename{NDPI_PROTOCOL_SMBV1, "SMB"},
    Rename{NDPI_PROTOCOL_SMBV23, "SMB"},
    Rename{NDPI_PROTOCOL_GTP_U, "GTP-U"},
    Rename{NDPI_PROTOCOL_GTP_C, "GTP-C"},
    Rename{NDPI_PROTOCOL_DOH_DOT, "Encrypted DNS"},
    Rename{NDPI_PROTOCOL_SAP, "SAP Business"},
    Rename{NDPI_PROTOCOL_RTMP, "RTMP Streaming"},
    Rename{NDPI_PROTOCOL_SINA, "Sina Weibo"},
    Rename{NDPI_PROTOCOL_NETFLIX, "Netflix"},
};

struct Refinement {
  std::uint16_t number;  ///< nDPI's
  std::string_view name;
};

/// What is more than nDPI's word for it when the ports say so.
constexpr std::array kRefinements{
    Refinement{NDPI_PROTOCOL_TLS, "SMTPS"},
    Refinement{NDPI_PROTOCOL_TLS, "LDAPS"},
    Refinement{NDPI_PROTOCOL_TLS, "FTPS"},
    Refinement{NDPI_PROTOCOL_TLS, "IMAPS"},
    Refinement{NDPI_PROTOCOL_TLS, "POP3S"},
    Refinement{NDPI_PROTOCOL_TLS, "SIPS"},
    Refinement{NDPI_PROTOCOL_TLS, "DNS over TLS"},
    Refinement{NDPI_PROTOCOL_HTTP, "IPP"},
    Refinement{NDPI_PROTOCOL_HTTP, "HTTP Proxy"},
    Refinement{NDPI_PROTOCOL_NETBIOS, "NetBIOS Name"},
    Refinement{NDPI_PROTOCOL_NETBIOS, "NetBIOS Datagram"},
    Refinement{NDPI_PROTOCOL_NETBIOS, "NetBIOS Session"},
    Refinement{NDPI_PROTOCOL_IP_IPSEC, "IKE"},
    Refinement{NDPI_PROTOCOL_IP_IPSEC, "IPsec NAT Traversal"},
    Refinement{NDPI_PROTOCOL_RADIUS, "RADIUS Accounting"},
    Refinement{NDPI_PROTOCOL_SNMP, "SNMP Trap"},
};

constexpr std::array<std::uint16_t, 4> kNameServices{NDPI_PROTOCOL_DNS, NDPI_PROTOCOL_MDNS, NDPI_PROTOCOL_LLMNR,
                                                     NDPI_PROTOCOL_NETBIOS};

/// Names stand in rows of separated text and in paths of protocols.
std::string Spelled(std::string name) {
  std::replace_if(
      name.begin(), name.end(), [](char c) { return c == '_' || c == ',' || c == '/' || c == '"'; }, ' ');
  return name;
}

/// By nDPI's number; the first, of no protocol, is empty. nDPI knows its protocols only at run time.
const std::vector<std::string>& Names() {
  static const std::vector<std::string> names = [] {
    std::vector<std::string> made = NdpiModule::Names();
    for (std::string& name : made) name = Spelled(std::move(name));
    if (!made.empty()) made[0].clear();
    for (const Rename& rename : kRenames) {
      if (rename.number < made.size()) made[rename.number] = rename.name;
    }
    return made;
  }();
  return names;
}

std::span<const Protocol> NamedByNdpi() {
  static const std::vector<Protocol> protocols = [] {
    std::vector<Protocol> made;
    for (const std::string& name : Names()) {
      if (!name.empty()) made.push_back({name, {}});
    }
    return made;
  }();
  return protocols;
}

const ProtocolRegistration kRegistration(NamedByNdpi);

/// Identifier of the registry by nDPI's number.
std::uint16_t Identifier(std::uint16_t number) {
  static const std::vector<std::uint16_t> identifiers = [] {
    std::vector<std::uint16_t> made;
    for (const std::string& name : Names()) made.push_back(ProtocolRegistry::Get().FindName(name));
    return made;
  }();
  return number < identifiers.size() ? identifiers[number] : std::uint16_t{0};
}

bool Refines(std::uint16_t port_application, std::uint16_t number) {
  if (port_application == 0) return false;
  std::string_view name = ProtocolRegistry::Get().protocol(port_application).name;
  return std::any_of(kRefinements.begin(), kRefinements.end(),
                     [&](const Refinement& row) { return row.number == number && row.name == name; });
}

}  // namespace

std::array<std::uint16_t, 2> ApplicationsOf(NdpiModule::Finding finding, std::uint16_t port_application) {
  std::uint16_t protocol =
      Refines(port_application, finding.protocol) ? port_application : Identifier(finding.protocol);
  bool names_only = std::find(kNameServices.begin(), kNameServices.end(), finding.protocol) != kNameServices.end();
  std::uint16_t service = names_only ? std::uint16_t{0} : Identifier(finding.service);
  return {protocol, service != protocol ? service : std::uint16_t{0}};
}

}  // namespace orvo
