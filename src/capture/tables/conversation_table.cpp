#include "capture/tables/conversation_table.h"

namespace orvo {

std::uint32_t ConversationTable::Row(const ConversationEndpoints& ends, std::uint8_t type) {
  std::uint64_t hash = hash_(ends.source, ends.destination, ends.protocol);
  std::uint32_t row = index_.Find(hash, [&](std::uint32_t candidate) {
    const ConversationEndpoints& other = endpoints_[candidate];
    return other.source == ends.source && other.destination == ends.destination && other.protocol == ends.protocol;
  });
  if (row != kNoRow) return row;
  return entries_.size() < limit_ ? Add(ends, type, hash) : kNoRow;
}

std::uint32_t ConversationTable::Add(const ConversationEndpoints& ends, std::uint8_t type, std::uint64_t hash) {
  auto row = static_cast<std::uint32_t>(entries_.size());
  index_.Reserve();
  ConversationEntry entry;
  entry.key = std::uint64_t{row} + 1;
  endpoints_.Append(ends);
  next_.Append(kNoRow);
  entries_.Append(entry);
  index_.Add(hash, row);
  std::size_t chain = type % kAddressTypes;
  if (first_[chain] == kNoRow) {
    first_[chain] = row;
  } else {
    next_.Edit(last_[chain]) = row;
  }
  last_[chain] = row;
  return row;
}

}  // namespace orvo
