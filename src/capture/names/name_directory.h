#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <shared_mutex>
#include <string>
#include <string_view>

#include "capture/tables/keyed_hash.h"
#include "capture/tables/row_index.h"
#include "engine/address.h"

namespace orvo {

/// An address and what it is called.
struct KnownName {
  AddressRecord address;
  std::u16string name;
};

/// How far a name is to be trusted: what somebody gave is not replaced by what was heard on the wire.
enum class NameSource : std::uint8_t { kHeard, kGiven };

/// Control characters, ends of lines and paragraphs, blanks of every width, and whatever else leaves no mark or turns
/// or joins text: none of them has a place in a name, and each can make a line of a report read as something else.
bool IsInvisible(char32_t character);

/// The names that the engine has learnt. Used from any thread.
class NameDirectory {
 public:
  static constexpr std::size_t kMaxLength = 255;  ///< UTF-16 units; the rest of a longer name is dropped

  explicit NameDirectory(std::size_t limit) : limit_(limit) {}

  /// Keeps a name with its invisible characters as question marks, in place of an earlier one that is trusted no more
  /// than it. False for an empty name, one that a better stands in the way of, or when there is no room for one more.
  bool Learn(const AddressRecord& address, std::u16string_view name, NameSource source);
  /// Appends the name of an address; false when none is known. Costs next to nothing while no name at all is known.
  bool Append(const AddressRecord& address, std::u16string* text) const;
  /// How many names found no room.
  std::uint64_t refused() const { return refused_.load(std::memory_order_relaxed); }

 private:
  struct Entry {
    AddressRecord address;
    NameSource source = NameSource::kHeard;
    std::u16string name;
  };

  /// The row of an address, kNoRow when it has no name.
  std::uint32_t Find(const AddressRecord& address, std::uint64_t hash) const {
    return index_.Find(hash, [&](std::uint32_t row) { return entries_[row].address == address; });
  }

  const std::size_t limit_;
  mutable std::shared_mutex mutex_;
  KeyedHash hash_;
  RowIndex index_;
  std::deque<Entry> entries_;
  std::atomic<bool> any_ = false;  // spares the lock while there are none
  std::atomic<std::uint64_t> refused_ = 0;
};

}  // namespace orvo
