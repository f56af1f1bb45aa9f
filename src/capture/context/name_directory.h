#pragma once

#include <atomic>
#include <cstddef>
#include <shared_mutex>
#include <string>
#include <string_view>
#include <unordered_map>

#include "capture/tables/keyed_hash.h"
#include "engine/address.h"

namespace orvo {

/// The names that the engine has learnt. Used from any thread.
class NameDirectory {
 public:
  static constexpr std::size_t kMaxNames = 2'000'000;
  static constexpr std::size_t kMaxLength = 255;  ///< UTF-16 units; the rest of a longer name is dropped

  /// Keeps a name, in place of an earlier one; false for an empty name, or when there is no room for one more.
  bool Learn(const AddressRecord& address, std::u16string_view name);
  /// Appends the name of an address; false when none is known.
  bool Append(const AddressRecord& address, std::u16string* text) const;

 private:
  mutable std::shared_mutex mutex_;
  std::unordered_map<AddressRecord, std::u16string, KeyedHash> names_;
  std::atomic<bool> any_ = false;  // spares the lock while there are none
};

}  // namespace orvo
