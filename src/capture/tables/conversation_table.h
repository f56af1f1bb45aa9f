#pragma once

#include <array>
#include <cstdint>

#include "capture/tables/address_table.h"
#include "engine/conversations.h"

namespace orvo {

/// The conversations of one moment. Rows of all three tables belong together; the key of a row is its number plus 1.
struct FrozenConversations {
  FrozenTable<ConversationEntry> entries;
  FrozenTable<ConversationEndpoints> endpoints;
  FrozenTable<std::uint32_t> next;  ///< the next row whose source is of the same type, kNoRow behind the last
  std::array<std::uint32_t, kAddressTypes> first{};
};

/// Traffic by source, destination and protocol.
class ConversationTable {
 public:
  explicit ConversationTable(std::size_t limit) : limit_(limit) {
    first_.fill(kNoRow);
    last_.fill(kNoRow);
  }

  /// The row of a conversation, which is made when it is new; kNoRow when it is new and the table is full. `type` is
  /// the source's address type.
  std::uint32_t Row(const ConversationEndpoints& ends, std::uint8_t type);
  void Count(std::uint32_t row, std::uint64_t bytes) {
    ConversationEntry& entry = entries_.Edit(row);
    ++entry.packets;
    entry.bytes += bytes;
  }
  /// Begins to fetch a row that will be counted in.
  void Prefetch(std::uint32_t row) const { entries_.Prefetch(row); }

  std::size_t size() const { return entries_.size(); }
  FrozenConversations Freeze() { return {entries_.Freeze(), endpoints_.Freeze(), next_.Freeze(), first_}; }

 private:
  std::uint32_t Add(const ConversationEndpoints& ends, std::uint8_t type, std::uint64_t hash);

  KeyedHash hash_;
  RowIndex index_;
  PagedVector<ConversationEntry> entries_;
  PagedVector<ConversationEndpoints> endpoints_;
  PagedVector<std::uint32_t> next_;
  std::array<std::uint32_t, kAddressTypes> first_{};
  std::array<std::uint32_t, kAddressTypes> last_{};
  std::size_t limit_;
};

}  // namespace orvo
