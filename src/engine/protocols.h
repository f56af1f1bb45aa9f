#pragma once

#include <cstdint>
#include <string>

#include "platform/unknown.h"

namespace orvo {

/// Traffic of one protocol. Every packet is counted once, under the innermost protocol that was recognised.
struct ProtocolEntry {
  std::uint32_t key = 0;  ///< address index of the protocol's entry in the address table
  std::uint64_t packets = 0;
  std::uint64_t bytes = 0;
};

class IProtocolStats : public IUnknown {
 public:
  static constexpr Guid kIid = "36A20EF0-B424-4B8C-A2A5-1B971CA7C7B1"_guid;

  virtual Status GetCount(std::uint32_t* count) = 0;
  /// Entry by index, valid while this object is held; E_INVALIDARG beyond the count.
  virtual Status GetEntry(std::uint32_t index, const ProtocolEntry** entry) = 0;
  /// Entry by its key; S_FALSE and null when the protocol has none.
  virtual Status FindByKey(std::uint32_t key, const ProtocolEntry** entry) = 0;

 protected:
  ~IProtocolStats() = default;
};

/// Names and places in the protocol tree. Created by class identifier.
class IProtocolNameService : public IUnknown {
 public:
  static constexpr Guid kIid = "470AFAFD-1616-44E7-8D6F-27E0CF6313FB"_guid;

  /// S_OK when the protocol stands at the top of the tree, S_FALSE when it has a parent or is unknown.
  virtual Status IsTopLevel(std::uint16_t number) = 0;
  /// The way up from the protocol itself (first) to its outermost ancestor (last), at most `capacity` numbers.
  virtual Status GetChain(std::uint16_t number, std::uint16_t* chain, std::uint32_t capacity, std::uint32_t* count) = 0;
  /// Appends the protocol's name; S_FALSE, and nothing appended, for an unknown number.
  virtual Status AppendName(std::uint16_t number, std::u16string* name) = 0;

 protected:
  ~IProtocolNameService() = default;
};

inline constexpr Guid kProtocolNameServiceClass = "827D655A-44BB-4DC7-B1A5-BC1F6E4064FE"_guid;

/// Longest chain that a caller asks for.
inline constexpr std::uint32_t kProtocolChainLimit = 100;

}  // namespace orvo
