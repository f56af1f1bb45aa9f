#pragma once

#include "capture/decode/packet_facts.h"

namespace orvo {

/// Notes the ports with which headers of TCP, UDP and SCTP begin, also of a header that is cut off behind them.
inline void NotePorts(Bytes bytes, PacketFacts& facts) {
  if (bytes.size() < 4) return;
  facts.source_port = Read16(bytes, 0);
  facts.destination_port = Read16(bytes, 2);
  facts.has_ports = true;
}

}  // namespace orvo
