#include "capture/analysis/expert/spoken_protocol.h"

#include <array>
#include <string_view>
#include <vector>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

struct Speaker {
  std::string_view name;
  SpokenProtocol protocol;
};

constexpr std::array kSpeakers{
    Speaker{"DNS", SpokenProtocol::kDns},
    Speaker{"LLMNR", SpokenProtocol::kDns},
    Speaker{"HTTP", SpokenProtocol::kHttp},
    Speaker{"HTTP Proxy", SpokenProtocol::kHttp},
    Speaker{"IPP", SpokenProtocol::kHttp},
    Speaker{"TLS", SpokenProtocol::kTls},
    Speaker{"DNS over TLS", SpokenProtocol::kTls},
    Speaker{"FTPS", SpokenProtocol::kTls},
    Speaker{"IMAPS", SpokenProtocol::kTls},
    Speaker{"LDAPS", SpokenProtocol::kTls},
    Speaker{"POP3S", SpokenProtocol::kTls},
    Speaker{"SIPS", SpokenProtocol::kTls},
    Speaker{"SMTPS", SpokenProtocol::kTls},
    Speaker{"CoAP", SpokenProtocol::kAskedOverUdp},
    Speaker{"Kerberos", SpokenProtocol::kAskedOverUdp},
    Speaker{"LDAP", SpokenProtocol::kAskedOverUdp},
    Speaker{"NetBIOS Name", SpokenProtocol::kAskedOverUdp},
    Speaker{"NFS", SpokenProtocol::kAskedOverUdp},
    Speaker{"NTP", SpokenProtocol::kAskedOverUdp},
    Speaker{"Portmapper", SpokenProtocol::kAskedOverUdp},
    Speaker{"RADIUS", SpokenProtocol::kAskedOverUdp},
    Speaker{"RADIUS Accounting", SpokenProtocol::kAskedOverUdp},
    Speaker{"SNMP", SpokenProtocol::kAskedOverUdp},
    Speaker{"STUN", SpokenProtocol::kAskedOverUdp},
};

}  // namespace

SpokenProtocol SpokenBy(std::uint16_t application) {
  static const std::vector<SpokenProtocol> spoken = [] {
    const ProtocolRegistry& registry = ProtocolRegistry::Get();
    std::vector<SpokenProtocol> made(registry.count(), SpokenProtocol::kOther);
    for (const Speaker& speaker : kSpeakers) made[registry.FindName(speaker.name)] = speaker.protocol;
    made[0] = SpokenProtocol::kOther;
    return made;
  }();
  return spoken[application];
}

}  // namespace orvo
