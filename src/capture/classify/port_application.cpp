#include "capture/classify/port_application.h"

#include <algorithm>

namespace orvo {

Layer PortLayer(std::uint8_t ip_protocol) {
  switch (ip_protocol) {
    case 6: return Layer::kTcpPort;
    case 17: return Layer::kUdpPort;
    case 132: return Layer::kSctpPort;
    default: return Layer::kNone;
  }
}

Layer PortLayer(const PacketFacts& facts) {
  if (!facts.has_ports || facts.chain_length == 0) return Layer::kNone;
  std::uint16_t innermost = facts.chain[facts.chain_length - 1U];
  bool theirs = innermost == ProtocolRegistry::Get().Find(Layer::kIpProtocol, facts.ip_protocol);
  return theirs ? PortLayer(facts.ip_protocol) : Layer::kNone;
}

std::uint16_t PortApplication(const PacketFacts& facts) {
  return PortApplication(PortLayer(facts), facts.source_port, facts.destination_port);
}

std::uint16_t PortApplication(Layer layer, std::uint16_t port, std::uint16_t other_port) {
  if (layer == Layer::kNone) return 0;
  const ProtocolRegistry& registry = ProtocolRegistry::Get();
  auto [low, high] = std::minmax(port, other_port);
  std::uint16_t application = registry.Find(layer, low);
  return application != 0 ? application : registry.Find(layer, high);
}

}  // namespace orvo
