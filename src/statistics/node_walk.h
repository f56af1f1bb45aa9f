#pragma once

#include <cstdint>

#include "engine/address.h"
#include "engine/nodes.h"
#include "platform/error.h"

namespace orvo {

/// The address of a node when it is one of that type, else null. Raises a failing query.
inline const AddressRecord* RecordOfType(IAddressTable& addresses, const NodeEntry& node, std::uint8_t type) {
  if (node.address == kNoAddress) return nullptr;
  const AddressRecord* record = nullptr;
  Check(addresses.GetRecord(node.address, &record));
  return record && record->type == type ? record : nullptr;
}

/// Calls visit(record, node) for every node with an address of that type, in the order of the address table. Raises a
/// failing query.
template <class Visit>
void ForEachNode(IAddressTable& addresses, INodeStats& nodes, std::uint8_t type, Visit&& visit) {
  std::uint32_t index = kNoAddress;
  Check(addresses.FirstOfType(type, &index));
  for (; index != kNoAddress; Check(addresses.NextOfType(index, &index))) {
    const NodeEntry* node = nullptr;
    Check(nodes.FindByAddress(index, &node));
    if (const AddressRecord* record = node ? RecordOfType(addresses, *node, type) : nullptr) visit(*record, *node);
  }
}

}  // namespace orvo
