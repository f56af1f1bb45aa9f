#pragma once

#include "platform/unknown.h"

namespace orvo::test {

/// What the test library's objects offer.
class ICounter : public IUnknown {
 public:
  static constexpr Guid kIid = "2F6B1D6C-6C0B-4D0A-8D0B-5A0F4E0C9A01"_guid;
  virtual Status Add(int amount, int* total) = 0;

 protected:
  ~ICounter() = default;
};

inline constexpr Guid kCounterClass = "2F6B1D6C-6C0B-4D0A-8D0B-5A0F4E0C9A02"_guid;

}  // namespace orvo::test
