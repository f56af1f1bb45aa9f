#include "capture/context/expert_cells.h"

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

std::string_view TransportName(std::uint8_t ip_protocol) {
  constexpr std::uint8_t kTcp = 6;
  constexpr std::uint8_t kUdp = 17;
  return ip_protocol == kTcp ? "TCP" : ip_protocol == kUdp ? "UDP" : "";
}

}  // namespace

std::u16string PlainCell(std::string_view ascii) {
  return {ascii.begin(), ascii.end()};
}

std::u16string PortCell(std::uint16_t port) {
  return port == 0 ? u"" : CountCell(port);
}

std::u16string ProtocolCell(std::array<std::uint16_t, 2> applications, std::uint8_t ip_protocol) {
  if (applications[0] == 0) return TransportCell(ip_protocol);
  return PlainCell(ProtocolRegistry::Get().protocol(applications[0]).name);
}

std::u16string ApplicationCell(std::array<std::uint16_t, 2> applications, std::uint8_t ip_protocol) {
  if (applications[1] == 0) return ProtocolCell(applications, ip_protocol);
  return PlainCell(ProtocolRegistry::Get().protocol(applications[1]).name);
}

std::u16string TransportCell(std::uint8_t ip_protocol) {
  return PlainCell(TransportName(ip_protocol));
}

std::u16string MillisecondCell(double microseconds) {
  return RealCell(microseconds / 1000, 3);
}

}  // namespace orvo
