#pragma once

#include <cstdint>

#include "platform/unknown.h"

namespace orvo {

/// Traffic from one address to another under one protocol.
struct ConversationEntry {
  std::uint64_t key = 0;  ///< what the conversation index resolves to endpoints
  std::uint64_t packets = 0;
  std::uint64_t bytes = 0;
};

struct ConversationEndpoints {
  std::uint32_t source = 0;       ///< address index
  std::uint32_t destination = 0;  ///< address index
  std::uint32_t protocol = 0;     ///< address index of the protocol's entry
};

class IConversationStats : public IUnknown {
 public:
  static constexpr Guid kIid = "FC781E2B-E27E-4FA7-A12C-5950F1673C0B"_guid;

  virtual Status GetCount(std::uint32_t* count) = 0;
  virtual Status GetEntry(std::uint32_t index, const ConversationEntry** entry) = 0;
  /// Entry by key; S_FALSE and null when there is none.
  virtual Status FindByKey(std::uint64_t key, const ConversationEntry** entry) = 0;

 protected:
  ~IConversationStats() = default;
};

/// Who talks to whom: resolves keys, and walks them by the type of the source address.
class IConversationIndex : public IUnknown {
 public:
  static constexpr Guid kIid = "E6F41BF2-3377-4C28-B421-20DAD1A0A208"_guid;

  /// E_INVALIDARG for a key that the index does not hold.
  virtual Status Resolve(std::uint64_t key, ConversationEndpoints* endpoints) = 0;
  /// Walks the keys of one address type in order of first appearance; S_FALSE at the end.
  virtual Status FirstOfType(std::uint8_t type, std::uint64_t* key) = 0;
  virtual Status NextOfType(std::uint64_t key, std::uint64_t* next) = 0;

 protected:
  ~IConversationIndex() = default;
};

}  // namespace orvo
