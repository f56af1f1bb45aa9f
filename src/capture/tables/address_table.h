#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "capture/tables/keyed_hash.h"
#include "capture/tables/paged_vector.h"
#include "capture/tables/row_index.h"
#include "engine/address.h"

namespace orvo {

inline constexpr std::size_t kAddressTypes = 64;

/// The addresses of one moment.
struct FrozenAddresses {
  FrozenTable<AddressRecord> records;
  FrozenTable<std::uint32_t> next;  ///< the next address of the same type, kNoAddress behind the last
  std::array<std::uint32_t, kAddressTypes> first{};
};

/// Gives every address an index that it keeps for good. Protocols stand in the same table, so that statistics name
/// them in the same way.
class AddressTable {
 public:
  /// At most `limit` addresses are taken in, besides the protocols.
  explicit AddressTable(std::size_t limit) : limit_(limit) {
    first_.fill(kNoAddress);
    last_.fill(kNoAddress);
  }

  /// The index of an address, which is given one when it is new; kNoAddress for an empty
  /// record, and when the table is full.
  std::uint32_t Intern(const AddressRecord& record);

  /// Begins to fetch what Intern will look at first.
  void Prefetch(const AddressRecord& record) const { index_.Prefetch(hash_(record)); }

  std::size_t size() const { return records_.size(); }
  FrozenAddresses Freeze() { return {records_.Freeze(), next_.Freeze(), first_}; }

 private:
  KeyedHash hash_;
  RowIndex index_;
  PagedVector<AddressRecord> records_;
  PagedVector<std::uint32_t> next_;
  std::array<std::uint32_t, kAddressTypes> first_{};
  std::array<std::uint32_t, kAddressTypes> last_{};
  std::size_t protocols_ = 0;
  std::size_t limit_;
};

/// The record of a protocol's entry.
AddressRecord ProtocolRecord(std::uint16_t number);

}  // namespace orvo
