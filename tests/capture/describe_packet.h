#pragma once

#include <string>

#include "capture/classify/protocol_tree.h"
#include "capture/context/address_text.h"
#include "capture/decode/protocol_registry.h"
#include "tests/capture/frames.h"

namespace orvo::test {

/// The names from the top of the protocol tree down to a place.
inline std::string Path(std::uint16_t place) {
  const ProtocolTree& tree = ProtocolTree::Get();
  std::string path;
  for (; place != 0; place = tree.parent(place)) {
    path = std::string(tree.name(place)) + (path.empty() ? "" : ">" + path);
  }
  return path;
}

/// Everything that a packet was found to be, in one line.
inline std::string Describe(const Packet& packet) {
  PacketFacts facts = Decoded(packet);
  std::string text = Path(ProtocolTree::Get().Classify(facts));
  static constexpr const char* kArrows[] = {"->", "=>*", "=>+"};
  for (std::size_t i = 0; i < facts.pair_count; ++i) {
    std::u16string source;
    std::u16string destination;
    AppendAddress(facts.pairs[i].source, &source);
    AppendAddress(facts.pairs[i].destination, &destination);
    text += " " + Ascii(source) + kArrows[static_cast<int>(facts.pairs[i].delivery)] + Ascii(destination);
  }
  if (facts.has_ports) text += " " + std::to_string(facts.source_port) + ">" + std::to_string(facts.destination_port);
  if (facts.vlan_tags != 0) text += " tags=" + std::to_string(facts.vlan_tags);
  if (facts.is_fragment) text += " fragment";
  if (facts.is_icmp_error) text += " error";
  if (facts.malformed) text += " malformed";
  if (facts.cut_off) text += " cut";
  return text;
}

}  // namespace orvo::test
