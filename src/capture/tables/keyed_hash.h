#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <random>

#include "engine/address.h"

namespace orvo {

/// A hash whose values nobody can foretell: its keys are random for each object, so that addresses chosen by a sender
/// do not pile up in one place. Multiplies and folds, which spreads every bit of the input over the result.
class KeyedHash {
 public:
  KeyedHash() {
    std::random_device random;
    for (std::uint64_t& key : keys_) key = (std::uint64_t{random()} << 32 | random()) | 1;
  }

  std::uint64_t operator()(const AddressRecord& record) const {
    static_assert(sizeof(AddressRecord) == 24);
    std::uint64_t words[3];
    std::memcpy(words, &record, sizeof words);
    return Fold(Fold(words[0] ^ keys_[0], words[1] ^ keys_[1]) ^ keys_[3], words[2] ^ keys_[2]);
  }

  std::uint64_t operator()(std::uint32_t a, std::uint32_t b, std::uint32_t c = 0) const {
    return Fold((std::uint64_t{a} << 32 | b) ^ keys_[0], c ^ keys_[1]);
  }

  template <std::size_t count>
  std::uint64_t operator()(const std::array<std::uint64_t, count>& words) const {
    std::uint64_t hash = keys_[3];
    for (std::size_t i = 0; i < count; ++i) hash = Fold(hash ^ words[i], keys_[i % 4]);
    return hash;
  }

 private:
  static std::uint64_t Fold(std::uint64_t a, std::uint64_t b) {
    __extension__ using Wide = unsigned __int128;
    Wide product = Wide{a} * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
  }

  std::uint64_t keys_[4];
};

}  // namespace orvo
